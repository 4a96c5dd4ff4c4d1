#pragma once

#include <VLBase/basetypes/stringhelpers.h>
#include <VLBase/basetypes/todoubleex.h>
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

} // namespace Vela
