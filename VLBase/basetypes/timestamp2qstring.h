#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>
#include <QtGlobal>

/// Turns the time stamps of log lines into local time, cheaply: the date part is made once per
/// second.
///
///     TimeStamp2QString text;
///     text.toString(1'714'979'289'123'456);   // "2024-05-06 07:08:09.123.456" in UTC
///
/// For one thread at a time.
class VLBASE_EXPORT TimeStamp2QString
{
public:
    TimeStamp2QString();
    TimeStamp2QString(const TimeStamp2QString& other);
    TimeStamp2QString& operator=(const TimeStamp2QString& other);
    virtual ~TimeStamp2QString();

    /// \param timeStamp microseconds since 1970-01-01 00:00:00 UTC
    /// \return the text, which is valid until the next call. As long as no later second has come,
    ///         the second 0 has no date part.
    const QString& toString(quint64 timeStamp);

private:
    void showSecond(quint64 second);

    QString m_text;             ///< date part and fraction
    qsizetype m_secondSize = 0; ///< how long the date part is
    quint64 m_second = 0;       ///< what the date part shows
};
