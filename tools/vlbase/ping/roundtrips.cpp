#include "roundtrips.h"

#include <algorithm>
#include <cmath>

namespace vlbase::tool::ping {

QString millisecondsText(double microseconds)
{
    return QString::number(microseconds / 1000, 'f', 3);
}

// Welford 1962: sums of squares would lose the digits of a small deviation.
void RoundTrips::addReply(std::chrono::microseconds time)
{
    const auto value = static_cast<double>(time.count());
    ++m_sent;
    ++m_received;
    m_least = m_received == 1 ? value : std::min(m_least, value);
    m_greatest = std::max(m_greatest, value);
    const double distance = value - m_mean;
    m_mean += distance / static_cast<double>(m_received);
    m_squares += distance * (value - m_mean);
}

QString RoundTrips::text() const
{
    const double lost =
        m_sent == 0 ? 0
                    : 100 * static_cast<double>(m_sent - m_received) / static_cast<double>(m_sent);
    QString text = QStringLiteral("%1 sent, %2 received, %3% lost\n")
                       .arg(m_sent)
                       .arg(m_received)
                       .arg(lost, 0, 'g', 3);
    if (m_received > 0)
        text += QStringLiteral("round trip min/avg/max/mdev %1/%2/%3/%4 ms\n")
                    .arg(millisecondsText(m_least), millisecondsText(m_mean),
                         millisecondsText(m_greatest),
                         millisecondsText(std::sqrt(m_squares / static_cast<double>(m_received))));
    return text;
}

} // namespace vlbase::tool::ping
