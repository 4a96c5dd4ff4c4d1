#include "xmlformat.h"

#include "internal/xmlcheck.h"
#include "internal/xmlinput.h"
#include "internal/xmlshaper.h"

#include <algorithm>

using namespace vlbase::utilities;

namespace {

XmlFormat::Error faultOf(const XmlCheck& check)
{
    return {check.line(), check.column(), check.reason()};
}

void tell(const XmlFormat::Error& found, XmlFormat::Error* error)
{
    if (error)
        *error = found;
}

// Well-formed: its layout is noted. Otherwise the fault is returned.
XmlFormat::Error checked(XmlInput& input, XmlLayout& layout)
{
    XmlCheck check;
    XmlLexer lexer([&](const XmlLexer::Piece& piece) { layout.take(piece); });
    while (const std::optional<QString> text = input.next()) {
        if (!check.take(*text))
            return faultOf(check);
        lexer.feed(*text);
    }
    if (input.isMalformed())
        return {check.line(), check.column(), input.fault()};
    if (!input.fault().isEmpty())
        return {0, 0, input.fault()};
    if (!check.finish())
        return faultOf(check);
    lexer.finish();
    return {};
}

// Collects what is written, so that a device is not called for each blank.
class Output
{
public:
    Output(QIODevice& device, QStringEncoder encoder)
        : m_device(device)
        , m_encoder(std::move(encoder))
    {
    }

    void write(QStringView text)
    {
        constexpr qsizetype enough = 64 * 1024;
        m_text.append(text);
        if (m_text.size() >= enough)
            flush();
    }

    void flush()
    {
        const QByteArray bytes = m_encoder(m_text);
        m_text.clear();
        if (!m_hasFailed && m_device.write(bytes) != bytes.size())
            m_hasFailed = true;
    }

    bool hasFailed() const { return m_hasFailed; }

private:
    QIODevice& m_device;
    QStringEncoder m_encoder;
    QString m_text;
    bool m_hasFailed = false;
};

XmlFormat::Error reshaped(QIODevice& from, QIODevice& to, const XmlShape& shape)
{
    XmlInput input(from);
    XmlLayout layout;
    const XmlFormat::Error fault = checked(input, layout);
    if (!fault.reason.isEmpty())
        return fault;

    input.rewind();
    Output output(to, input.encoder());
    XmlShaper shaper(shape, layout, [&](QStringView text) { output.write(text); });
    XmlLexer lexer([&](const XmlLexer::Piece& piece) { shaper.take(piece); });
    while (const std::optional<QString> text = input.next()) {
        lexer.feed(*text);
        if (output.hasFailed())
            break;
    }
    lexer.finish();
    shaper.finish();
    output.flush();
    if (!input.fault().isEmpty())
        return {0, 0, input.fault()};
    return {0, 0, output.hasFailed() ? to.errorString() : QString()};
}

QString reshaped(const QString& xml, const XmlShape& shape, XmlFormat::Error* error)
{
    XmlCheck check;
    if (!check.take(xml) || !check.finish()) {
        tell(faultOf(check), error);
        return xml;
    }
    tell({}, error);

    XmlLayout layout;
    XmlLexer first([&](const XmlLexer::Piece& piece) { layout.take(piece); });
    first.feed(xml);
    first.finish();

    QString result;
    XmlShaper shaper(shape, layout, [&](QStringView text) { result.append(text); });
    XmlLexer second([&](const XmlLexer::Piece& piece) { shaper.take(piece); });
    second.feed(xml);
    second.finish();
    shaper.finish();
    return result;
}

bool reshape(QIODevice& from, QIODevice& to, const XmlShape& shape, XmlFormat::Error* error)
{
    const XmlFormat::Error fault = reshaped(from, to, shape);
    tell(fault, error);
    return fault.reason.isEmpty();
}

constexpr XmlShape compactShape = {false, 0, 0};

} // namespace

void XmlFormat::setIndent(int blanks)
{
    m_indent = std::max(blanks, 0);
}

void XmlFormat::setLineWidth(int characters)
{
    m_lineWidth = std::max(characters, 0);
}

QString XmlFormat::indented(const QString& xml, Error* error) const
{
    return reshaped(xml, {true, m_indent, m_lineWidth}, error);
}

QString XmlFormat::compacted(const QString& xml, Error* error) const
{
    return reshaped(xml, compactShape, error);
}

bool XmlFormat::indent(QIODevice& from, QIODevice& to, Error* error) const
{
    return reshape(from, to, {true, m_indent, m_lineWidth}, error);
}

bool XmlFormat::compact(QIODevice& from, QIODevice& to, Error* error) const
{
    return reshape(from, to, compactShape, error);
}
