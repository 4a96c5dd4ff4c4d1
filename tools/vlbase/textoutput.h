#pragma once

#include <QString>

#include <string_view>

namespace vlbase::tool {

/// Writes to standard output as UTF-8. What fails is told on standard error, save that nobody
/// reads it any more.
/// \return false when it was not written.
bool print(const QString& text);
/// The same of what is UTF-8 already.
bool print(std::string_view text);

/// One line on standard error, as UTF-8.
void printError(const QString& line);

/// `text` with its lines broken at blanks so that none is longer than `width` characters; lines
/// after the first begin with `indent` blanks. Line ends that are there stay.
QString wrapped(const QString& text, int width, int indent = 0);

} // namespace vlbase::tool
