#include "stamptext.h"

#include <VLBase/basetypes/datetime.h>
#include <VLBase/basetypes/timestamp2qstring.h>

#include <QRegularExpression>

#include <limits>

namespace vlbase::tool::time {
namespace {

constexpr quint64 microsPerSecond = 1'000'000;

/// The whole seconds since 1970. Years of more than four digits, which Qt does not read, are moved
/// by so many times 400 years, after which the calendar and the rules of a zone repeat.
std::optional<quint64> parseSeconds(QString text, const QString& zone)
{
    constexpr int cycle = 400;
    constexpr quint64 secondsPerCycle = quint64{146'097} * 86'400;
    static const QRegularExpression longYear(QStringLiteral("^([0-9]{5,6})-"));
    quint64 cycles = 0;
    if (const auto match = longYear.match(text); match.hasMatch()) {
        const unsigned year = match.captured(1).toUInt();
        const unsigned readable = 10'000 - cycle + year % cycle;
        if (year < readable)
            return std::nullopt;
        cycles = (year - readable) / cycle;
        text.replace(0, match.capturedLength(1), QString::number(readable));
    }
    Vela::DateTime instant;
    instant.fromString(text + zone);
    if (!instant.isValid() || instant < Vela::DateTime(quint64{0}))
        return std::nullopt;
    return instant.getTimeStamp() / microsPerSecond + cycles * secondsPerCycle;
}

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
        QStringLiteral("^\\s*([^.,]+?)(?:[.,]([0-9]{1,3})\\.?([0-9]*))?\\s*"
                       "(Z|UTC|[+-][0-9]{2}:?[0-9]{2})?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    QString zone = match.captured(4).toUpper();
    if (zone == u"UTC")
        zone = QStringLiteral("Z");
    const std::optional<quint64> seconds = parseSeconds(match.captured(1), zone);
    const QString sixDigits = (match.captured(2) + match.captured(3)).leftJustified(6, u'0', true);
    const quint64 fraction = sixDigits.toULongLong();
    if (!seconds || *seconds > (std::numeric_limits<quint64>::max() - fraction) / microsPerSecond)
        return std::nullopt;
    return *seconds * microsPerSecond + fraction;
}

std::vector<std::pair<QString, QString>> stampTexts(quint64 stamp)
{
    using Vela::DateTime;
    const DateTime instant(stamp);
    const QString iso = QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz\u00b5\u00b5\u00b5");
    TimeStamp2QString log;
    log.toString(microsPerSecond); // Otherwise the first second of 1970 had no date.
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
