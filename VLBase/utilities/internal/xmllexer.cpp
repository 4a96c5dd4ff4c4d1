#include "xmllexer.h"

namespace vlbase::utilities {

namespace {

constexpr QStringView commentEnd = u"-->";
constexpr QStringView characterDataEnd = u"]]>";
constexpr QStringView instructionEnd = u"?>";
constexpr QStringView characterDataBegin = u"<![CDATA[";

QStringView terminatorOf(XmlLexer::Kind kind)
{
    switch (kind) {
    case XmlLexer::Kind::Comment:
        return commentEnd;
    case XmlLexer::Kind::CharacterData:
        return characterDataEnd;
    case XmlLexer::Kind::Instruction:
        return instructionEnd;
    case XmlLexer::Kind::Text:
    case XmlLexer::Kind::Doctype:
    case XmlLexer::Kind::StartTag:
    case XmlLexer::Kind::EmptyTag:
    case XmlLexer::Kind::EndTag:
        break;
    }
    return {};
}

} // namespace

void XmlLexer::feed(QStringView stretch)
{
    m_buffer.remove(0, m_begin);
    m_begin = 0;
    m_buffer.append(stretch);
    while (m_begin < m_buffer.size() && step()) {
    }
}

void XmlLexer::finish()
{
    m_isAtEnd = true;
    feed({});
}

// Each step hands something out, or finds out what comes; false: it needs more text.
bool XmlLexer::step()
{
    switch (m_kind) {
    case Kind::Text:
        return stepText();
    case Kind::CharacterData:
    case Kind::Comment:
    case Kind::Instruction:
        return stepUntil(terminatorOf(m_kind));
    case Kind::Doctype:
        return stepDoctype();
    case Kind::StartTag:
    case Kind::EmptyTag:
    case Kind::EndTag:
        return stepTag();
    }
    return false;
}

bool XmlLexer::stepText()
{
    const QStringView text = rest();
    const qsizetype markup = text.indexOf(u'<');
    if (markup == 0)
        return stepMarkup();
    handOut(markup < 0 ? text.size() : markup);
    return true;
}

bool XmlLexer::stepMarkup()
{
    const QStringView text = rest();
    const auto couldBe = [&](QStringView opening) {
        return text.startsWith(opening) ||
               (!m_isAtEnd && text.size() < opening.size() && opening.startsWith(text));
    };
    if (text.size() == 1)
        return false;
    if (text[1] == u'?') {
        enter(Kind::Instruction);
    } else if (text[1] == u'/') {
        enter(Kind::EndTag);
    } else if (text[1] != u'!') {
        enter(Kind::StartTag);
    } else if (couldBe(u"<!--")) {
        if (text.size() < 4)
            return false;
        enter(Kind::Comment);
        m_scanned = 4; // "<!-->" is no comment
    } else if (couldBe(characterDataBegin)) {
        if (text.size() < characterDataBegin.size())
            return false;
        enter(Kind::CharacterData);
        m_scanned = characterDataBegin.size();
    } else {
        enter(Kind::Doctype);
    }
    return true;
}

void XmlLexer::enter(Kind kind)
{
    m_kind = kind;
    m_isNew = true;
    m_scanned = 1;
    m_quote = 0;
    m_isInSubset = false;
    m_skipTo = {};
}

bool XmlLexer::stepUntil(QStringView terminator)
{
    const QStringView text = rest();
    const qsizetype found = text.indexOf(terminator, m_scanned);
    if (found >= 0) {
        handOut(found + terminator.size());
        enter(Kind::Text);
        return true;
    }
    // The terminator may be cut in two.
    const qsizetype sure = text.size() - (terminator.size() - 1);
    if (sure > m_scanned) {
        handOut(sure);
        m_scanned = 0;
    }
    return false;
}

bool XmlLexer::stepTag()
{
    const QStringView text = rest();
    for (; m_scanned < text.size(); ++m_scanned) {
        const char16_t c = text[m_scanned].unicode();
        if (m_quote) {
            if (c == m_quote)
                m_quote = 0;
        } else if (c == u'"' || c == u'\'') {
            m_quote = c;
        } else if (c == u'>') {
            if (text[m_scanned - 1] == u'/' && m_kind == Kind::StartTag)
                m_kind = Kind::EmptyTag;
            handOut(m_scanned + 1);
            enter(Kind::Text);
            return true;
        }
    }
    return false;
}

bool XmlLexer::stepDoctype()
{
    const QStringView text = rest();
    for (; m_scanned < text.size(); ++m_scanned) {
        const QStringView here = text.sliced(m_scanned);
        const char16_t c = here[0].unicode();
        if (!m_skipTo.isEmpty()) {
            if (here.size() < m_skipTo.size())
                return false;
            if (here.startsWith(m_skipTo)) {
                m_scanned += m_skipTo.size() - 1;
                m_skipTo = {};
            }
        } else if (m_quote) {
            if (c == m_quote)
                m_quote = 0;
        } else if (c == u'"' || c == u'\'') {
            m_quote = c;
        } else if (c == u'<' && m_isInSubset) {
            if (here.size() < 4)
                return false;
            if (here.startsWith(u"<!--"))
                m_skipTo = commentEnd;
            else if (here.startsWith(u"<?"))
                m_skipTo = instructionEnd;
            if (m_skipTo == commentEnd)
                m_scanned += 3; // "<!-->" is no comment
        } else if (c == u'[') {
            m_isInSubset = true;
        } else if (c == u']') {
            m_isInSubset = false;
        } else if (c == u'>' && !m_isInSubset) {
            handOut(m_scanned + 1);
            enter(Kind::Text);
            return true;
        }
    }
    return false;
}

void XmlLexer::handOut(qsizetype length)
{
    m_sink({m_kind, rest().first(length), m_isNew});
    m_begin += length;
    m_isNew = false;
}

} // namespace vlbase::utilities
