#include "token.h"

#include <VLBase/basetypes/internal/delimiters.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>

#include <QVarLengthArray>

#include <algorithm>
#include <string_view>
#include <type_traits>

namespace Vela {

namespace {

using vlbase::basetypes::Delimiter;
using vlbase::basetypes::takeToken;

constexpr unsigned int assertionBit = 2;
constexpr unsigned short terminatedFormLine = 75;
constexpr unsigned short countedFormLine = 111;

void reportNull(unsigned short line)
{
    if (ErrorHandler::Instance().GetMessageMask() & assertionBit)
        _Q_assert(L"ws!=0", L"basetypes/token", line);
}

/// A set of delimiters in UTF-16, whatever the width of the platform's wide characters.
class Utf16Set
{
public:
    Utf16Set(const wchar_t* text, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            append(static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(text[i])));
    }

    QStringView view() const { return QStringView(m_units.data(), m_units.size()); }

private:
    void append(char32_t c)
    {
        if (QChar::requiresSurrogates(c)) {
            m_units.append(QChar::highSurrogate(c));
            m_units.append(QChar::lowSurrogate(c));
        } else {
            m_units.append(static_cast<char16_t>(c));
        }
    }

    QVarLengthArray<char16_t, 32> m_units;
};

} // namespace

Tokenizer::Tokenizer(const QString& text)
    : m_text(&text)
{
}

QString Tokenizer::operator()(const wchar_t* delimiters)
{
    if (!delimiters) {
        reportNull(terminatedFormLine);
        return next({});
    }
    return next(Utf16Set(delimiters, std::char_traits<wchar_t>::length(delimiters)).view());
}

QString Tokenizer::operator()(const QString& delimiters)
{
    const auto* begin = reinterpret_cast<const char16_t*>(delimiters.constData());
    const auto* end = Delimiter<char16_t>(u'\0').find(begin, begin + delimiters.size());
    return next(QStringView(begin, end));
}

QString Tokenizer::operator()(const wchar_t* delimiters, quint64 count)
{
    if (!delimiters) {
        reportNull(countedFormLine);
        return next({});
    }
    return next(Utf16Set(delimiters, static_cast<std::size_t>(count)).view());
}

QString Tokenizer::operator()(const QString& delimiters, quint64 count)
{
    const auto size = static_cast<quint64>(delimiters.size());
    return next(QStringView(delimiters).first(static_cast<qsizetype>(std::min(count, size))));
}

QString Tokenizer::operator()()
{
    static constexpr char16_t usual[] = {u' ', u'\t', u'\n', u'\0'};
    return next(QStringView(usual, std::size(usual)));
}

QString Tokenizer::next(QStringView delimiters)
{
    const QStringView text(*m_text);
    if (m_position >= text.size())
        return QString();
    const char16_t* position = text.utf16() + m_position;
    const char16_t* start = takeToken(position, text.utf16() + text.size(), delimiters.utf16(),
                                      static_cast<std::size_t>(delimiters.size()));
    m_position = position - text.utf16();
    return QString(reinterpret_cast<const QChar*>(start), position - start);
}

CTokenizer::CTokenizer(const std::string& text)
    : m_text(&text)
{
}

std::string CTokenizer::operator()(const char* delimiters)
{
    using Byte = unsigned char;
    const auto bytes = [](const char* text) { return reinterpret_cast<const Byte*>(text); };
    if (m_position >= m_text->size())
        return std::string();
    const Byte* text = bytes(m_text->data());
    const Byte* position = text + m_position;
    const std::string_view set(delimiters ? delimiters : "");
    const Byte* start = takeToken(position, text + m_text->size(), bytes(set.data()), set.size());
    m_position = static_cast<std::size_t>(position - text);
    return std::string(start, position);
}

} // namespace Vela
