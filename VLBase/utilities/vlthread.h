#pragma once

#include <VLBase/vlbase_export.h>

#include <QDeadlineTimer>
#include <QThread>

#include <atomic>

/// The work of a `VLThread`. All operations are called in the new thread.
class VLBASE_EXPORT IRun
{
public:
    /// Does one unit of work.
    /// \return true to be called again.
    virtual bool Step() = 0;

    /// Called once, before the first step.
    virtual void Init() = 0;

    /// Called once, after the last step.
    virtual void Exit() = 0;

    /// Called once, after `Exit`, as the last thing that the thread does.
    virtual void Done() = 0;

    // Last, because the order of the four above is part of the binary interface.
    virtual ~IRun();
};

/// Runs a work object: `Init`, then `Step` until it returns false or the thread is to finish,
/// then `Exit` and `Done`.
///
/// A step that blocks delays the end until it returns.
class VLBASE_EXPORT VLThread : public QThread
{
    Q_OBJECT

public:
    /// \param work not owned; must outlive the thread.
    explicit VLThread(IRun& work);

    /// Asks the thread to finish and waits, without a limit, until it has: for ever behind a step
    /// that never returns. Not to be called in the thread itself.
    ~VLThread() override;

    /// Asks the thread to finish after the current step.
    /// \param timeoutMs how long to wait for that; the largest number is no limit.
    /// \return whether it ended within that many milliseconds. A thread that was asked once takes
    ///         no further step, also when it is started again.
    bool Finish(unsigned long timeoutMs);

    static void msleep(unsigned long milliseconds);
    static void sleep(unsigned long seconds);

protected:
    void run() override;

private:
    bool finish(QDeadlineTimer deadline);

    IRun& m_Work;
    std::atomic<bool> m_bStop{false};
    std::atomic<bool> m_bEnded{false};
};
