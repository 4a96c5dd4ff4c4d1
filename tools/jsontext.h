#pragma once

#include <QString>

#include <string>
#include <string_view>

class QJsonValue;

namespace vlbase {

/// An array or an object as indented text with a line end.
QString jsonText(const QJsonValue& value);

/// Appends a text as a JSON string in its quotes. What is UTF-8 stays so.
void appendJsonString(std::string_view text, std::string& out);

} // namespace vlbase
