#include "wideformat.h"

#include <QByteArray>
#include <QChar>
#include <QStringView>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <type_traits>

namespace {

enum class Size { Default, Char, Short, Long, LongLong, Pointer, LongDouble, Wide };

// A number of a conversion is written out or taken from the arguments.
struct Field
{
    int value = 0;
    bool isArgument = false;
};

struct Conversion
{
    QByteArray flags;
    int width = 0;
    int precision = -1; // not given
    Size size = Size::Default;
    char16_t type = 0;
};

// Far beyond what fits into any result, and it keeps a wild width from eating the memory.
constexpr int MaxField = 0xFFFF;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

class Formatter
{
public:
    Formatter(QStringView format, qsizetype limit, std::va_list arguments)
        : m_format(format)
        , m_limit(limit)
    {
        va_copy(m_arguments, arguments);
    }
    ~Formatter() { va_end(m_arguments); }
    Formatter(const Formatter&) = delete;
    Formatter& operator=(const Formatter&) = delete;

    QString run()
    {
        while (m_pos < m_format.size() && m_out.size() < m_limit) {
            const QChar c = m_format[m_pos++];
            if (c != u'%' || !convert())
                m_out += c;
        }
        return cut();
    }

private:
    QChar peek() const { return m_pos < m_format.size() ? m_format[m_pos] : QChar(); }

    bool take(QStringView word)
    {
        if (!m_format.mid(m_pos).startsWith(word))
            return false;
        m_pos += word.size();
        return true;
    }

    // Reads the conversion that follows a percent sign; leaves the position, and the arguments,
    // which cannot be given back, alone if there is none.
    bool convert()
    {
        const qsizetype start = m_pos;
        if (take(u"%")) {
            m_out += u'%';
            return true;
        }
        Conversion conversion;
        while (QStringView(u"-+ #0").contains(peek()))
            conversion.flags += static_cast<char>(m_format[m_pos++].unicode());
        const Field width = readField();
        const std::optional<Field> precision =
            take(u".") ? std::optional(readField()) : std::nullopt;
        conversion.size = readSize();
        if (!QStringView(u"diouxXcCsSfFeEgGaApn").contains(peek())) {
            m_pos = start;
            return false;
        }
        conversion.type = m_format[m_pos++].unicode();
        conversion.width = valueOf(width);
        if (conversion.width < 0) {
            conversion.flags += '-';
            conversion.width = -conversion.width;
        }
        if (precision)
            conversion.precision = valueOf(*precision);
        write(conversion);
        return true;
    }

    Field readField()
    {
        if (take(u"*"))
            return {0, true};
        int number = 0;
        while (isDigit(peek()))
            number = std::min(number * 10 + m_format[m_pos++].digitValue(), MaxField);
        return {number, false};
    }

    int valueOf(Field field)
    {
        return field.isArgument ? std::clamp(va_arg(m_arguments, int), -MaxField, MaxField)
                                : field.value;
    }

    Size readSize()
    {
        if (take(u"I64") || take(u"ll") || take(u"j"))
            return Size::LongLong;
        if (take(u"I32"))
            return Size::Default;
        if (take(u"I") || take(u"z") || take(u"t"))
            return Size::Pointer;
        if (take(u"hh"))
            return Size::Char;
        if (take(u"h"))
            return Size::Short;
        if (take(u"l"))
            return Size::Long;
        if (take(u"L"))
            return Size::LongDouble;
        if (take(u"w"))
            return Size::Wide;
        return Size::Default;
    }

    void write(const Conversion& conversion)
    {
        switch (conversion.type) {
        case u'd':
        case u'i':
            return writeNumber(conversion, "ll", argument<std::make_signed>(conversion.size));
        case u'o':
        case u'u':
        case u'x':
        case u'X':
            return writeNumber(conversion, "ll", argument<std::make_unsigned>(conversion.size));
        case u'c':
        case u'C':
            return writeCharacter(conversion);
        case u's':
        case u'S':
            return writeText(conversion);
        case u'p':
            return writePointer(conversion);
        case u'n': // Would write through a pointer, which a trace has no business to do.
            static_cast<void>(va_arg(m_arguments, void*));
            return;
        default:
            if (conversion.size == Size::LongDouble)
                return writeNumber(conversion, "L", va_arg(m_arguments, long double));
            return writeNumber(conversion, "", va_arg(m_arguments, double));
        }
    }

    // What is smaller than an int comes as one.
    template <template <class> class Signedness,
              class Result = typename Signedness<long long>::type>
    Result argument(Size size)
    {
        using Promoted = typename Signedness<int>::type;
        switch (size) {
        case Size::Char:
            return Result(
                static_cast<typename Signedness<char>::type>(va_arg(m_arguments, Promoted)));
        case Size::Short:
            return Result(
                static_cast<typename Signedness<short>::type>(va_arg(m_arguments, Promoted)));
        case Size::Long:
            return Result(va_arg(m_arguments, typename Signedness<long>::type));
        case Size::LongLong:
            return va_arg(m_arguments, Result);
        case Size::Pointer:
            return Result(va_arg(m_arguments, typename Signedness<std::ptrdiff_t>::type));
        case Size::Default:
        case Size::LongDouble:
        case Size::Wide:
            break;
        }
        return Result(va_arg(m_arguments, Promoted));
    }

    template <class Number>
    void writeNumber(const Conversion& conversion, const char* size, Number number)
    {
        const QByteArray format =
            '%' + conversion.flags + "*.*" + size + static_cast<char>(conversion.type);
        std::array<char, 128> shortText;
        const int length = std::snprintf(shortText.data(), shortText.size(), format.constData(),
                                         conversion.width, conversion.precision, number);
        if (length < static_cast<int>(shortText.size())) {
            m_out += QString::fromUtf8(shortText.data());
            return;
        }
        QByteArray text(length, Qt::Uninitialized);
        std::snprintf(text.data(), static_cast<std::size_t>(length) + 1, format.constData(),
                      conversion.width, conversion.precision, number);
        m_out += QString::fromUtf8(text);
    }

    void writePointer(const Conversion& conversion)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(va_arg(m_arguments, void*));
        constexpr int digits = sizeof(void*) * 2;
        pad(conversion,
            QStringLiteral("%1").arg(quint64(address), digits, 16, QLatin1Char('0')).toUpper());
    }

    // Capital letters mean 8-bit text among wide text; a size says it outright.
    static bool isWide(const Conversion& conversion)
    {
        if (conversion.size == Size::Short)
            return false;
        if (conversion.size == Size::Long || conversion.size == Size::Wide)
            return true;
        return conversion.type == u'c' || conversion.type == u's';
    }

    void writeCharacter(const Conversion& conversion)
    {
        const int character = va_arg(m_arguments, int);
        if (isWide(conversion)) {
            const auto wide = static_cast<wchar_t>(character);
            pad(conversion, QString::fromWCharArray(&wide, 1));
        } else {
            pad(conversion, QString(QLatin1Char(static_cast<char>(character))));
        }
    }

    void writeText(const Conversion& conversion)
    {
        const QString text = isWide(conversion)
                                 ? wideText(va_arg(m_arguments, const wchar_t*), conversion)
                                 : narrowText(va_arg(m_arguments, const char*), conversion);
        pad(conversion, conversion.precision < 0 ? text : text.left(conversion.precision));
    }

    // A precision also promises that not more than that is there to be read.
    template <class Character>
    static qsizetype readableLength(const Character* text, const Conversion& conversion)
    {
        qsizetype length = 0;
        while (length != conversion.precision && text[length] != 0)
            ++length;
        return length;
    }

    static QString wideText(const wchar_t* text, const Conversion& conversion)
    {
        if (!text)
            return QStringLiteral("(null)");
        return QString::fromWCharArray(text, readableLength(text, conversion));
    }

    static QString narrowText(const char* text, const Conversion& conversion)
    {
        if (!text)
            return QStringLiteral("(null)");
        return QString::fromUtf8(text, readableLength(text, conversion));
    }

    void pad(const Conversion& conversion, const QString& text)
    {
        m_out += conversion.flags.contains('-') ? text.leftJustified(conversion.width)
                                                : text.rightJustified(conversion.width);
    }

    QString cut() const
    {
        QString text = m_out.left(m_limit);
        if (text.size() == m_limit && text.back().isHighSurrogate())
            text.chop(1);
        const qsizetype zero = text.indexOf(QChar(u'\0'));
        return zero < 0 ? text : text.left(zero);
    }

    QStringView m_format;
    qsizetype m_limit;
    std::va_list m_arguments;
    qsizetype m_pos = 0;
    QString m_out;
};

} // namespace

namespace vlbase {

QString formatWide(const QString& format, qsizetype limit, std::va_list arguments)
{
    return Formatter(format, limit, arguments).run();
}

} // namespace vlbase
