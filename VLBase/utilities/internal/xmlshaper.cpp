#include "xmlshaper.h"

#include "xmlspace.h"

#include <algorithm>

namespace vlbase::utilities {

namespace {

// A document nested a million times would otherwise be blanks by the terabyte.
constexpr std::size_t deepestLevel = 100;

qsizetype lengthOf(const XmlTag::Attribute& attribute)
{
    return attribute.name.size() + 1 + attribute.value.size();
}

} // namespace

void XmlShaper::take(const XmlLexer::Piece& piece)
{
    switch (piece.kind) {
    case XmlLexer::Kind::Text:
        writeText(piece.text);
        return;
    case XmlLexer::Kind::EndTag:
        close(piece.text);
        return;
    case XmlLexer::Kind::StartTag:
    case XmlLexer::Kind::EmptyTag:
    case XmlLexer::Kind::Comment:
    case XmlLexer::Kind::Instruction:
    case XmlLexer::Kind::Doctype:
    case XmlLexer::Kind::CharacterData:
        break;
    }
    if (piece.begins && isMovable())
        beginLine(m_open.size());
    if (piece.kind == XmlLexer::Kind::StartTag) {
        open(XmlTag(piece.text));
    } else if (piece.kind == XmlLexer::Kind::EmptyTag) {
        writeTag(XmlTag(piece.text));
    } else {
        m_write(piece.text);
    }
}

void XmlShaper::finish()
{
    if (m_shape.isIndented)
        m_write(u"\n");
}

void XmlShaper::beginLine(std::size_t level)
{
    if (m_shape.isIndented && !m_isAtBegin) {
        const auto blanks = static_cast<qsizetype>(std::min(level, deepestLevel)) * m_shape.indent;
        m_write(QString(u'\n' + QString(blanks, u' ')));
    }
    m_isAtBegin = false;
}

void XmlShaper::writeText(QStringView text)
{
    if (!isMovable()) {
        m_write(text);
    } else if (m_open.empty() && text.startsWith(QChar::ByteOrderMark)) {
        m_write(text.first(1));
    }
}

void XmlShaper::writeTag(const XmlTag& tag)
{
    m_write(tag.opening);
    const bool isWrapped = m_shape.isIndented && m_shape.lineWidth > 0 && isMovable();
    const auto level = static_cast<qsizetype>(std::min(m_open.size(), deepestLevel));
    // Deeper than the children, so that both stand apart.
    const qsizetype further = (level + 2) * m_shape.indent;
    qsizetype column = level * m_shape.indent + tag.opening.size();
    bool isFirst = true;
    for (const XmlTag::Attribute& attribute : tag.attributes) {
        const bool isLast = &attribute == &tag.attributes.constLast();
        const qsizetype length = 1 + lengthOf(attribute);
        const qsizetype behind = isLast ? tag.closing.size() : 0;
        if (isWrapped && !isFirst && column + length + behind > m_shape.lineWidth) {
            m_write(QString(u'\n' + QString(further, u' ')));
            column = further - 1; // no blank before the attribute
        } else {
            m_write(u" ");
        }
        column += length;
        isFirst = false;
        m_write(attribute.name);
        m_write(u"=");
        m_write(attribute.value);
    }
    m_write(tag.closing);
}

void XmlShaper::open(const XmlTag& tag)
{
    writeTag(tag);
    Open element = {false, false, false};
    if (!m_open.empty())
        element = m_open.back();
    for (const XmlTag::Attribute& attribute : tag.attributes) {
        if (attribute.name == u"xml:space")
            element.isPreserved = attribute.value.sliced(1).chopped(1) == u"preserve";
    }
    if (!m_layout.hasChildrenOnly(m_elements++))
        element.isBelowText = true;
    element.isMovable = !element.isBelowText && !element.isPreserved;
    m_open.push_back(element);
}

void XmlShaper::close(QStringView tag)
{
    if (m_open.empty())
        return;
    const bool wasMovable = isMovable();
    m_open.pop_back();
    if (wasMovable)
        beginLine(m_open.size());
    const qsizetype nameEnd = std::find_if(tag.begin() + 2, tag.end(),
                                           [](QChar c) { return isXmlSpace(c) || c == u'>'; }) -
                              tag.begin();
    m_write(tag.first(nameEnd));
    m_write(u">");
}

} // namespace vlbase::utilities
