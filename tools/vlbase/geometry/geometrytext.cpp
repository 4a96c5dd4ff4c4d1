#include "geometrytext.h"

#include <VLBase/utilities/geometryarrayparser.h>

#include <QRect>

namespace vlbase::tool::geometry {
namespace {

constexpr qsizetype wholeRecordBytes = 46;
constexpr int knownMajorVersion = 1;

QString row(const QString& title, const QString& content)
{
    return QStringLiteral("%1  %2\n").arg(title, -11).arg(content);
}

/// QRect's own width and height overflow on edges that a damaged record may name.
qint64 sideOf(int first, int last)
{
    return qint64{last} - first + 1;
}

QString rectangleText(const QRect& rectangle)
{
    return QStringLiteral("left %1, top %2, %3 x %4")
        .arg(rectangle.left())
        .arg(rectangle.top())
        .arg(sideOf(rectangle.left(), rectangle.right()))
        .arg(sideOf(rectangle.top(), rectangle.bottom()));
}

QJsonObject rectangleJson(const QRect& rectangle)
{
    return {{QStringLiteral("left"), rectangle.left()},
            {QStringLiteral("top"), rectangle.top()},
            {QStringLiteral("width"), sideOf(rectangle.left(), rectangle.right())},
            {QStringLiteral("height"), sideOf(rectangle.top(), rectangle.bottom())}};
}

QString flagText(unsigned char flag)
{
    return flag ? QStringLiteral("yes") : QStringLiteral("no");
}

QString versionText(const GeometryArrayParser& parser)
{
    QString version = QStringLiteral("%1.%2").arg(parser.majorVersion()).arg(parser.minorVersion());
    if (parser.isValid())
        return version;
    if (parser.majorVersion() > knownMajorVersion)
        return QStringLiteral("%1, a later major version than %2, the one that is read")
            .arg(version)
            .arg(knownMajorVersion);
    return QStringLiteral("%1, which is no version of a geometry").arg(version);
}

/// Says when a record is shorter or longer than it should be; empty when it is not.
QString lengthText(qsizetype bytes)
{
    if (bytes < wholeRecordBytes) {
        return QStringLiteral("%1 of %2 bytes; what is missing reads as 0")
            .arg(bytes)
            .arg(wholeRecordBytes);
    }
    if (bytes > wholeRecordBytes)
        return QStringLiteral("%1 bytes more than known").arg(bytes - wholeRecordBytes);
    return QString();
}

} // namespace

QString asText(const StoredGeometry& geometry)
{
    const GeometryArrayParser parser(geometry.record);
    QString text = geometry.place.isEmpty() ? QString() : geometry.place + u'\n';
    text += row(QStringLiteral("version"), versionText(parser));
    if (!parser.isValid())
        return text;
    text += row(QStringLiteral("with frame"), rectangleText(parser.frameGeometry()));
    text += row(QStringLiteral("normal"), rectangleText(parser.normalGeometry()));
    text += row(QStringLiteral("screen"), QString::number(parser.screenNumber()));
    text += row(QStringLiteral("maximized"), flagText(parser.maximized()));
    text += row(QStringLiteral("full screen"), flagText(parser.fullScreen()));
    const QString length = lengthText(geometry.record.size());
    return length.isEmpty() ? text : text + row(QStringLiteral("length"), length);
}

QJsonObject asJson(const StoredGeometry& geometry)
{
    const GeometryArrayParser parser(geometry.record);
    QJsonObject object{{QStringLiteral("place"), geometry.place},
                       {QStringLiteral("valid"), parser.isValid()},
                       {QStringLiteral("majorVersion"), parser.majorVersion()},
                       {QStringLiteral("minorVersion"), parser.minorVersion()},
                       {QStringLiteral("bytes"), geometry.record.size()}};
    if (parser.isValid()) {
        object[QStringLiteral("frame")] = rectangleJson(parser.frameGeometry());
        object[QStringLiteral("normal")] = rectangleJson(parser.normalGeometry());
        object[QStringLiteral("screen")] = parser.screenNumber();
        object[QStringLiteral("maximized")] = parser.maximized() != 0;
        object[QStringLiteral("fullScreen")] = parser.fullScreen() != 0;
    }
    return object;
}

} // namespace vlbase::tool::geometry
