#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

#include <string>

/// Text tools for user input and configuration values.
namespace Vela {

/// Cuts a text into tokens at delimiters, one per call.
///
/// Each delimiter of a run ends a token: "a,,b" cut at "," gives "a", an empty token and "b". A
/// delimiter at the start of the text is skipped. The delimiters may differ from call to call.
///
///     Tokenizer next(line);
///     for (QString word = next(); !word.isNull(); word = next())
///
/// The text is not copied: it must outlive the tokenizer, and what is in front of the next token
/// must not change meanwhile. Copies of a tokenizer go on independently.
class VLBASE_EXPORT Tokenizer
{
public:
    explicit Tokenizer(const QString& text);
    explicit Tokenizer(const QString&& text) = delete;

    /// The next token; a null string at the end, and an empty one that is not null for a token
    /// without characters.
    /// \param delimiters up to the terminating zero. Null is reported as the failed assertion
    ///                   "ws!=0" when bit 2 of the message mask is set, and means none.
    QString operator()(const wchar_t* delimiters);
    QString operator()(const QString& delimiters);

    /// The same with the first `count` delimiters, which may contain the zero character.
    QString operator()(const wchar_t* delimiters, quint64 count);
    QString operator()(const QString& delimiters, quint64 count);

    /// The same with blank, tab, line feed and the zero character.
    QString operator()();

private:
    QString next(QStringView delimiters);

    const QString* m_text;
    qsizetype m_position = 0;
};

/// The same for 8-bit text.
class VLBASE_EXPORT CTokenizer
{
public:
    explicit CTokenizer(const std::string& text);
    explicit CTokenizer(const std::string&& text) = delete;

    /// The next token; an empty one at the end.
    /// \param delimiters up to the terminating zero; null means none.
    std::string operator()(const char* delimiters);

private:
    const std::string* m_text;
    std::size_t m_position = 0;
};

/// Splits a text into at most `count` fields.
/// \param parts on entry the separator that ends each field, on return the fields, without blanks
///              at their ends. The first one is always written, also when `count` is 0.
/// \return the number of fields written. The last one has taken the rest of the text when its
///         separator was not found.
VLBASE_EXPORT unsigned char separateString(QString text, QString* parts, unsigned char count);

/// Where `strip` works.
enum stripType_ : int { StripStart = 0, StripEnd = 1, StripBoth = 2 };

/// Removes runs of a character from the ends of a text, in place. Other types change nothing.
/// \return `text`
VLBASE_EXPORT const QString& strip(QString& text, stripType_ type, wchar_t character);

/// Whether the text has characters and all of them are ASCII.
VLBASE_EXPORT bool isAsciiString(QString text);

/// Replaces every occurrence of `what`; what was put in is not searched again.
/// \return false when there was none, or when `what` is empty.
VLBASE_EXPORT bool replaceWith(std::string& text, const std::string& what, const std::string& with);

/// Reads a number at the start of a text, written with either decimal separator, or a mixed
/// fraction: "1.5", "1,5", "-2e3", "0x1F", "inf", "2_1/4" (2.25). Blanks before it are skipped,
/// what follows it is ignored, and locales play no part.
///
/// The fraction is added to a negative whole too: "-1_1/2" gives -0.5.
/// \param ok may be null; false only for a fraction with the denominator 0.
/// \return 0.0 when nothing could be read, and when `*ok` is false.
VLBASE_EXPORT double toDoubleEx(const QString& text, bool* ok = nullptr);

} // namespace Vela
