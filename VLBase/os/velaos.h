#pragma once

#include <VLBase/os/ivelaos.h>
#include <VLBase/vlbase_export.h>

#include <atomic>
#include <mutex>
#include <string>

/// The way to the operating system's service object, and what that object knows without asking
/// the system.
///
/// The thread of the first Get() becomes the application thread, so applications call it first in
/// their main thread: the shared log and PingThread call it too, in whichever thread they run.
///
///     int main(int argc, char* argv[])
///     {
///         VelaOS::Get();
///         QApplication app(argc, argv);
///         ...
class VLBASE_EXPORT VelaOS : public IVelaOS
{
public:
    VelaOS() = default;
    VelaOS(const VelaOS& other);
    VelaOS& operator=(const VelaOS& other);
    ~VelaOS() override;

    /// The service of this process, made on first use. It stays usable until the process has
    /// ended: static destructors may call it too.
    static IVelaOS& Get();
    /// The same as Get().
    static IVelaOS& GetInstance();

    bool IsAppThread() override;
    bool IsAppThreadOrNoAppThreadExists() override;
    int GetAppThreadId() override;

protected:
    static IVelaOS& Create();

    /// The name that setCachedWorkStationName() was given last, empty at first.
    std::wstring cachedWorkStationName() const;
    void setCachedWorkStationName(const std::wstring& name);

    void setAppThread(int threadId);

private:
    std::wstring m_workStationName;
    std::atomic<int> m_appThreadId{0};
    mutable std::mutex m_nameLock;
};
