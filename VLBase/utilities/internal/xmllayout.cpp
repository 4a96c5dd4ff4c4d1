#include "xmllayout.h"

#include "xmlspace.h"

namespace vlbase::utilities {

void XmlLayout::take(const XmlLexer::Piece& piece)
{
    switch (piece.kind) {
    case XmlLexer::Kind::Text:
        if (!isAllXmlSpace(piece.text))
            noteText();
        break;
    case XmlLexer::Kind::CharacterData:
        noteText();
        break;
    case XmlLexer::Kind::StartTag:
        noteChild();
        m_open.push_back({m_hasChildrenOnly.size(), false, false});
        m_hasChildrenOnly.push_back(false);
        break;
    case XmlLexer::Kind::EndTag:
        if (!m_open.empty()) {
            const Open& ended = m_open.back();
            m_hasChildrenOnly[ended.element] = ended.hasChild && !ended.hasText;
            m_open.pop_back();
        }
        break;
    case XmlLexer::Kind::EmptyTag:
    case XmlLexer::Kind::Comment:
    case XmlLexer::Kind::Instruction:
        noteChild();
        break;
    case XmlLexer::Kind::Doctype:
        break;
    }
}

void XmlLayout::noteChild()
{
    if (!m_open.empty())
        m_open.back().hasChild = true;
}

void XmlLayout::noteText()
{
    if (!m_open.empty())
        m_open.back().hasText = true;
}

} // namespace vlbase::utilities
