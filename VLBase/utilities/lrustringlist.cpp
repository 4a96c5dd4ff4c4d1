#include "lrustringlist.h"

#include <algorithm>

LruStringList::LruStringList(int limit)
    : m_nLimit(std::max(limit, 1))
{
}

QString LruStringList::Select(const QString& text)
{
    // A copy, because the text may be the very entry that moves.
    QString selected = text; // NOLINT(performance-unnecessary-copy-initialization)
    if (!m_Entries.removeOne(selected) && GetCount() >= m_nLimit)
        m_Entries.removeLast();
    m_Entries.prepend(selected);
    return selected;
}

QString LruStringList::Select(int index)
{
    const auto entry = ItAt(index);
    if (entry == m_Entries.cend())
        return QString();
    m_Entries.move(entry - m_Entries.cbegin(), 0);
    return m_Entries.first();
}

void LruStringList::PushBack(const QString& text)
{
    if (GetCount() < m_nLimit)
        m_Entries.append(text);
}

QString LruStringList::At(int index) const
{
    const auto entry = ItAt(index);
    return entry == m_Entries.cend() ? QString() : *entry;
}

void LruStringList::Erase(const QString& text)
{
    m_Entries.removeOne(text);
}

void LruStringList::Erase(int index)
{
    const auto entry = ItAt(index);
    if (entry != m_Entries.cend())
        m_Entries.erase(entry);
}

int LruStringList::GetCount() const
{
    return static_cast<int>(m_Entries.size());
}

int LruStringList::GetLimit() const
{
    return m_nLimit;
}

QList<QString>::const_iterator LruStringList::ItAt(int index) const
{
    return m_Entries.cbegin() + std::clamp(index, 0, GetCount());
}
