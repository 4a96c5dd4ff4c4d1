#pragma once

#include <VLBase/logging/mmshared.h>
#include <VLBase/vlbase_export.h>

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <chrono>
#include <initializer_list>

class ILogData;

/// Writes events into the shared log, one line each.
///
/// A line has six fields and then those of the event, separated by tabs, in UTF-8; nothing is
/// escaped, and a zero character ends the line:
///
///     100000  2024-05-17 11:42:07  UTC: 7200000000.000000  station  module  Error  a  b  c
///
/// They are the line's number, the UTC time, the local zone's offset in microseconds, the
/// host, the module, and the level word. Numbers rise in the order of the lines in the buffer,
/// over all processes. A line is lost without notice while the log has no owner; its number is
/// used up all the same.
///
/// Sends of one object may run at the same time; setting names or the wait meanwhile is not
/// safe. A send asks VelaOS::Get() for the zone: where nobody has before, its thread becomes the
/// application thread by that.
class VLBASE_EXPORT CLogWriter : public CMMShared
{
public:
    /// Attaches as a writer of the module "Module Unknown" on this host.
    CLogWriter();
    explicit CLogWriter(QString moduleName);
    CLogWriter(const CLogWriter& other);
    CLogWriter& operator=(const CLogWriter& other);
    ~CLogWriter() override;

    QString GetModuleName() const;
    QString GetStationName() const;
    void SetModuleName(QString moduleName);

    void SendError(QString a, QString b, QString c);
    void SendWarning(QString a, QString b, QString c);
    void SendEvent(QString a, QString b, QString c);
    void SendAdmin(QString a, QString b, QString c);
    void SendTrace(QString a, QString b, QString c);

    /// Sends the block's type, its text, and \a text; nothing while the log's owner does not
    /// accept data blocks.
    void SendData(ILogData* data, QString text);

    /// As above; the writer first takes \a moduleName for good, also when nothing is sent.
    void SendData(QString moduleName, ILogData* data, QString text);

    /// How long a send may wait, in milliseconds, for the owner to make room when more than
    /// three quarters of its half are full. 0, the default, never waits: the oldest lines then
    /// make room and are lost. Values below 0 count as 0. Nobody waits without an owner,
    /// nor for long behind a program that hangs with the log's lock: then the rule of the lock's
    /// 2000 ms ends this wait too.
    void SetFullBufferWait(int milliseconds);
    int GetFullBufferWait() const;

protected:
    /// Writes one line; \a event is the level word and the event's fields, joined by tabs.
    void Send(QString event);

private:
    void sendFields(std::initializer_list<QStringView> fields);
    void rebuildNames();
    void lockWithRoom();
    void sleepWhileFull(std::chrono::steady_clock::time_point end);
    bool isFull() const;

    QString m_stationName;
    QString m_moduleName;
    QByteArray m_names; // both with their tabs, as they stand in a line
    int m_fullBufferWait = 0;
};
