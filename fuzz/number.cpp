// Numbers from any text: `toDoubleEx` against the C library in its own locale, `parse` of every
// member against itself.

#include <VLBase/basetypes/token.h>
#include <VLBase/utilities/numberhelpers.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cwchar>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isSame(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

void compareWithTheCLibrary(QString text)
{
    bool ok = false;
    const double value = Vela::toDoubleEx(text, &ok);
    if (text.contains(u'_')) {
        require(ok || value == 0.0);
        return;
    }
    // The fuzzer never sets a locale, so that this reads "." as the decimal point.
    const std::wstring pointed = text.replace(u',', u'.').toStdWString();
    const double expected = std::wcstod(pointed.c_str(), nullptr);
    require(ok);
    require(isSame(value, expected));
}

template <typename T> void readBack(const QString& text, const QLocale& locale, int base)
{
    bool ok = false;
    const T value = NumberHelpers::parse<T>(text, locale, &ok, base);
    require(NumberHelpers::parse<T>(text, locale, nullptr, base) == value || value != value);
    if (!ok) {
        require(std::is_same_v<T, bool> || std::is_floating_point_v<T> || value == T{});
        return;
    }
    if constexpr (!std::is_floating_point_v<T>) {
        const QString plain = QString::number(static_cast<qlonglong>(value));
        if constexpr (!std::is_same_v<T, quint64>)
            require(NumberHelpers::parse<T>(plain, QLocale::c(), &ok, 10) == value && ok);
    }
}

} // namespace

/// The input is the locale, the base, and the text in UTF-8.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    static const QLocale locales[] = {
        QLocale::c(),
        QLocale(QLocale::German),
        QLocale(QLocale::French),
        QLocale(QLocale::Swedish),
        QLocale(QLocale::Arabic, QLocale::Egypt),
        QLocale(QLocale::Persian),
        QLocale(QLocale::Hindi),
        QLocale(QLocale::Fulah, QLocale::AdlamScript, QLocale::Guinea),
    };
    const QLocale& locale = locales[data[0] % std::size(locales)];
    const int base = data[1] % 40;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data) + 2,
                                           static_cast<qsizetype>(size - 2));
    compareWithTheCLibrary(text);
    readBack<signed char>(text, locale, base);
    readBack<unsigned char>(text, locale, base);
    readBack<short>(text, locale, base);
    readBack<unsigned short>(text, locale, base);
    readBack<int>(text, locale, base);
    readBack<unsigned int>(text, locale, base);
    readBack<qint64>(text, locale, base);
    readBack<quint64>(text, locale, base);
    readBack<float>(text, locale, base);
    readBack<double>(text, locale, base);
    readBack<bool>(text, locale, base);
    return 0;
}
