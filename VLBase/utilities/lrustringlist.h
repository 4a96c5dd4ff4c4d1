#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QString>

/// A bounded list of strings, the most recently selected first: recent files, recent hosts.
///
/// An index below 0 means the first entry.
class VLBASE_EXPORT LruStringList
{
public:
    /// \param limit the largest number of entries; below 1 counts as 1.
    explicit LruStringList(int limit);

    /// Makes `text` the first entry, moving it there or, in a full list, in place of the last.
    QString Select(const QString& text);

    /// Makes the entry at `index` the first one.
    /// \return the entry; a null string when there is none, and nothing changes.
    QString Select(int index);

    /// Appends an entry, unless the list is full. Does not look for an equal one.
    void PushBack(const QString& text);

    /// The entry at `index`, or a null string.
    QString At(int index) const;

    /// Removes the first entry that equals `text`.
    void Erase(const QString& text);

    /// Removes the entry at `index` if there is one.
    void Erase(int index);

    int GetCount() const;
    int GetLimit() const;

protected:
    /// The position of the entry at `index`; the end when there is none.
    QList<QString>::const_iterator ItAt(int index) const;

private:
    int m_nLimit;
    QList<QString> m_Entries;
};
