#pragma once

#include <QString>

#include <chrono>
#include <cstdint>

namespace vlbase::tool::ping {

/// "0.042"
QString millisecondsText(double microseconds);

/// How many requests were answered, and how fast.
class RoundTrips
{
public:
    void addReply(std::chrono::microseconds time);
    void addLoss() { ++m_sent; }

    std::int64_t sent() const { return m_sent; }
    std::int64_t received() const { return m_received; }

    /// Two lines; one without replies. The last figure is the standard deviation.
    QString text() const;

private:
    std::int64_t m_sent = 0;
    std::int64_t m_received = 0;
    double m_least = 0; // microseconds, all of these
    double m_greatest = 0;
    double m_mean = 0;
    double m_squares = 0; // of the distances from the mean
};

} // namespace vlbase::tool::ping
