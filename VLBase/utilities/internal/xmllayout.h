#pragma once

#include "xmllexer.h"

#include <vector>

namespace vlbase::utilities {

/// Which elements of a document have children and no text of their own, so that the space between
/// the children means nothing. Only the end of an element tells.
class XmlLayout
{
public:
    void take(const XmlLexer::Piece& piece);

    /// \param element counts the start tags from 0, without those of empty elements
    bool hasChildrenOnly(std::size_t element) const
    {
        return element < m_hasChildrenOnly.size() && m_hasChildrenOnly[element];
    }

private:
    struct Open
    {
        std::size_t element;
        bool hasText;
        bool hasChild;
    };

    void noteChild();
    void noteText();

    std::vector<bool> m_hasChildrenOnly;
    std::vector<Open> m_open;
};

} // namespace vlbase::utilities
