#pragma once

#include <QString>

/// A receiver that steps through its band and meets the troubles that receivers meet.
class Station
{
public:
    explicit Station(QString name);

    /// Measures the next channel. Whatever goes wrong is reported, nothing is thrown.
    void measureNextChannel();

private:
    void measure(double frequencyHz);

    QString m_name;
    unsigned m_step = 0;
};
