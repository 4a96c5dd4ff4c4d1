#include "stamptext.h"

#include <VLBase/basetypes/datetime.h>
#include <VLBase/basetypes/timestamp2qstring.h>

#include <QRegularExpression>

namespace vlbase::tool::time {
namespace {

/// "+05:45", and "Z" for UTC.
QString offsetText(quint64 stamp)
{
    const int minutes =
        Vela::DateTime::VLTimeStamp2QDateTime(stamp).toLocalTime().offsetFromUtc() / 60;
    if (minutes == 0)
        return QStringLiteral("Z");
    return QString::asprintf("%c%02d:%02d", minutes < 0 ? '-' : '+', qAbs(minutes) / 60,
                             qAbs(minutes) % 60);
}

} // namespace

std::optional<quint64> parseStamp(const QString& text)
{
    static const QRegularExpression digits(QStringLiteral("^\\s*([0-9]+)\\s*$"));
    if (const auto match = digits.match(text); match.hasMatch()) {
        bool fits = false;
        const quint64 stamp = match.captured(1).toULongLong(&fits);
        return fits ? std::optional(stamp) : std::nullopt;
    }
    // The zone goes to the whole seconds, because the library drops one behind a fraction. The
    // fraction of a log line has a point in the middle.
    static const QRegularExpression form(
        QStringLiteral("^\\s*([^.]+?)(?:\\.([0-9]{1,3})\\.?([0-9]*))?\\s*(Z|UTC|[+-][0-9]{2}:?[0-9]"
                       "{2})?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    QString zone = match.captured(4).toUpper();
    if (zone == u"UTC")
        zone = QStringLiteral("Z");
    Vela::DateTime seconds;
    seconds.fromString(match.captured(1) + zone);
    if (!seconds.isValid() || seconds < Vela::DateTime(quint64{0}))
        return std::nullopt;
    const QString fraction = (match.captured(2) + match.captured(3)).leftJustified(6, u'0', true);
    return seconds.getTimeStamp() + fraction.toULongLong();
}

std::vector<std::pair<QString, QString>> stampTexts(quint64 stamp)
{
    using Vela::DateTime;
    const DateTime instant(stamp);
    const QString iso = QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz\u00b5\u00b5\u00b5");
    TimeStamp2QString log;
    log.toString(quint64{1'000'000}); // Otherwise the first second of 1970 had no date.
    return {
        {QStringLiteral("stamp"), QString::number(stamp)},
        {QStringLiteral("utc"), instant.toMSString()},
        {QStringLiteral("local"), instant.toMSString(DateTime::localTimeOffset)},
        {QStringLiteral("log"), log.toString(stamp)},
        {QStringLiteral("iso"), instant.toString(iso) + u'Z'},
        {QStringLiteral("isoLocal"),
         instant.toString(iso, DateTime::localTimeOffset) + offsetText(stamp)},
    };
}

} // namespace vlbase::tool::time
