#pragma once

#include "xmllayout.h"
#include "xmltag.h"

#include <QString>

#include <functional>
#include <vector>

namespace vlbase::utilities {

/// How a document is to look.
struct XmlShape
{
    bool isIndented = true; ///< otherwise without the space that means nothing
    int indent = 2;
    int lineWidth = 0; ///< 0: tags are not wrapped
};

/// Writes a document's pieces in another shape.
class XmlShaper
{
public:
    XmlShaper(const XmlShape& shape, const XmlLayout& layout,
              std::function<void(QStringView)> write)
        : m_shape(shape)
        , m_layout(layout)
        , m_write(std::move(write))
    {
    }

    void take(const XmlLexer::Piece& piece);

    /// To be called behind the last piece.
    void finish();

private:
    struct Open
    {
        bool isMovable;   ///< the space between its children
        bool isBelowText; ///< it has text, or something around it has
        bool isPreserved; ///< by xml:space
    };

    bool isMovable() const { return m_open.empty() || m_open.back().isMovable; }
    void beginLine(std::size_t level);
    void writeText(QStringView text);
    void writeTag(const XmlTag& tag);
    void open(const XmlTag& tag);
    void close(QStringView tag);

    XmlShape m_shape;
    const XmlLayout& m_layout;
    std::function<void(QStringView)> m_write;
    std::vector<Open> m_open;
    std::size_t m_elements = 0;
    bool m_isAtBegin = true;
};

} // namespace vlbase::utilities
