#pragma once

#include <VLBase/vlbase_export.h>

#include <QDateTime>
#include <QString>
#include <QtGlobal>

namespace Vela {

/// An instant to the microsecond, with the offset and the format in which it is shown.
///
/// A time stamp is the count of microseconds since 1970-01-01 00:00:00 UTC as an unsigned 64-bit
/// number; all of them are valid. The object may be at an earlier instant too, and shows it, but
/// such an instant has no stamp.
///
///     Vela::DateTime(1'700'000'000'123'456).toMSString();   // "2023-11-14 22:13:20.123456"
///
/// Local times follow the machine's zone at the instant concerned. A local time that a change of
/// the clocks skips is read as if they had not been changed yet, one that comes twice is the first.
class VLBASE_EXPORT DateTime
{
public:
    /// The display offset that stands for the machine's local time.
    static constexpr qint64 localTimeOffset = 100'000'000'000;

    /// "yyyy-MM-dd hh:mm:ss"
    static const QString& defaultFormat();
    /// "yyyy-MM-dd hh:mm:ss.zzzµµµ"
    static const QString& microsecondFormat();

    static constexpr qint64 microsecToSec(qint64 microseconds) { return microseconds / 1'000'000; }
    static constexpr qint64 secToMicrosec(qint64 seconds) { return seconds * 1'000'000; }

    /// No instant: null and not valid.
    DateTime();
    /// The start of a day in local time, shown as it is: the offset is 0, the date as given.
    DateTime(const QDate& date);
    /// A local time, shown as local time. A time that is not valid stands for midnight.
    DateTime(const QDate& date, const QTime& time);
    /// Shown as local time if it is one, as UTC otherwise.
    DateTime(const QDateTime& dateTime);
    /// The instant of a time stamp, shown as UTC.
    DateTime(quint64 timeStamp);

    bool operator==(const DateTime& other) const;
    bool operator!=(const DateTime& other) const { return !(*this == other); }
    bool operator<(const DateTime& other) const;
    bool operator<=(const DateTime& other) const { return !(other < *this); }
    bool operator>(const DateTime& other) const { return other < *this; }
    bool operator>=(const DateTime& other) const { return !(*this < other); }

    /// The time stamp. What is not valid or lies before 1970 answers with 4294967295 seconds.
    quint64 getTimeStamp() const;
    bool isNull() const { return m_dateTime.isNull(); }
    bool isValid() const { return m_dateTime.isValid(); }

    /// Days and seconds from this to `other`, without regard to the microseconds.
    qint64 daysTo(const DateTime& other) const { return m_dateTime.daysTo(other.m_dateTime); }
    qint64 secsTo(const DateTime& other) const { return m_dateTime.secsTo(other.m_dateTime); }
    DateTime addDays(int days) const;
    DateTime addSecs(int seconds) const;

    /// Date and time as shown, in whole seconds.
    QDate date() const;
    QTime time() const;
    /// The seconds of the UTC time, whatever the offset.
    int second() const;

    /// Replace date or time (UTC, unless made from a date alone). A time brings its milliseconds.
    void setDate(const QDate& date);
    void setTime(const QTime& time);
    /// Moves to a second since 1970; the microseconds stay.
    void setTime_t(unsigned int seconds);
    /// Moves to a time stamp.
    void setTime_ts(quint64 timeStamp);

    /// How far the shown time is ahead of UTC, in microseconds; or `localTimeOffset`.
    qint64 getOffsetFromUTC() const { return m_offset; }
    void setOffsetFromUTC(qint64 microseconds) { m_offset = microseconds; }

    /// The format of `toString()`.
    QString getFormatString() const { return m_format; }
    void setFormatString(const QString& format) { m_format = format; }

    /// Reads an ISO date, or a date and a time, with or without a fraction of a second.
    ///
    /// Without a zone it is local time, and shown as such from now on. What follows the first point
    /// is the fraction and nothing else: a zone behind it makes it no number, and both are lost
    /// ("12:00:00.5Z" is 12 o'clock local time). It is read as a double and cut off behind the
    /// microsecond, which makes ".000251" 250 of them: one in ninety fractions of six digits loses
    /// its last. Text that is no date makes the object not valid.
    /// \return the time stamp, as `getTimeStamp`
    quint64 fromString(const QString& text);

    /// The instant as text; empty when it is not valid.
    ///
    /// The format is that of `QDateTime::toString`, in which these stand for the fraction of the
    /// second, also between quotes: "zzz" and "z" are milliseconds with and without leading zeros,
    /// "zz" hundredths; "µµµ" and "µ" are the microseconds within the millisecond.
    /// \param offset display offset in microseconds, or `localTimeOffset`
    QString toString(const QString& format, qint64 offset) const;
    QString toString(const QString& format) const { return toString(format, m_offset); }
    QString toString(qint64 offset) const { return toString(m_format, offset); }
    QString toString() const { return toString(m_format, m_offset); }

    /// The instant to the microsecond, in `microsecondFormat`.
    QString toMSString(qint64 offset) const { return toString(microsecondFormat(), offset); }
    QString toMSString() const { return toMSString(m_offset); }

    /// A stamp as UTC, to the millisecond.
    static QDateTime VLTimeStamp2QDateTime(quint64 timeStamp);
    /// The stamp of an instant, to the millisecond; as `getTimeStamp` where there is none.
    static quint64 QDateTime2TimeStamp(const QDateTime& dateTime);
    /// A stamp in the default format, as local time and as UTC.
    static QString UTCtoLocalString(quint64 timeStamp);
    static QString UTCtoUTCString(quint64 timeStamp);

    /// A duration in its largest unit: "1:02:03.4 hours", "2:03.4 min" or " 7.5 s".
    ///
    /// The tenths are cut off, only those of less than a minute are rounded. Of a negative duration
    /// each part carries a sign.
    static QString GetReadeableShortTimeString(double seconds);

private:
    QDateTime shownToTheSecond() const;
    QDateTime shownAt(qint64 offset, int& microseconds) const;

    QDateTime m_dateTime;
    int m_microseconds = 0;
    QString m_format;
    qint64 m_offset = 0;
};

} // namespace Vela
