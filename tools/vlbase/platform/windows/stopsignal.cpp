#include "tools/vlbase/platform/stopsignal.h"

#include <atomic>
#include <windows.h>

namespace vlbase::tool::platform {
namespace {

std::atomic<bool> isRequested{false};

// Made once and never closed: the handler runs in a thread of the system's and may come late.
HANDLE wakeUpEvent()
{
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

HANDLE finishedEvent()
{
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

/// Null before Windows 10 1803.
HANDLE preciseTimer()
{
    constexpr DWORD highResolution = 0x00000002; // not in every header
    static const HANDLE timer =
        CreateWaitableTimerExW(nullptr, nullptr, highResolution, TIMER_ALL_ACCESS);
    return timer;
}

BOOL WINAPI onConsoleEvent(DWORD event)
{
    const bool again = isRequested;
    StopSignal::request();
    switch (event) {
    case CTRL_C_EVENT:
        return again ? FALSE : TRUE;
    case CTRL_BREAK_EVENT:
        return TRUE;
    default:
        // The process ends when this returns; the system waits about five seconds for it.
        WaitForSingleObject(finishedEvent(), 5000);
        return TRUE;
    }
}

} // namespace

StopSignal::StopSignal()
{
    wakeUpEvent();
    finishedEvent();
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

StopSignal::~StopSignal()
{
    SetEvent(finishedEvent());
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
}

bool StopSignal::requested()
{
    return isRequested;
}

void StopSignal::request()
{
    isRequested = true;
    SetEvent(wakeUpEvent());
}

bool StopSignal::wait(std::chrono::microseconds time) const
{
    if (isRequested)
        return true;
    // In units of 100 ns, below zero: from now on. A wait with a time-out would last a tick of
    // the system's clock, 15 ms, in which a busy log runs over.
    LARGE_INTEGER due = {};
    due.QuadPart = -10 * time.count();
    const HANDLE timer = preciseTimer();
    if (timer != nullptr && SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE) != 0) {
        const HANDLE either[] = {wakeUpEvent(), timer};
        WaitForMultipleObjects(2, either, FALSE, INFINITE);
    } else {
        // Rounded up: a wait of 0 would turn a loop of short sleeps into a spinning one.
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(time).count();
        WaitForSingleObject(wakeUpEvent(), static_cast<DWORD>(milliseconds));
    }
    return isRequested;
}

} // namespace vlbase::tool::platform
