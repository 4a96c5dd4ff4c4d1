#pragma once

#include <VLBase/os/velaos.h>

#include <optional>
#include <string>

/// Everything that the service asks the operating system, through the platform folder.
class VelaSystem : public VelaOS
{
public:
    /// Makes the calling thread the application thread.
    VelaSystem();

    quint64 LoadLibraryDll(const QString& path) override;
    bool FreeLibrary(quint64 module) override;
    ProcAddress GetProcAddress(quint64 module, const QString& name) override;
    quint32 GetLastError() override;
    void SetLastError(quint32 code) override;

    std::wstring GetWorkStationName() override;
    int GetHostNameByAdress(const QString& address, QString& hostName) override;
    int GetAdressByHostName(const QString& hostName, QString& addresses) override;
    quint32 GetNativeAddressByHostName(const QString& host) override;
    QString GetIpAddressByNativeAddress(quint32 address) override;
    const char* GetIdMac(int index) override;
    const char* GetIpAddress(int index) override;

    int GetCurrentThreadId() override;

    qint32 GetSecTimestamp() override;
    quint64 GetMSecTimestamp() override;
    quint64 GetTimestamp() override;
    bool SetSystemTime(int year, int month, int day, int hour, int minute, int second,
                       int millisecond, bool utc) override;
    qint64 GetTimezoneOffset(bool withDaylight) override;

    int Exec(const char* first, ...) override;
    qint64 ShellExec(const QString& target) override;
    int SystemSound(int sound) override;
    void Play(void* sound) override;
    Icmp_Echo_Result Ping(int requestSize, int timeoutMs, const char* host) override;

    char* CreateUniqueIdAsString() override;
    QString GetSystemPath() override;

    bool GetWindowPositions(int& left, int& top, int& right, int& bottom, int& showCmd,
                            int processId) override;
    void SetWindowPositions(int left, int top, int right, int bottom, int showCmd,
                            int processId) override;

    bool StartHiddenLegacyProgram(const wchar_t* program, const wchar_t* arguments,
                                  int& processId) override;
    bool TerminateHiddenLegacyProgram(int processId) override;
    bool IsProcessIdle(int processId) override;
    int FindProcess(const wchar_t* name) override;
    void SetPriorityHigh() override;
    void AlertableSleep(int milliseconds) override;

    std::wstring GetUserLoginName() override;
    std::wstring GetUserSID(const std::wstring& account) override;
    std::wstring GetTempDir() override;
    const char* GetEnvironmentVar(const char* name) override;
    std::wstring GetUserDir() override;

    bool ShutdownOS() override;
    bool RebootOS() override;

    QIcon GetIconById(int id) override;
    bool SetWindowToForeground(HWND window) override;
    bool SetWindowToForeground(const QString& executableName) override;
    bool SetWindowToForeground(PROCESS_INFORMATION* process) override;
    void BroadcastTerminationMessage() override;

protected:
    void SetAppThreadId() override;

private:
    std::optional<std::string> m_environmentValue; // the last one found; none before the first
};
