#pragma once

#include <QList>
#include <QStringView>

namespace vlbase::utilities {

/// A start tag or the tag of an empty element, taken apart as it is written.
struct XmlTag
{
    struct Attribute
    {
        QStringView name;
        QStringView value; ///< with its quotes
    };

    /// \param text a well-formed tag, which must outlive this
    explicit XmlTag(QStringView text);

    QStringView opening; ///< "<name"
    QList<Attribute> attributes;
    QStringView closing; ///< ">" or "/>"
};

} // namespace vlbase::utilities
