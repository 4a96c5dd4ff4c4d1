#include "jsontext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace vlbase {

QString jsonText(const QJsonValue& value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return QString::fromUtf8(document.toJson(QJsonDocument::Indented));
}

void appendJsonString(std::string_view text, std::string& out)
{
    constexpr char digits[] = "0123456789abcdef";
    out += '"';
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '\t') {
            out += "\\t";
        } else if (code < ' ') {
            out += "\\u00";
            out += digits[code >> 4];
            out += digits[code & 0xF];
        } else {
            if (character == '"' || character == '\\')
                out += '\\';
            out += character;
        }
    }
    out += '"';
}

} // namespace vlbase
