#pragma once

#include <VLBase/basetypes/band.h>

#include <QString>

/// A receiver that steps through its band and meets the troubles that receivers meet.
class Station
{
public:
    explicit Station(QString name);

    /// Measures the next channel. Whatever goes wrong is reported, nothing is thrown.
    void measureNextChannel();

private:
    double nextFrequency();
    void measure(double frequencyHz);

    QString m_name;
    Band m_band;
    unsigned m_step = 0;
};
