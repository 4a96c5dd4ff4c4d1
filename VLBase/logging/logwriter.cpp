#include "logwriter.h"

#include <VLBase/logging/ilogdata.h>
#include <VLBase/logging/internal/linebuffer.h>
#include <VLBase/logging/internal/linetime.h>
#include <VLBase/logging/internal/logattachment.h>

#include <QHostInfo>
#include <QScopeGuard>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

using vlbase::logging::LineBuffer;
using vlbase::logging::LineTime;
using vlbase::logging::LogAttachment;
using vlbase::logging::LogImage;
using vlbase::logging::Role;

using namespace std::chrono;

namespace {

// How long a writer that waits for room leaves the mutex unlooked at.
constexpr milliseconds longestLookAway(20);

QString unknownModule()
{
    return QStringLiteral("Module Unknown");
}

// Nothing here has a destructor: a line may also be sent while the thread, or the process, is
// destroying its last objects.
thread_local char usualLine[4096];
thread_local LineTime lineTime;

} // namespace

CLogWriter::CLogWriter()
    : CLogWriter(unknownModule())
{
}

CLogWriter::CLogWriter(QString moduleName)
    : CMMShared(static_cast<int>(Role::Writer), 0)
    , m_stationName(QHostInfo::localHostName())
    , m_moduleName(std::move(moduleName))
{
    rebuildNames();
}

CLogWriter::CLogWriter(const CLogWriter& other) = default;
CLogWriter& CLogWriter::operator=(const CLogWriter& other) = default;
CLogWriter::~CLogWriter() = default;

QString CLogWriter::GetModuleName() const
{
    return m_moduleName;
}

QString CLogWriter::GetStationName() const
{
    return m_stationName;
}

void CLogWriter::SetModuleName(QString moduleName)
{
    m_moduleName = std::move(moduleName);
    rebuildNames();
}

void CLogWriter::rebuildNames()
{
    // A tab would shift the columns behind it.
    QString station = m_stationName;
    QString module = m_moduleName;
    station.replace(u'\t', u' ');
    module.replace(u'\t', u' ');
    m_names = QStringLiteral("\t%1\t%2\t").arg(station, module).toUtf8();
}

void CLogWriter::SendError(QString a, QString b, QString c)
{
    sendFields({u"Error", a, b, c});
}

void CLogWriter::SendWarning(QString a, QString b, QString c)
{
    sendFields({u"Warning", a, b, c});
}

void CLogWriter::SendEvent(QString a, QString b, QString c)
{
    sendFields({u"Event", a, b, c});
}

void CLogWriter::SendAdmin(QString a, QString b, QString c)
{
    sendFields({u"Admin", a, b, c});
}

void CLogWriter::SendTrace(QString a, QString b, QString c)
{
    sendFields({u"Trace", a, b, c});
}

void CLogWriter::SendData(ILogData* data, QString text)
{
    if (data && GetAcceptDataBlocks())
        sendFields({u"Data", data->GetDataType(), data->GetDataText(), text});
}

void CLogWriter::SendData(QString moduleName, ILogData* data, QString text)
{
    SetModuleName(std::move(moduleName));
    SendData(data, std::move(text));
}

void CLogWriter::SetFullBufferWait(int milliseconds)
{
    m_fullBufferWait = std::max(milliseconds, 0);
}

int CLogWriter::GetFullBufferWait() const
{
    return m_fullBufferWait;
}

void CLogWriter::Send(QString event)
{
    sendFields({event});
}

// All that needs no order among the writers is done before the lock. The time is looked at
// again under it, so that it does not fall from line to line.
void CLogWriter::sendFields(std::initializer_list<QStringView> fields)
{
    if (!IsOpen())
        return;
    qsizetype characters = 0;
    for (const QStringView field : fields)
        characters += field.size() + 1;
    const std::size_t size = LineBuffer::sizeFor(m_names.size(), characters);
    std::unique_ptr<char[]> longLine;
    if (size > sizeof usualLine)
        longLine.reset(new char[size]);

    LineBuffer line(longLine ? longLine.get() : usualLine);
    line.append(QByteArrayView(m_names));
    bool first = true;
    for (const QStringView field : fields) {
        if (!std::exchange(first, false))
            line.append('\t');
        line.append(field);
    }
    line.cutAtZero();
    lineTime.update();

    lockWithRoom();
    const auto unlock = qScopeGuard([this] { UnLockData(); });
    LogAttachment& log = *attachment();
    const LogAttachment::Taken taken = log.takeNumber();
    lineTime.update();
    if (IsWriterAvailable())
        log.add(line.complete(taken.number, lineTime.text()), taken.position);
}

// Whoever waits for room looks at the mutex every now and then: behind a holder that hangs there
// will be none, and the wait must not add to the one for the mutex.
void CLogWriter::lockWithRoom()
{
    LogAttachment& log = *attachment();
    // The owner cannot make room for a thread that keeps it out.
    if (m_fullBufferWait == 0 || !isFull() || log.isLockedByThisThread() || log.isHolderHanging()) {
        LockData();
        return;
    }
    const auto end = steady_clock::now() + milliseconds(m_fullBufferWait);
    bool isDone = false;
    while (!isDone) {
        sleepWhileFull(std::min(end, steady_clock::now() + longestLookAway));
        LockData();
        isDone = log.isHolderHanging() || !isFull() || !IsWriterAvailable() ||
                 steady_clock::now() >= end;
        if (!isDone)
            UnLockData();
    }
}

void CLogWriter::sleepWhileFull(steady_clock::time_point end)
{
    microseconds pause(50);
    while (steady_clock::now() < end && isFull() && IsWriterAvailable()) {
        std::this_thread::sleep_for(pause);
        pause = std::min(pause + pause / 2, microseconds(200));
    }
}

bool CLogWriter::isFull() const
{
    const LogImage& image = attachment()->image();
    return image.fill(1) > image.bufferSize() / 4 * 3;
}
