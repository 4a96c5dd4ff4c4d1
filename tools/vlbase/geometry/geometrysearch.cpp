#include "geometrysearch.h"

#include <QFile>
#include <QSettings>
#include <QVariant>

#include <algorithm>

namespace vlbase::tool::geometry {
namespace {

constexpr qsizetype mostBytes = qsizetype{16} * 1024 * 1024;

/// What every geometry begins with.
bool isRecord(const QByteArray& bytes)
{
    return bytes.startsWith("\x01\xd9\xd0\xcb");
}

QByteArray recordOfHex(const QString& text)
{
    return isHexText(text) ? QByteArray::fromHex(text.toLatin1()) : QByteArray();
}

/// A setting is the record, or a text of its digits.
QByteArray recordOfSetting(const QVariant& value)
{
    const QByteArray bytes = value.toByteArray();
    return isRecord(bytes) ? bytes : recordOfHex(QString::fromUtf8(bytes));
}

void findInSettings(const QString& fileName, std::vector<StoredGeometry>& found)
{
    const QSettings settings(fileName, QSettings::IniFormat);
    for (const QString& key : settings.allKeys()) {
        const QByteArray record = recordOfSetting(settings.value(key));
        if (isRecord(record))
            found.push_back({QStringLiteral("%1: %2").arg(fileName, key), record});
    }
}

bool readWhole(QFile& file, QByteArray& content, QString& errorText)
{
    // Devices have no end, and pipes give their content in pieces.
    QByteArray piece;
    do {
        piece = file.read(mostBytes + 1 - content.size());
        content += piece;
    } while (!piece.isEmpty());
    if (file.error() != QFileDevice::NoError)
        errorText = file.errorString();
    else if (content.size() > mostBytes)
        errorText = QStringLiteral("it is longer than any settings file");
    return errorText.isEmpty();
}

} // namespace

bool isHexText(QStringView text)
{
    const auto isDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    return std::any_of(text.begin(), text.end(), isDigit) &&
           std::all_of(text.begin(), text.end(),
                       [isDigit](QChar c) { return isDigit(c) || c.isSpace(); });
}

bool findInFile(const QString& fileName, std::vector<StoredGeometry>& found, QString& errorText)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        errorText = file.errorString();
        return false;
    }
    QByteArray content;
    if (!readWhole(file, content, errorText))
        return false;
    if (isRecord(content)) {
        found.push_back({fileName, content});
        return true;
    }
    const QByteArray ofHex = recordOfHex(QString::fromUtf8(content));
    if (isRecord(ofHex))
        found.push_back({fileName, ofHex});
    else
        findInSettings(fileName, found);
    return true;
}

} // namespace vlbase::tool::geometry
