#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

#include <string>

namespace Vela {

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

} // namespace Vela
