#include "message.h"

#include <utility>

Message::Message()
    : Message(QString(), QTime::currentTime(), 255)
{
}

Message::Message(QString text, const QTime& timeStamp, unsigned char level)
    : m_strText(std::move(text))
    , m_TimeStamp(timeStamp)
    , m_nWarningLevel(level)
{
}

Message::Message(const Message& other) = default;

Message::~Message() = default;

Message& Message::operator=(const Message& other)
{
    if (*this != other) {
        m_strText = other.m_strText;
        m_TimeStamp = other.m_TimeStamp;
        m_nWarningLevel = other.m_nWarningLevel;
    }
    return *this;
}

void Message::SetText(QString text)
{
    m_strText = std::move(text);
}

bool Message::operator==(const Message& other) const
{
    return m_TimeStamp == other.m_TimeStamp && m_strText == other.m_strText &&
           m_nWarningLevel == other.m_nWarningLevel;
}

bool Message::operator!=(const Message& other) const
{
    return !(*this == other);
}

bool Message::operator<(const Message& other) const
{
    return m_TimeStamp < other.m_TimeStamp;
}

bool Message::operator<=(const Message& other) const
{
    return m_TimeStamp <= other.m_TimeStamp;
}

bool Message::operator>(const Message& other) const
{
    return m_TimeStamp > other.m_TimeStamp;
}

bool Message::operator>=(const Message& other) const
{
    return m_TimeStamp >= other.m_TimeStamp;
}
