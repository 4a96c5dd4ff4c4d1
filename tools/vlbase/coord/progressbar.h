#pragma once

#include <QtGlobal>

#include <chrono>

namespace vlbase::tool::coord {

/// A bar on standard error while work takes its time; nothing where that is no terminal.
class ProgressBar
{
public:
    /// \param total what the work comes to; 0 when nobody knows
    explicit ProgressBar(qint64 total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Cheap enough to be called for each of many small steps.
    /// \param count how many things `done` stands for, to be shown
    void show(qint64 done, qint64 count);

    /// Takes the bar away, so that a line can be written where it was.
    void clear();

private:
    void draw(qint64 done, qint64 count);

    using Clock = std::chrono::steady_clock;

    qint64 m_total;
    bool m_isWanted;
    bool m_isShown = false;
    int m_stepsToLook = 0;
    Clock::time_point m_next;
};

} // namespace vlbase::tool::coord
