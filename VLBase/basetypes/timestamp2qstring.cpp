#include "timestamp2qstring.h"

#include <VLBase/basetypes/internal/civiltime.h>

namespace {

constexpr quint64 microsPerSecond = 1'000'000;

const QString& noFraction()
{
    static const QString theText = QStringLiteral("000.000");
    return theText;
}

} // namespace

TimeStamp2QString::TimeStamp2QString()
    : m_text(noFraction())
{
}

TimeStamp2QString::TimeStamp2QString(const TimeStamp2QString& other) = default;
TimeStamp2QString& TimeStamp2QString::operator=(const TimeStamp2QString& other) = default;
TimeStamp2QString::~TimeStamp2QString() = default;

const QString& TimeStamp2QString::toString(quint64 timeStamp)
{
    const quint64 second = timeStamp / microsPerSecond;
    if (second != m_second)
        showSecond(second);
    const auto micros = static_cast<unsigned>(timeStamp - second * microsPerSecond);
    // Written into the text that is there: no allocation, unless a caller still shares it.
    QChar* fraction = m_text.data() + m_secondSize;
    vlbase::writeDigits(fraction, micros / 1000, 3);
    vlbase::writeDigits(fraction + 4, micros % 1000, 3);
    return m_text;
}

void TimeStamp2QString::showSecond(quint64 second)
{
    m_second = second;
    const QDateTime local = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(second));
    m_text = vlbase::dateTimeText(local, u".") + noFraction();
    m_secondSize = m_text.size() - noFraction().size();
}
