#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

namespace vlbase {

/// Writes a number with leading zeros to `digits` places and returns what follows them.
inline QChar* writeDigits(QChar* out, unsigned value, int digits)
{
    for (QChar* place = out + digits; place != out; value /= 10)
        *--place = QChar(static_cast<char16_t>(u'0' + value % 10));
    return out + digits;
}

/// The instant of a local date and time. A time that a change of the clocks skips is read with the
/// offset before the change, a time that comes twice is the first of the two: `QDateTime` leaves
/// the former not valid, and the latter to what the C library happened to look at before.
///
/// \return UTC; null for a date or time that is not valid
QDateTime localToUtc(const QDate& date, const QTime& time);

/// "yyyy-MM-dd hh:mm:ss" of a date-time in its own time spec, as `QDateTime::toString` writes it
/// but several times faster, and then `suffix`. Empty for one that is not valid.
QString dateTimeText(const QDateTime& dateTime, QStringView suffix);

} // namespace vlbase
