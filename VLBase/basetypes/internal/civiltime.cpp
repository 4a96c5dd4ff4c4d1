#include "civiltime.h"

#include <algorithm>

namespace vlbase {

namespace {

constexpr qint64 secondsPerDay = 86'400;

} // namespace

QDateTime localToUtc(const QDate& date, const QTime& time)
{
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    const QDateTime unshifted(date, time, Qt::UTC);
    // No zone is a day or more away from UTC, so these two lie on the two sides of any change that
    // matters here.
    const auto offsetAt = [&](qint64 secondsLater) {
        return unshifted.addSecs(secondsLater).toLocalTime().offsetFromUtc();
    };
    const QDateTime early = unshifted.addSecs(-offsetAt(-secondsPerDay));
    const QDateTime late = unshifted.addSecs(-offsetAt(secondsPerDay));
    const auto shows = [&](const QDateTime& instant) {
        const QDateTime local = instant.toLocalTime();
        return local.date() == date && local.time() == time;
    };
    return shows(late) && !shows(early) ? late : early;
}

QString dateTimeText(const QDateTime& dateTime, QStringView suffix)
{
    if (!dateTime.isValid())
        return QString();
    int year = 0;
    int month = 0;
    int day = 0;
    dateTime.date().getDate(&year, &month, &day);
    const int second = dateTime.time().msecsSinceStartOfDay() / 1000;
    const auto absoluteYear = static_cast<unsigned>(year < 0 ? -year : year);
    int yearDigits = 4;
    for (unsigned limit = 10'000; absoluteYear >= limit; limit *= 10)
        ++yearDigits;

    QString text((year < 0 ? 1 : 0) + yearDigits + 15 + suffix.size(), Qt::Uninitialized);
    QChar* out = text.data();
    const auto put = [&out](QChar separator, int value) {
        *out++ = separator;
        out = writeDigits(out, static_cast<unsigned>(value), 2);
    };
    if (year < 0)
        *out++ = u'-';
    out = writeDigits(out, absoluteYear, yearDigits);
    put(u'-', month);
    put(u'-', day);
    put(u' ', second / 3600);
    put(u':', second / 60 % 60);
    put(u':', second % 60);
    std::copy(suffix.begin(), suffix.end(), out);
    return text;
}

} // namespace vlbase
