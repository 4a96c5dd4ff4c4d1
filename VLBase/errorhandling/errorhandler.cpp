#include "errorhandler.h"

#include "internal/qualitylock.h"

#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/errorhandling/imessagedialog.h>
#include <VLBase/errorhandling/logfile.h>
#include <VLBase/errorhandling/message.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QCoreApplication>
#include <QDir>
#include <QMetaType>
#include <QScopeGuard>
#include <QThread>

#include <chrono>
#include <exception>
#include <mutex>
#include <utility>

using vlbase::QualityLock;

namespace {

constexpr unsigned char ErrorLevel = 1;
constexpr unsigned char WarningDialogLevel = 254;
constexpr int NoDialog = -2;
constexpr int CursorRound = 256;
constexpr int MaxDeferredReports = 1024;
constexpr int PatienceMs = 500;

QString logFilePath()
{
    QString path = QDir::tempPath();
    if (!path.endsWith(QDir::separator()))
        path += QDir::separator();
    return path + QLatin1String("Logger.txt");
}

// Whoever reports a failure must not get another one for it. The unwinding of a thread that is
// cancelled, which is no C++ exception, goes on: it cannot be stopped.
template <class Call> void swallowingExceptions(Call call)
{
    try {
        call();
    } catch (...) {
        if (!std::current_exception())
            throw;
    }
}

} // namespace

// What callers install. Never destroyed itself, so that a thread that reports while the process
// ends finds it; what it holds goes when the library is unloaded.
struct ErrorHandler::Installed
{
    std::recursive_timed_mutex mutex; // also held while the tracer runs
    std::shared_ptr<ILogTracer> m_LogTracer;
    std::shared_ptr<IMessageDialog> m_MessageDlg;
};

// Static objects of a library are destroyed after those of all its users, which may therefore
// report until the very end.
struct ErrorHandler::AtUnload
{
    ~AtUnload();
};

std::atomic<ErrorHandler*> ErrorHandler::s_instance = nullptr;
const ErrorHandler::AtUnload ErrorHandler::s_atUnload;

ErrorHandler::ExceptionBlocker::ExceptionBlocker()
{
    Instance().SetbBlockException(true);
}

ErrorHandler::ExceptionBlocker::~ExceptionBlocker()
{
    Instance().SetbBlockException(false);
}

ErrorHandler& ErrorHandler::Instance()
{
    // Its memory is left to the process: threads that still report while the process ends would
    // otherwise use it after its end.
    static ErrorHandler* const instance = [] {
        auto* const made = new ErrorHandler;
        s_instance = made;
        return made;
    }();
    return *instance;
}

IErrorHandler* ErrorHandler::Interface()
{
    return &Instance();
}

ErrorHandler::Installed& ErrorHandler::installed()
{
    static auto* const objects = new Installed;
    return *objects;
}

void ErrorHandler::SetLogTracer(std::unique_ptr<ILogTracer> tracer)
{
    // Declared before the lock and so destroyed after it: the destructor of a tracer may wait for
    // a thread that reports.
    std::shared_ptr<ILogTracer> slot = std::move(tracer);
    const std::lock_guard lock(installed().mutex);
    slot.swap(installed().m_LogTracer);
}

void ErrorHandler::SetMessageDlg(std::unique_ptr<IMessageDialog> dialog)
{
    std::shared_ptr<IMessageDialog> slot = std::move(dialog);
    const std::lock_guard lock(installed().mutex);
    slot.swap(installed().m_MessageDlg);
}

ILogTracer* ErrorHandler::GetLogTracer()
{
    const std::lock_guard lock(installed().mutex);
    return installed().m_LogTracer.get();
}

IMessageDialog* ErrorHandler::GetMessageDlg()
{
    const std::lock_guard lock(installed().mutex);
    return installed().m_MessageDlg.get();
}

ErrorHandler::ErrorHandler()
    : m_Messages(std::make_unique<MessageList>())
{
    // A queued signal carries its arguments by the names that its declaration uses.
    qRegisterMetaType<QString>("QString");
    qRegisterMetaType<unsigned short>("std::uint16_t");
    qRegisterMetaType<unsigned char>("std::uint8_t");
    connect(
        this,
        SIGNAL(si_protocolMessage(QString, QString, QString, QString, std::uint16_t, std::uint8_t)),
        this,
        SLOT(sl_protocolMessage(QString, QString, QString, QString, std::uint16_t, std::uint8_t)),
        Qt::QueuedConnection);
    qAddPostRoutine(&ErrorHandler::DeliverQueued);
    const auto endOfThread = [this] {
        if (m_bIsUnloading)
            return;
        m_bThreadHasEnded = true;
        RecordQueued();
    };
    connect(thread(), &QThread::finished, this, endOfThread, Qt::DirectConnection);
    ErrorHandler::TurnLogFileOn();
}

ErrorHandler::~ErrorHandler() = default;

void ErrorHandler::DeliverQueued()
{
    ErrorHandler& handler = Instance();
    if (handler.thread() == QThread::currentThread())
        QCoreApplication::sendPostedEvents(&handler, QEvent::MetaCall);
    // Qt calls such a routine once, but a process may make several applications in turn. Adding it
    // here already would have it called again for this one.
    connect(
        QCoreApplication::instance(), &QObject::destroyed, &handler,
        [] { qAddPostRoutine(&ErrorHandler::DeliverQueued); }, Qt::DirectConnection);
}

void ErrorHandler::ProtocolMessage(QString text, QString fileName, QString className,
                                   QString methodName, unsigned short line, unsigned char level)
{
    const QualityLock lock(m_QualityMutex);
    QueuedReport report{text, fileName, className, methodName, line, level};
    // A tracer that answers each record with a report would keep the event loop busy for ever.
    if (m_bInsideTracer && thread() == QThread::currentThread())
        return Record(report);
    m_QueuedReports.push_back(std::move(report));
    if (IsAnybodyDelivering())
        Q_EMIT si_protocolMessage(text, fileName, className, methodName, line, level);
    else
        RecordQueued();
}

bool ErrorHandler::IsAnybodyDelivering() const
{
    return !m_bThreadHasEnded && !m_bIsUnloading && !QCoreApplication::closingDown();
}

void ErrorHandler::sl_protocolMessage(QString text, QString fileName, QString className,
                                      QString methodName, std::uint16_t line, std::uint8_t level)
{
    const QualityLock lock(m_QualityMutex);
    if (sender() == this && !m_QueuedReports.empty())
        m_QueuedReports.pop_front();
    Record({text, fileName, className, methodName, line, level});
}

void ErrorHandler::Record(const QueuedReport& report)
{
    Log(VLException(report.text, report.fileName, report.className, report.methodName, report.line,
                    VLException::NoErrorId),
        report.level);
}

void ErrorHandler::RecordQueued()
{
    const QualityLock lock(m_QualityMutex);
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    while (!m_QueuedReports.empty()) {
        const QueuedReport report = std::move(m_QueuedReports.front());
        m_QueuedReports.pop_front();
        Record(report);
    }
}

void ErrorHandler::trace(QString text, QString fileName, QString className, QString methodName,
                         unsigned short line, unsigned char level)
{
    ProtocolMessage(text, fileName, className, methodName, line, level);
}

void ErrorHandler::ProtocolException(const VLException& exception)
{
    Log(exception, ErrorLevel);
}

void ErrorHandler::Configure()
{
    CallTracer([this](ILogTracer& tracer) {
        m_bConfigured = true;
        tracer.SendDataTrace(
            QStringLiteral("ErrorHandler::Configure() - MessageMask: %1 Configuration applied")
                .arg(GetMessageMask()));
    });
}

void ErrorHandler::Log(const VLException& exception, unsigned char level)
{
    const QualityLock lock(m_QualityMutex);
    if (m_bBlockException)
        return;
    if (!m_bInsideTracer && !m_bConfigured)
        Configure();

    const QString record = exception.GetExceptionWideText(ExceptionTextRecord, level);
    const auto message = std::make_shared<Message>(record, exception.GetErrorTime(), level);
    if (m_Messages->AddMessage(message) != MsgAdded)
        return;

    const auto line = [&] { return exception.GetExceptionAsciiText(ExceptionTextFull, level); };
    if (m_bInsideTracer) {
        m_DeferredReports.push_back({record, line()});
        return;
    }
    WriteToLogFile(true, line);
    SendToTracer(record);
    DeliverDeferred();
}

void ErrorHandler::DeliverDeferred()
{
    for (int count = 0; !m_DeferredReports.empty(); ++count) {
        const DeferredReport report = std::move(m_DeferredReports.front());
        m_DeferredReports.pop_front();
        const bool forTracer = count < MaxDeferredReports;
        WriteToLogFile(forTracer, [&] { return report.line; });
        if (forTracer)
            SendToTracer(report.record);
    }
}

// A tracer may turn the file off while it is asked.
template <class Line> void ErrorHandler::WriteToLogFile(bool forTracer, Line line)
{
    if (m_bLogFileOn && !(forTracer && TracerIsOpen()) && m_LogFile)
        m_LogFile->AddMessage(line());
}

template <class Call> void ErrorHandler::CallTracer(Call call)
{
    const std::lock_guard lock(installed().mutex);
    // A tracer that replaces itself lives until its call ends.
    const std::shared_ptr<ILogTracer> tracer = installed().m_LogTracer;
    if (!tracer)
        return;
    m_bInsideTracer = true;
    const auto leave = qScopeGuard([this] { m_bInsideTracer = false; });
    swallowingExceptions([&] { call(*tracer); });
}

bool ErrorHandler::TracerIsOpen()
{
    bool open = false;
    CallTracer([&open](ILogTracer& tracer) { open = tracer.IsOpen(); });
    return open;
}

void ErrorHandler::SendToTracer(const QString& record)
{
    CallTracer([&record](ILogTracer& tracer) { tracer.SendDataTrace(record.simplified()); });
}

void ErrorHandler::TurnLogFileOn()
{
    const QualityLock lock(m_QualityMutex);
    if (m_bLogFileOn)
        return;
    m_bLogFileOn = true;
    m_LogFile = std::make_unique<LogFile>(logFilePath());
}

void ErrorHandler::TurnLogFileOff()
{
    const QualityLock lock(m_QualityMutex);
    m_bLogFileOn = false;
    m_LogFile.reset();
}

void ErrorHandler::SetbBlockException(bool block)
{
    m_bBlockException = block;
}

void ErrorHandler::SetMessageMask(unsigned int mask)
{
    m_nMessageMask = mask;
}

void ErrorHandler::SetMessageMask(unsigned int bits, bool on)
{
    if (on)
        m_nMessageMask |= bits;
    else
        m_nMessageMask &= ~bits;
}

unsigned int ErrorHandler::GetMessageMask() const
{
    return m_nMessageMask;
}

void ErrorHandler::InitGetNextMessage(bool& atEnd, unsigned char level)
{
    const QualityLock lock(m_QualityMutex);
    m_nMessageFilterLevel = level;
    m_Messages->SetCurrentPosition(0);
    atEnd = m_Messages->GetList().empty();
    if (level == 0 || atEnd)
        return;
    GetNextMessage(atEnd);
    if (!atEnd)
        m_Messages->SetCurrentPosition(
            static_cast<unsigned char>(m_Messages->GetCurrentPosition() - 1));
}

QString ErrorHandler::GetNextMessage(bool& atEnd)
{
    const QualityLock lock(m_QualityMutex);
    // The cursor of a long list never comes to its end, so one round must do.
    for (int step = 0; step < CursorRound; ++step) {
        const std::shared_ptr<Message> message = m_Messages->GetCurrentMessage();
        m_Messages->SetCurrentPosition(
            static_cast<unsigned char>(m_Messages->GetCurrentPosition() + 1));
        if (!message)
            break;
        if (m_nMessageFilterLevel == 0 || message->GetWarningLevel() <= m_nMessageFilterLevel) {
            atEnd = false;
            return message->GetText();
        }
    }
    atEnd = true;
    return {};
}

template <class Call> void ErrorHandler::CallDialog(Call call)
{
    std::shared_ptr<IMessageDialog> dialog;
    {
        const std::lock_guard lock(installed().mutex);
        dialog = installed().m_MessageDlg;
    }
    // Not under the lock: a modal dialog waits for its user, and others go on reporting.
    if (dialog)
        swallowingExceptions([&] { call(*dialog); });
}

int ErrorHandler::ShowErrorDialog(const VLException& exception, bool b1, int n, bool b2, bool b3)
{
    int answer = NoDialog;
    CallDialog([&](IMessageDialog& dialog) {
        answer = dialog.ShowException(exception, ErrorLevel, b1, n, b2, b3);
    });
    return answer;
}

int ErrorHandler::ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3)
{
    int answer = NoDialog;
    CallDialog([&](IMessageDialog& dialog) {
        answer = dialog.ShowMessage(text, ErrorLevel, b1, n, b2, b3);
    });
    return answer;
}

void ErrorHandler::ShowWarningDialog(QString text)
{
    CallDialog([&](IMessageDialog& dialog) {
        dialog.ShowMessage(text, WarningDialogLevel, true, -1, true, false);
    });
}

void ErrorHandler::PostErrorDialog(VLException& exception, bool b1, int n, bool b2)
{
    CallDialog(
        [&](IMessageDialog& dialog) { dialog.PostException(exception, ErrorLevel, b1, n, b2); });
}

void ErrorHandler::PostErrorDialog(const QString& text, bool b1, int n, bool b2)
{
    CallDialog([&](IMessageDialog& dialog) { dialog.PostMessage(text, ErrorLevel, b1, n, b2); });
}

void ErrorHandler::errorDialog(QString text, bool b1, int n, bool b2)
{
    PostErrorDialog(text, b1, n, b2);
}

void ErrorHandler::AddUncaughtHandler(std::function<void()> handler)
{
    const QualityLock lock(m_QualityMutex);
    m_UncaughtHandlers.push_back(std::move(handler));
}

void ErrorHandler::NotifyUncaughtHandlers()
{
    std::vector<std::function<void()>> handlers;
    {
        const QualityLock lock(m_QualityMutex);
        handlers = m_UncaughtHandlers;
    }
    for (const auto& handler : handlers)
        handler();
}

void ErrorHandler::Close()
{
    qRemovePostRoutine(&ErrorHandler::DeliverQueued);
    QCoreApplication::removePostedEvents(this);

    std::vector<std::function<void()>> handlers;
    const QualityLock lock(m_QualityMutex);
    handlers.swap(m_UncaughtHandlers);
    m_Messages->DeleteMessageList();
    TurnLogFileOff();
}

ErrorHandler::AtUnload::~AtUnload()
{
    // Windows has ended all other threads by now, wherever they were. What one of them still
    // holds is left alone; waiting for it would take for ever.
    ErrorHandler* const handler = s_instance;
    if (handler) {
        handler->m_bIsUnloading = true;
        if (!handler->m_QualityMutex.tryLock(PatienceMs))
            return;
        handler->m_QualityMutex.unlock();
    }
    std::unique_lock<std::recursive_timed_mutex> lock(installed().mutex, std::defer_lock);
    if (!lock.try_lock_for(std::chrono::milliseconds(PatienceMs)))
        return;
    lock.unlock();
    if (handler)
        handler->RecordQueued();
    SetLogTracer(nullptr);
    SetMessageDlg(nullptr);
    if (handler)
        handler->Close();
}
