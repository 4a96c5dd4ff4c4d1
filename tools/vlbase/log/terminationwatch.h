#pragma once

#include <QThread>

namespace vlbase::tool::log {

/// Hears the wish that all applications of the desktop quit, and turns it into a requested
/// StopSignal, while this object lives. Has a thread of its own, because the verbs of the log run
/// no event loop.
class TerminationWatch : private QThread
{
public:
    TerminationWatch() { start(); }
    ~TerminationWatch() override
    {
        quit();
        wait();
    }

private:
    void run() override;
};

} // namespace vlbase::tool::log
