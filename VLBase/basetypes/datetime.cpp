#include "datetime.h"

#include <VLBase/basetypes/internal/civiltime.h>

#include <array>
#include <cmath>
#include <limits>

namespace Vela {

namespace {

constexpr int microsPerSecond = 1'000'000;

// What Qt 4 answered when asked for the seconds since 1970 of a date-time that has none.
constexpr quint64 noSeconds = 0xFFFFFFFF;

QDateTime utcSecond(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QDateTime utcSecond(quint64 seconds)
{
    return utcSecond(static_cast<qint64>(seconds));
}

/// The second that an instant lies in. Local times are read by our rule for those that the clocks
/// skip or show twice.
QDateTime utcSecond(const QDateTime& dateTime)
{
    const QDateTime utc = dateTime.timeSpec() == Qt::LocalTime
                              ? vlbase::localToUtc(dateTime.date(), dateTime.time())
                              : dateTime.toUTC();
    return utc.isValid() ? utc.addMSecs(-utc.time().msec()) : QDateTime();
}

/// The same for a date-time that stays local.
QDateTime settled(const QDateTime& dateTime)
{
    return dateTime.timeSpec() == Qt::LocalTime && dateTime.date().isValid()
               ? vlbase::localToUtc(dateTime.date(), dateTime.time()).toLocalTime()
               : dateTime;
}

int microsecondsOf(const QTime& time)
{
    return time.isValid() ? time.msec() * 1000 : 0;
}

quint64 stampOf(const QDateTime& dateTime, int microseconds)
{
    const auto rest = static_cast<quint64>(microseconds);
    const qint64 seconds = dateTime.isValid() ? dateTime.toSecsSinceEpoch() : -1;
    const quint64 last = (std::numeric_limits<quint64>::max() - rest) / microsPerSecond;
    const bool hasStamp = seconds >= 0 && static_cast<quint64>(seconds) <= last;
    return (hasStamp ? static_cast<quint64>(seconds) : noSeconds) * microsPerSecond + rest;
}

/// The microseconds of a fraction such as ".25". An exponent can make them more than a second.
int parseFraction(const QString& fraction)
{
    const double micros = fraction.toDouble() * microsPerSecond;
    return micros < std::numeric_limits<int>::max() ? static_cast<int>(micros) : 0;
}

QString padded(int value, int digits)
{
    return QStringLiteral("%1").arg(value, digits, 10, QLatin1Char('0'));
}

/// Replaces the placeholders of the fraction, the longer ones before their one-letter forms. The
/// digits that a step inserts are no placeholders of a later one.
QString withFraction(QString format, int microseconds)
{
    const int milliseconds = microseconds / 1000;
    format.replace(QStringLiteral("zzz"), padded(milliseconds, 3));
    format.replace(QStringLiteral("zz"), padded(microseconds / 10'000, 2));
    format.replace(u'z', QString::number(milliseconds));
    format.replace(QStringLiteral("\u00b5\u00b5\u00b5"), padded(microseconds % 1000, 3));
    format.replace(u'\u00b5', QString::number(microseconds % 1000));
    return format;
}

QString secondsWithFraction(const QDateTime& dateTime, int microseconds)
{
    std::array<QChar, 7> fraction{u'.'};
    vlbase::writeDigits(fraction.data() + 1, static_cast<unsigned>(microseconds), 6);
    return vlbase::dateTimeText(dateTime, QStringView(fraction));
}

} // namespace

const QString& DateTime::defaultFormat()
{
    static const QString theFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");
    return theFormat;
}

const QString& DateTime::microsecondFormat()
{
    static const QString theFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz\u00b5\u00b5\u00b5");
    return theFormat;
}

DateTime::DateTime()
    : m_format(defaultFormat())
{
}

DateTime::DateTime(const QDate& date)
    : m_dateTime(vlbase::localToUtc(date, QTime(0, 0)).toLocalTime())
    , m_format(defaultFormat())
{
}

DateTime::DateTime(const QDate& date, const QTime& time)
    : m_dateTime(utcSecond(QDateTime(date, time)))
    , m_microseconds(microsecondsOf(time))
    , m_format(defaultFormat())
    , m_offset(localTimeOffset)
{
}

DateTime::DateTime(const QDateTime& dateTime)
    : m_dateTime(utcSecond(dateTime))
    , m_microseconds(microsecondsOf(dateTime.time()))
    , m_format(defaultFormat())
    , m_offset(dateTime.timeSpec() == Qt::LocalTime ? localTimeOffset : 0)
{
}

DateTime::DateTime(quint64 timeStamp)
    : m_dateTime(utcSecond(timeStamp / microsPerSecond))
    , m_microseconds(static_cast<int>(timeStamp % microsPerSecond))
    , m_format(defaultFormat())
{
}

bool DateTime::operator==(const DateTime& other) const
{
    // What is not valid has no instant that could be compared.
    return isValid() == other.isValid() && (!isValid() || m_dateTime == other.m_dateTime) &&
           m_microseconds == other.m_microseconds;
}

bool DateTime::operator<(const DateTime& other) const
{
    if (isValid() != other.isValid())
        return other.isValid();
    if (isValid() && m_dateTime != other.m_dateTime)
        return m_dateTime < other.m_dateTime;
    return m_microseconds < other.m_microseconds;
}

quint64 DateTime::getTimeStamp() const
{
    return stampOf(m_dateTime, m_microseconds);
}

DateTime DateTime::addDays(int days) const
{
    DateTime moved(*this);
    moved.m_dateTime = settled(m_dateTime.addDays(days));
    return moved;
}

DateTime DateTime::addSecs(int seconds) const
{
    DateTime moved(*this);
    moved.m_dateTime = m_dateTime.addSecs(seconds);
    return moved;
}

QDate DateTime::date() const
{
    return shownToTheSecond().date();
}

QTime DateTime::time() const
{
    return shownToTheSecond().time();
}

QDateTime DateTime::shownToTheSecond() const
{
    if (m_offset == 0)
        return m_dateTime;
    if (m_offset == localTimeOffset)
        return m_dateTime.toLocalTime();
    return m_dateTime.toUTC().addSecs(microsecToSec(m_offset));
}

int DateTime::second() const
{
    return m_dateTime.toUTC().time().second();
}

void DateTime::setDate(const QDate& date)
{
    m_dateTime.setDate(date);
    m_dateTime = settled(m_dateTime);
}

void DateTime::setTime(const QTime& time)
{
    m_microseconds = microsecondsOf(time);
    m_dateTime.setTime(time.addMSecs(-microsecondsOf(time) / 1000));
    m_dateTime = settled(m_dateTime);
}

void DateTime::setTime_t(unsigned int seconds)
{
    m_dateTime = utcSecond(quint64{seconds});
}

void DateTime::setTime_ts(quint64 timeStamp)
{
    m_dateTime = utcSecond(timeStamp / microsPerSecond);
    m_microseconds = static_cast<int>(timeStamp % microsPerSecond);
}

quint64 DateTime::fromString(const QString& text)
{
    const qsizetype point = text.indexOf(u'.');
    const int fraction = point < 0 ? 0 : parseFraction(text.mid(point));
    const QDateTime parsed = QDateTime::fromString(text.left(point), Qt::ISODate);
    if (parsed.timeSpec() == Qt::LocalTime) {
        // Read anew by our rule for times that come twice.
        m_dateTime = utcSecond(vlbase::localToUtc(parsed.date(), parsed.time()));
        m_offset = localTimeOffset;
    } else {
        m_dateTime = utcSecond(parsed);
    }
    m_dateTime = m_dateTime.addSecs(fraction / microsPerSecond);
    m_microseconds = fraction % microsPerSecond;
    return getTimeStamp();
}

QString DateTime::toString(const QString& format, qint64 offset) const
{
    if (!isValid())
        return QString();
    int microseconds = 0;
    const QDateTime shown = shownAt(offset, microseconds);
    if (format == defaultFormat())
        return vlbase::dateTimeText(shown, {});
    if (format == microsecondFormat())
        return secondsWithFraction(shown, microseconds);
    return shown.toString(withFraction(format, microseconds));
}

/// The date-time to show and the microseconds within its second, right before 1970 as well.
QDateTime DateTime::shownAt(qint64 offset, int& microseconds) const
{
    microseconds = m_microseconds;
    if (offset == 0)
        return m_dateTime;
    if (offset == localTimeOffset)
        return m_dateTime.toLocalTime();
    qint64 seconds = m_dateTime.toSecsSinceEpoch() + offset / microsPerSecond;
    microseconds += static_cast<int>(offset % microsPerSecond);
    if (microseconds < 0) {
        microseconds += microsPerSecond;
        --seconds;
    } else if (microseconds >= microsPerSecond) {
        microseconds -= microsPerSecond;
        ++seconds;
    }
    return utcSecond(seconds);
}

QDateTime DateTime::VLTimeStamp2QDateTime(quint64 timeStamp)
{
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(timeStamp / 1000), Qt::UTC);
}

quint64 DateTime::QDateTime2TimeStamp(const QDateTime& dateTime)
{
    return stampOf(utcSecond(dateTime), microsecondsOf(dateTime.time()));
}

QString DateTime::UTCtoLocalString(quint64 timeStamp)
{
    return DateTime(timeStamp).toString(localTimeOffset);
}

QString DateTime::UTCtoUTCString(quint64 timeStamp)
{
    return DateTime(timeStamp).toString();
}

QString DateTime::GetReadeableShortTimeString(double seconds)
{
    const double hours = std::trunc(seconds / 3600);
    double rest = std::fmod(seconds, 3600.0);
    const int minutes = static_cast<int>(rest / 60);
    if (!std::isfinite(seconds) || (hours == 0.0 && minutes == 0))
        return QStringLiteral("%1 s").arg(seconds, 4, 'f', 1);

    rest -= minutes * 60;
    const int wholeSeconds = static_cast<int>(rest);
    const int tenths = static_cast<int>((rest - wholeSeconds) * 10);
    if (hours == 0.0)
        return QString::asprintf("%d:%02d.%d min", minutes, wholeSeconds, tenths);
    return QString::asprintf("%.0f:%02d:%02d.%d hours", hours, minutes, wholeSeconds, tenths);
}

} // namespace Vela
