// Tokenizers of both widths against a plain loop, and against each other.

#include <VLBase/basetypes/token.h>

#include <QStringList>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Each character ends a token or belongs to one; a delimiter in front ends none.
std::vector<std::string> plainTokens(const std::string& text, const std::string& delimiters)
{
    std::vector<std::string> tokens(text.empty() ? 0 : 1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (delimiters.find(text[i]) == std::string::npos)
            tokens.back() += text[i];
        else if (i > 0)
            tokens.emplace_back();
    }
    return tokens;
}

void helpers(const QString& text, const QString& delimiters)
{
    QString parts[3] = {delimiters, delimiters, delimiters};
    require(Vela::separateString(text, parts, 3) <= 3);
    for (int type = 0; type < 4 && !delimiters.isEmpty(); ++type) {
        QString stripped = text;
        Vela::strip(stripped, static_cast<Vela::stripType_>(type),
                    static_cast<wchar_t>(delimiters[0].unicode()));
        require(text.contains(stripped));
    }
    std::string replaced = text.toStdString();
    Vela::replaceWith(replaced, delimiters.toStdString(), text.left(3).toStdString());
}

} // namespace

/// The input is the number of delimiters, the delimiters, and the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t count = std::min<std::size_t>(data[0] % 8, size - 1);
    const auto* bytes = reinterpret_cast<const char*>(data) + 1;
    const std::string delimiters(bytes, count);
    const std::string text(bytes + count, size - 1 - count);
    const auto wide = [](const std::string& narrow) {
        return QString::fromLatin1(narrow.data(), static_cast<qsizetype>(narrow.size()));
    };
    const QString wideText = wide(text);
    const QString wideDelimiters = wide(delimiters);

    Vela::Tokenizer counted(wideText);
    for (const std::string& token : plainTokens(text, delimiters)) {
        const QString taken = counted(wideDelimiters, count);
        require(!taken.isNull() && taken == wide(token));
    }
    require(counted(wideDelimiters, count).isNull());

    Vela::Tokenizer terminated(wideText);
    Vela::CTokenizer narrow(text);
    for (const std::string& token : plainTokens(text, delimiters.c_str())) {
        require(terminated(wideDelimiters.toStdWString().c_str()) == wide(token));
        require(narrow(delimiters.c_str()) == token);
    }
    require(terminated(wideDelimiters).isNull());
    helpers(wideText, wideDelimiters);
    return 0;
}
