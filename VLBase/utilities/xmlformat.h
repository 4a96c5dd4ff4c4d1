#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

class QIODevice;

/// Brings XML documents into indented form, or into one line, without a change of meaning.
///
/// White space comes and goes only where it means nothing: between the children of an element that
/// has no text of its own, outside `xml:space="preserve"`, and between the attributes of a tag.
/// What is below an element with text stays as it is. Entities, CDATA sections, comments,
/// processing instructions, the declaration, the order of attributes and their quotes stay as they
/// are written; so a comment of several lines, or a text of several, stays one in the compact form.
/// Canonical XML before and after is the same but for such space, and a second time changes
/// nothing.
///
/// Documents are checked to be well-formed (XML 1.0; prefixes need not be declared). The objects
/// are plain settings: any thread may use its own.
class VLBASE_EXPORT XmlFormat
{
public:
    /// What a document was refused for, and where.
    struct Error
    {
        qint64 line = 0;   ///< from 1; 0 where the fault has no place, such as a full disk
        qint64 column = 0; ///< in characters, from 1; likewise
        QString reason;    ///< one sentence; empty when there was no fault
    };

    /// How many blanks a level is indented by; 2 unless set, below 0 counts as 0. Levels beyond the
    /// 100th stay where that one is.
    void setIndent(int blanks);

    /// The width past which the attributes of a tag go on in the next line; 100 unless set; 0 and
    /// below: never.
    void setLineWidth(int characters);

    /// The document with one child, tag or comment a line, and a line feed at its end.
    /// \param error is set to the fault, or emptied
    /// \return `xml` as it is when it is malformed
    QString indented(const QString& xml, Error* error = nullptr) const;

    /// The document without the space that means nothing.
    QString compacted(const QString& xml, Error* error = nullptr) const;

    /// The same from one open device to another, in the encoding of the document. Memory does not
    /// grow with its length, but for one bit an element: it is read twice, a sequential device by
    /// way of a temporary file.
    /// \return false with `error` set for a malformed document, an encoding that Qt does not know,
    /// or
    ///     a device that fails. A malformed document is found before anything is written; what a
    ///     failing device has taken by then stays there, so write files by `QSaveFile`.
    bool indent(QIODevice& from, QIODevice& to, Error* error = nullptr) const;
    bool compact(QIODevice& from, QIODevice& to, Error* error = nullptr) const;

private:
    int m_indent = 2;
    int m_lineWidth = 100;
};
