#pragma once

#include <VLBase/errorhandling/ierrorhandler.h>
#include <VLBase/vlbase_export.h>

#include <QObject>
#include <QRecursiveMutex>
#include <QString>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class ILogTracer;
class IMessageDialog;
class LogFile;
class MessageList;

/// The one place of a process where failures, warnings and traces are recorded.
///
/// Every report is kept in a list of recent messages, passed to the installed log tracer, and
/// written to the text log "Logger.txt" in the temporary directory while no tracer reaches anybody.
///
/// The handler is made on first use and belongs to the thread that used it first, which must run
/// an event loop: reports made with `ProtocolMessage` are recorded there, in the order in which
/// they were made. Everything may be called from any thread, and nothing throws unless it says
/// so. Recording is guarded by the quality mutex.
///
/// A tracer that reports while it runs is not entered again. Its report is recorded at once and
/// sent when the running call has ended. After 1,024 such reports in a row, further ones go to
/// the text log instead, so that a tracer which answers every record with a report comes to an
/// end.
///
/// Reports that still wait for the event loop when the application object or the handler's thread
/// ends are recorded then, and later ones at once in the thread that makes them, so that
/// destructors of static objects may report. What waits when the library is unloaded, because the
/// process ends while the application object lives, is recorded before tracer and dialog are
/// destroyed and the text log is closed.
/// Reports that are made even later, by a thread that nobody has ended, do no harm.
class VLBASE_EXPORT ErrorHandler : public QObject, public IErrorHandler, public IErrorHandlerBase
{
    Q_OBJECT

public:
    /// Drops all reports while it lives. Blockers do not nest: the first one that ends lets
    /// reports through again.
    class VLBASE_EXPORT ExceptionBlocker
    {
    public:
        ExceptionBlocker();
        ~ExceptionBlocker();
        ExceptionBlocker(const ExceptionBlocker&) = delete;
        ExceptionBlocker& operator=(const ExceptionBlocker&) = delete;
    };

    static ErrorHandler& Instance();
    static IErrorHandler* Interface();

    /// Installs a tracer, or none, and destroys the previous one. When this returns, no thread is
    /// inside the previous tracer any more, unless it is the caller itself.
    static void SetLogTracer(std::unique_ptr<ILogTracer> tracer);
    /// Installs a dialog, or none, and destroys the previous one as soon as no call to it runs.
    static void SetMessageDlg(std::unique_ptr<IMessageDialog> dialog);

    /// The installed objects, which live until they are replaced; may be null.
    static ILogTracer* GetLogTracer();
    static IMessageDialog* GetMessageDlg();

    /// Null while the text log is off. Guarded by the quality mutex.
    LogFile* GetLogFile() const { return m_LogFile.get(); }
    /// Guarded by the quality mutex.
    MessageList* GetMessages() const { return m_Messages.get(); }
    QRecursiveMutex* GetQualityMutex() { return &m_QualityMutex; }

    void ProtocolMessage(QString text, QString fileName, QString className, QString methodName,
                         unsigned short line, unsigned char level) override;
    void TurnLogFileOff() override;
    void TurnLogFileOn() override;
    int ShowErrorDialog(const VLException& exception, bool b1, int n, bool b2, bool b3) override;
    int ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3) override;
    void PostErrorDialog(VLException& exception, bool b1, int n, bool b2) override;
    void PostErrorDialog(const QString& text, bool b1, int n, bool b2) override;
    void ProtocolException(const VLException& exception) override;
    void InitGetNextMessage(bool& atEnd, unsigned char level) override;
    QString GetNextMessage(bool& atEnd) override;
    void SetMessageMask(unsigned int mask) override;
    /// Sets the bits, or clears them.
    void SetMessageMask(unsigned int bits, bool on);
    unsigned int GetMessageMask() const override;
    void ShowWarningDialog(QString text) override;
    void SetbBlockException(bool block) override;

    void trace(QString text, QString fileName, QString className, QString methodName,
               unsigned short line, unsigned char level) override;
    void errorDialog(QString text, bool b1, int n, bool b2) override;

    /// Adds a function that `NotifyUncaughtHandlers` calls.
    void AddUncaughtHandler(std::function<void()> handler);
    /// Calls the functions in the order in which they were added.
    /// \throws std::bad_function_call when it comes to an empty one, and what they throw
    void NotifyUncaughtHandlers();

public Q_SLOTS:
    /// Records a text; connected to the signal below.
    void sl_protocolMessage(QString text, QString fileName, QString className, QString methodName,
                            std::uint16_t line, std::uint8_t level);

Q_SIGNALS:
    /// Carries a report to the handler's thread.
    void si_protocolMessage(QString text, QString fileName, QString className, QString methodName,
                            std::uint16_t line, std::uint8_t level);

private:
    struct Installed;
    struct AtUnload;
    struct QueuedReport
    {
        QString text;
        QString fileName;
        QString className;
        QString methodName;
        unsigned short line;
        unsigned char level;
    };
    struct DeferredReport
    {
        QString record;
        std::string line;
    };

    ErrorHandler();
    ~ErrorHandler() override;

    static Installed& installed();
    static void DeliverQueued();

    bool IsAnybodyDelivering() const;
    void Record(const QueuedReport& report);
    void RecordQueued();
    void Configure();
    void Log(const VLException& exception, unsigned char level);
    void DeliverDeferred();
    template <class Line> void WriteToLogFile(bool forTracer, Line line);
    template <class Call> void CallTracer(Call call);
    bool TracerIsOpen();
    void SendToTracer(const QString& record);
    template <class Call> static void CallDialog(Call call);
    void Close();

    static const AtUnload s_atUnload;
    static std::atomic<ErrorHandler*> s_instance;

    std::atomic<bool> m_bBlockException = false;
    bool m_bConfigured = false;
    bool m_bLogFileOn = false;
    unsigned char m_nMessageFilterLevel = 0;
    std::atomic<unsigned int> m_nMessageMask = 32;
    QRecursiveMutex m_QualityMutex;
    std::unique_ptr<LogFile> m_LogFile;
    std::unique_ptr<MessageList> m_Messages;
    std::vector<std::function<void()>> m_UncaughtHandlers;

    // What the posted events carry, in their order, for the case that nobody delivers them.
    std::deque<QueuedReport> m_QueuedReports;
    std::atomic<bool> m_bThreadHasEnded = false;
    std::atomic<bool> m_bIsUnloading = false;

    bool m_bInsideTracer = false;
    std::deque<DeferredReport> m_DeferredReports;
};
