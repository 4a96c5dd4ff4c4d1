#pragma once

#include <VLBase/vlbase_export.h>

#include <QIcon>
#include <QString>
#include <QtGlobal>

#include <string>

// The two Windows types that the interface names, declared as <windows.h> declares them, so that
// callers need no system header and may include one before or after this.
struct HWND__;
using HWND = HWND__*;
struct _PROCESS_INFORMATION;
using PROCESS_INFORMATION = _PROCESS_INFORMATION;

/// The outcome of one echo request.
struct Icmp_Echo_Result
{
    quint32 replies = 0;       ///< echo replies received
    quint32 roundTripTime = 0; ///< milliseconds, of the first reply
    quint8 timeToLive = 0;     ///< of the first reply; 0 without one and for IPv6
    QString message;           ///< what went wrong, empty on success
};

/// What the applications ask of the operating system. The one object of a process is reached
/// through VelaOS::Get().
///
/// No operation throws. A failure is an answer: false, -1, 0, null, an empty text; the system's
/// code for it is then in the calling thread's GetLastError(). What a machine does not
/// offer, such as windows without a display, fails with the code for "not supported".
///
/// Every operation may be called from any thread. Those that return a pointer share one buffer
/// per operation, which the next call overwrites: call them from one thread at a time.
class VLBASE_EXPORT IVelaOS
{
public:
    /// A function of a dynamic library; cast it to its own type before calling.
    using ProcAddress = int (*)();

    IVelaOS() = default;
    IVelaOS(const IVelaOS&) = default;
    IVelaOS& operator=(const IVelaOS&) = default;
    virtual ~IVelaOS();

    /// See GetNativeAddressByHostName().
    static quint32 GetNativeAddressByHostNameStatic(const QString& host);

    /// Loads a dynamic library and returns its handle, 0 on failure. Every successful load asks
    /// for one FreeLibrary().
    virtual quint64 LoadLibraryDll(const QString& path) = 0;
    virtual bool FreeLibrary(quint64 module) = 0;

    /// The function \a name of a loaded library, null when it has none of that name.
    virtual ProcAddress GetProcAddress(quint64 module, const QString& name) = 0;

    /// The last error code of the system in the calling thread: a Windows error code or an errno
    /// value. Successful calls may leave an older code.
    virtual quint32 GetLastError() = 0;
    virtual void SetLastError(quint32 code) = 0;

    /// The name of this computer. Asked for once; empty, and asked for again, while that fails.
    virtual std::wstring GetWorkStationName() = 0;

    // The host operations block until the name service has answered. Their int results are
    // values of QHostInfo::HostInfoError, 0 for success.

    /// Finds the name of the host at \a address; \a hostName is empty on failure.
    virtual int GetHostNameByAdress(const QString& address, QString& hostName) = 0;

    /// Finds the addresses of a host and joins them by commas. On failure \a addresses is
    /// \a hostName.
    virtual int GetAdressByHostName(const QString& hostName, QString& addresses) = 0;

    /// The first IPv4 address of a host, or the one that \a host spells, in network byte order:
    /// "10.1.2.3" is 0x0302010A. 0 when there is none.
    virtual quint32 GetNativeAddressByHostName(const QString& host) = 0;

    /// The dotted text of an IPv4 address in network byte order.
    virtual QString GetIpAddressByNativeAddress(quint32 address) = 0;

    // Network adapters are counted from 0, all of them save loopback. The list is made by the first
    // call that the system answers and stays as it was; so do the texts.

    /// The hardware address of adapter \a index, as in "00-1A-2B-3C-4D-5E". Empty past the last,
    /// and for one that has none.
    virtual const char* GetIdMac(int index) = 0;

    /// The first IPv4 address of adapter \a index in dotted form, "0.0.0.0" for one that has none.
    /// Empty past the last.
    virtual const char* GetIpAddress(int index) = 0;

    /// Whether the caller runs on the application thread: the one that made the service. That may
    /// be any thread whose log line (`CLogWriter`) or ping (`PingThread`) came before the first
    /// `VelaOS::Get()` of the program.
    virtual bool IsAppThread() = 0;
    virtual bool IsAppThreadOrNoAppThreadExists() = 0;

    /// The system's identifier of the calling thread.
    virtual int GetCurrentThreadId() = 0;

    /// The application thread's identifier, 0 when there is none.
    virtual int GetAppThreadId() = 0;

    /// Seconds since 1970-01-01 UTC, cut to 32 bits: wraps in 2038.
    virtual qint32 GetSecTimestamp() = 0;

    /// Milliseconds since 1970-01-01 UTC.
    virtual quint64 GetMSecTimestamp() = 0;

    /// Microseconds since 1970-01-01 UTC, taken from a clock of milliseconds. Every call in the
    /// process, on whatever thread, gets a greater value than the calls before it, so a stamp is
    /// also unique. Only SetSystemTime() lets stamps go back.
    virtual quint64 GetTimestamp() = 0;

    /// Runs a command line in the system's command interpreter, waits for its end and returns
    /// what std::system() returned, -1 for a null \a first. The line is made of all arguments, with
    /// a blank between them; the last argument must be a null pointer of type const char*.
    virtual int Exec(const char* first, ...) = 0;

    /// Has the time service of this machine set the system clock to the given local time, or to
    /// UTC with \a utc. Local time is taken with the offset that is in force now. Afterwards
    /// GetTimestamp() follows the new clock, also backwards.
    /// \return false when there is no such time, and when the service refuses or does not answer,
    ///         after about 200 ms at most.
    virtual bool SetSystemTime(int year, int month, int day, int hour, int minute, int second,
                               int millisecond, bool utc) = 0;

    /// The local zone's offset from UTC in microseconds, positive east of Greenwich. With
    /// \a withDaylight the one in force now, otherwise the zone's offset outside summer time.
    /// Follows a change of the zone. 0 when the system cannot tell.
    virtual qint64 GetTimezoneOffset(bool withDaylight) = 0;

    /// Opens a document, folder or address with the program that the user has chosen for it; on
    /// Linux by xdg-open.
    /// \return greater than 32 on success; otherwise what was wrong, among it 2 for a file and 3
    ///         for a folder that is not there, 5 for no access, 31 for no program chosen. Linux
    ///         waits for the latter at most a second.
    virtual qint64 ShellExec(const QString& target) = 0;

    /// Plays a tone of 443 Hz for 100 ms without waiting for its end, whatever \a sound is.
    /// -1 on failure.
    virtual int SystemSound(int sound) = 0;

    /// Plays the default message sound when \a sound has the value 1, otherwise a tone of 443 Hz
    /// for 100 ms, and waits for its end. On Linux only a console of the system has a tone:
    /// elsewhere the bell of the controlling terminal rings, or that of the X display.
    virtual void Play(void* sound) = 0;

    /// Sends one echo request to the first address of \a host, a name or an address in UTF-8, and
    /// waits for its reply. Other traffic does not lengthen the wait.
    /// \param requestSize bytes of data; the lower 16 bits count. On Linux IPv4 carries 65507 and
    ///        IPv6 65527 ("IP packet too big." above), Windows has no room for the reply to more
    ///        than about 8 KiB ("IP buffer too small.").
    /// \param timeoutMs the limit in milliseconds, without the time that finding a name's address
    ///        takes. With 0 or less only what comes at once counts.
    /// \return without replies the message tells why: "IP Timeout.", what a router or host sent
    ///         back ("TTL expired."), "Invalid IP Address" for a host without an address. On
    ///         Windows a router's answer counts as a reply and has a message all the same.
    ///
    /// A user who may not send echo requests gets "IP NO RESOURCES", with EPERM or EACCES as last
    /// error. Linux lets the groups in net.ipv4.ping_group_range, and whoever has CAP_NET_RAW.
    virtual Icmp_Echo_Result Ping(int requestSize, int timeoutMs, const char* host) = 0;

    /// A new globally unique identifier, 36 characters in upper case. Overwritten by the next
    /// call; empty on failure.
    virtual char* CreateUniqueIdAsString() = 0;

    /// The directory of the system's programs.
    virtual QString GetSystemPath() = 0;

    // A process's window is its first visible top-level one in the order in which they lie on the
    // screen; minimised ones are visible. Coordinates are pixels of the screen, of the window with
    // its frame in its normal (neither minimised nor maximised) place. The showCmd values are those
    // of Windows' ShowWindow: 1 normal, 2 minimised, 3 maximised are what is read.
    //
    // On Linux these operations work on an X display with any window manager, or none. A window
    // must say which process it belongs to (_NET_WM_PID), as Qt's and GTK's do; windows of
    // Wayland alone are out of reach. No call waits for a display that hangs for longer than a few
    // seconds. Without a display all of them fail.

    /// Finds where a process's window is. False, with the outputs untouched, when it has none;
    /// a window whose top is 0 also counts as none.
    ///
    /// X does not tell where a maximised window was before: the outputs are then where this
    /// process has seen or put it last, and where it is now when it never has.
    virtual bool GetWindowPositions(int& left, int& top, int& right, int& bottom, int& showCmd,
                                    int processId) = 0;

    /// Puts a process's window somewhere and shows, minimises, maximises or (0) hides it. Does
    /// nothing when there is none. On Linux it waits up to a third of a second until the window is
    /// there, and never activates it.
    virtual void SetWindowPositions(int left, int top, int right, int bottom, int showCmd,
                                    int processId) = 0;

    /// Starts a console program without a visible window, in this process's directory and
    /// environment. \a processId is set on success. Both texts and a blank between them may have
    /// 4095 characters together.
    ///
    /// Linux looks for a \a program without a slash in PATH; it may stand in double quotes, as it
    /// must on Windows when its path has blanks. \a arguments are taken apart at blanks, double
    /// quotes keep words together, and there is no shell. The program has no terminal, nothing
    /// behind its standard streams, and is no child of this process.
    virtual bool StartHiddenLegacyProgram(const wchar_t* program, const wchar_t* arguments,
                                          int& processId) = 0;

    /// Ends a process at once. False when there is none of that identifier, it has ended already,
    /// it may not be ended by this user, or \a processId is not positive.
    virtual bool TerminateHiddenLegacyProgram(int processId) = 0;

    /// Whether a process waits for input, or begins to within 50 ms; true also when it cannot be
    /// looked at. On Linux: whether it sleeps for 50 ms and uses no processor time meanwhile.
    virtual bool IsProcessIdle(int processId) = 0;

    /// The identifier of the first running process whose program's file name contains \a name
    /// (case matters), -1 when there is none. The program of a script is its interpreter.
    virtual int FindProcess(const wchar_t* name) = 0;

    /// Raises the scheduling priority of this process: to the high class on Windows, to a nice
    /// value of -10 in all threads on Linux, which threads and programs started later inherit.
    /// Without the right to do so it changes nothing and leaves the system's code.
    virtual void SetPriorityHigh() = 0;

    /// Sleeps, and lets what is queued for the thread interrupt the sleep: asynchronous procedure
    /// calls on Windows, signal handlers elsewhere. -1 sleeps until then, lower values not at all.
    virtual void AlertableSleep(int milliseconds) = 0;

    /// The account name that this process runs under.
    virtual std::wstring GetUserLoginName() = 0;

    /// The security identifier of an account of this machine ("S-1-..."); empty for an unknown
    /// one.
    virtual std::wstring GetUserSID(const std::wstring& account) = 0;

    /// The directory for temporary files, with a separator at its end.
    virtual std::wstring GetTempDir() = 0;

    /// The value of an environment variable, valid until the next call. An unset variable reads
    /// as empty, but as null as long as this object has never found one.
    virtual const char* GetEnvironmentVar(const char* name) = 0;

    /// The user's own directory, as the environment names it.
    virtual std::wstring GetUserDir() = 0;

    // These let two seconds pass first, in which other threads can finish, but answer at once
    // when this process may not do it. Programs that object are not heard. On Linux logind does
    // it, asked over the system bus.

    /// Powers the machine off. False when this process may not, or when it failed.
    virtual bool ShutdownOS() = 0;
    /// The same with a restart.
    virtual bool RebootOS() = 0;

    /// An icon of the library "IconDll" (IconDll.dll, libIconDll.so): IDI_ICON1 for the \a id 0,
    /// otherwise the one whose number is 100 more, as IDI_ICON105 for 5. On Linux these are Qt
    /// resources of the library, ":/IconDll/IDI_ICON105", images of any kind. Empty when there is
    /// none, and without a QGuiApplication.
    virtual QIcon GetIconById(int id) = 0;

    // Restores a window, brings it to the front and has it painted. The main window of a process
    // is its first visible one that belongs to no other, as dialogs do. False when there is none
    // and when it did not come to the front; up to ten tries are made, in half a second on Linux.

    /// \a window is the window's identifier in X on Linux, which is QWidget::winId() on both.
    virtual bool SetWindowToForeground(HWND window) = 0;
    /// The main window of the first process whose program has this file name: the whole name
    /// ("calc.exe"), in any case of letters.
    virtual bool SetWindowToForeground(const QString& executableName) = 0;
    /// The main window of a started process; only its identifier is looked at. Linux takes the
    /// record of <VLBase/os/processinformation.h>.
    virtual bool SetWindowToForeground(PROCESS_INFORMATION* process) = 0;

    /// Asks the other applications of the desktop to quit, by the message "QuitApp" to their
    /// top-level windows: a registered message on Windows, a client message on an X display. It
    /// is up to them; TerminationListener hears it. This process does not get it.
    virtual void BroadcastTerminationMessage() = 0;

protected:
    /// Makes the calling thread the application thread.
    virtual void SetAppThreadId() = 0;
};
