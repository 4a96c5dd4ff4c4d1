#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>
#include <QTime>

/// One recorded report: its text, its time of day and its level.
class VLBASE_EXPORT Message
{
public:
    /// An empty information of now.
    Message();
    Message(QString text, const QTime& timeStamp, unsigned char level);
    Message(const Message& other);
    virtual ~Message();

    Message& operator=(const Message& other);

    QString GetText() const { return m_strText; }
    void SetText(QString text);
    const QTime& GetTimeStamp() const { return m_TimeStamp; }
    void SetTimeStamp(const QTime& timeStamp) { m_TimeStamp = timeStamp; }
    /// 1 is an error, 255 an information, any other value a warning of that level.
    unsigned char GetWarningLevel() const { return m_nWarningLevel; }

    /// Equal in text, time stamp and level.
    bool operator==(const Message& other) const;
    bool operator!=(const Message& other) const;

    // The order looks at the time stamps only, a null time being the earliest. So two messages of
    // the same time are neither less nor greater, and may be unequal all the same.
    bool operator<(const Message& other) const;
    bool operator<=(const Message& other) const;
    bool operator>(const Message& other) const;
    bool operator>=(const Message& other) const;

private:
    QString m_strText;
    QTime m_TimeStamp;
    unsigned char m_nWarningLevel;
};
