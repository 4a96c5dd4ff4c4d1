#include "filesink.h"
#include "filetail.h"
#include "instance.h"
#include "lineintake.h"
#include "ownerloop.h"
#include "tools/vlbase/bytecount.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/platform/standardstreams.h"
#include "tools/vlbase/platform/stopsignal.h"
#include "verbs.h"

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/os/velaos.h>

#include <QDir>
#include <QFileInfo>
#include <QHostInfo>
#include <QStandardPaths>
#include <QStorageInfo>

#include <array>
#include <atomic>
#include <limits>
#include <optional>
#include <thread>

namespace vlbase::tool::log {
namespace {

using logging::LogOwner;

constexpr int defaultBufferBytes = 1024 * 1024;
constexpr int leastBufferBytes = 4096;
constexpr int mostBufferBytes = 512 * 1024 * 1024;
constexpr int mostReserveBytes = 2 * mostBufferBytes;
constexpr int leastRotateBytes = 1024;
constexpr int mostKept = 9999;
constexpr qsizetype longestFileName = 511;

struct Settings
{
    QString file; ///< absolute
    int bufferBytes = defaultBufferBytes;
    int reserveBytes = LogOwner::defaultReserveBytes;
    Rotation rotation;
    FileSink::Foreign foreign = FileSink::Foreign::Refused;
    bool acceptsDataBlocks = true;
    bool endsWithInput = false;
};

QString defaultFile()
{
    const QString name = logInstance().isEmpty() ? QStringLiteral("vlbase")
                                                 : QStringLiteral("vlbase-%1").arg(logInstance());
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/VLBase/%1.log").arg(name);
}

Settings readSettings(CommandLine& line)
{
    Settings settings;
    settings.file = line.value(QStringLiteral("file"));
    if (line.isSet(QStringLiteral("file")) && settings.file.isEmpty())
        line.addFault(QStringLiteral("--file: the name is empty"));
    if (settings.file.isEmpty())
        settings.file = defaultFile();
    settings.file = QFileInfo(settings.file).absoluteFilePath();
    if (settings.file.toUtf8().size() > longestFileName)
        line.addFault(QStringLiteral("--file: '%1' has more than %2 bytes and cannot be published")
                          .arg(settings.file)
                          .arg(longestFileName));
    settings.bufferBytes = static_cast<int>(line.bytes(
        QStringLiteral("buffer-size"), defaultBufferBytes, leastBufferBytes, mostBufferBytes));
    const int leastReserve = 2 * settings.bufferBytes;
    settings.reserveBytes = static_cast<int>(
        line.bytes(QStringLiteral("reserve"), std::max(settings.reserveBytes, leastReserve),
                   leastReserve, mostReserveBytes));
    settings.rotation.bytes = line.bytes(QStringLiteral("rotate"), 0, leastRotateBytes,
                                         std::numeric_limits<std::int64_t>::max() / 2);
    settings.rotation.keep = static_cast<int>(line.count(QStringLiteral("keep"), 5, 0, mostKept));
    if (line.isSet(QStringLiteral("keep")) && settings.rotation.bytes == 0)
        line.addFault(QStringLiteral("--keep goes with --rotate BYTES"));
    if (line.isSet(QStringLiteral("append-to-any")))
        settings.foreign = FileSink::Foreign::AppendedTo;
    settings.acceptsDataBlocks = !line.isSet(QStringLiteral("no-data-blocks"));
    settings.endsWithInput = line.isSet(QStringLiteral("end-with-input"));
    if (!line.positional().isEmpty())
        line.addFault(QStringLiteral("'%1' is not an option; the file is named by --file")
                          .arg(line.positional().constFirst()));
    return settings;
}

/// What the last owner had written: into the file that it published, or into this one.
FileTail tailOfPredecessor(LogOwner& owner, FileStore& store, const std::string& ownFile)
{
    const char* const published = owner.GetFileName();
    if (published != nullptr && *published != '\0') {
        const FileTail tail = readFileTail(store, published);
        if (tail.kind != FileTail::Kind::Unknown)
            return tail;
    }
    return readFileTail(store, ownFile);
}

/// Goes on where the file ends: what it has already is no longer pending.
logging::LineLedger resumedLedger(LogOwner& owner, FileStore& store, const std::string& file)
{
    logging::LineLedger ledger = owner.makeLedger();
    if (owner.openResult() == LogOwner::OpenResult::Created) {
        ledger.startAtBeginning();
        return ledger;
    }
    const FileTail tail = tailOfPredecessor(owner, store, file);
    owner.markWritten(bytesInFile(tail, owner.pending()));
    switch (tail.kind) {
    case FileTail::Kind::Unknown:
        break;
    case FileTail::Kind::LogBegins:
        ledger.startAtBeginning();
        break;
    case FileTail::Kind::Line:
        ledger.resumeAfter(tail.line.empty() ? std::to_string(tail.index) + '\t' : tail.line);
        break;
    }
    return ledger;
}

std::atomic<bool> isInputUnreadable{false};

/// Ends the program when nobody holds the other end of its input any more.
void watchInput()
{
    std::thread([] {
        std::array<char, 256> ignored;
        std::ptrdiff_t got = 1;
        while (got > 0)
            got = platform::readInput(ignored.data(), ignored.size());
        isInputUnreadable = got < 0;
        platform::StopSignal::request();
    }).detach();
}

void tellReserve(const CommandLine& line, const LogOwner& owner, const Settings& settings)
{
    const auto capacity = static_cast<std::int64_t>(owner.stagingCapacity());
    if (!owner.isStagingShared())
        line.tell(QStringLiteral("the shared memory has no room for a reserve: lines that wait for "
                                 "the disk are lost when this program is killed, and there is room "
                                 "for %1 of them only")
                      .arg(byteCountText(capacity)));
    else if (capacity < settings.reserveBytes)
        line.tell(QStringLiteral("the reserve is %1 instead of %2: the disk may be full or slow "
                                 "for a shorter time before lines are lost")
                      .arg(byteCountText(capacity), byteCountText(settings.reserveBytes)));
}

void tellStart(const CommandLine& line, const LogOwner& owner, const Settings& settings)
{
    QString text = QStringLiteral("writing to %1").arg(QDir::toNativeSeparators(settings.file));
    if (owner.openResult() == LogOwner::OpenResult::TookOver) {
        text += QStringLiteral(", going on with the log of an owner that ended");
        if (owner.bufferSize() != settings.bufferBytes)
            text +=
                QStringLiteral(" (its buffer stays at %1)").arg(byteCountText(owner.bufferSize()));
    }
    line.tell(text);
    tellReserve(line, owner, settings);
}

/// That it cannot be made shows when the file is opened.
void makeFolder(const CommandLine& line, const Settings& settings)
{
    const QDir folder = QFileInfo(settings.file).absoluteDir();
    if (!folder.exists() && QDir().mkpath(folder.path()))
        line.tell(
            QStringLiteral("made the folder %1").arg(QDir::toNativeSeparators(folder.path())));
}

int serve(CommandLine& line, LogOwner& owner, const Settings& settings,
          const platform::StopSignal& stop)
{
    const auto store = makeNativeFileStore();
    const std::string file = settings.file.toStdString();
    makeFolder(line, settings);
    const std::string station = QHostInfo::localHostName().toStdString();
    LineIntake intake(resumedLedger(owner, *store, file), station);
    FileSink sink(*store, file, settings.rotation, settings.foreign);
    if (!sink.open()) {
        line.tell(QStringLiteral("cannot open %1: %2%3")
                      .arg(QDir::toNativeSeparators(settings.file), sink.errorText(),
                           sink.isForeign() ? QStringLiteral("; --append-to-any goes on behind it")
                                            : QString()));
        return sink.isForeign() ? WrongUse : Failure;
    }
    if (sink.tornBytes() > 0)
        line.tell(QStringLiteral("the file ended in a line without end; its %1 were cut off")
                      .arg(byteCountText(sink.tornBytes())));
    owner.SetFileName(file.c_str());
    owner.SetAcceptDataBlocks(settings.acceptsDataBlocks);

    OwnerLoop loop(owner, sink, intake, [&](const QString& text) { line.tell(text); });
    if (owner.openResult() == LogOwner::OpenResult::Created)
        loop.writeFirst(logging::noticeLine(logging::noticeOfBegin(), station));
    tellStart(line, owner, settings);
    if (settings.endsWithInput)
        watchInput();
    const bool isAllWritten = loop.run(stop);
    line.tell(QStringLiteral("ended; %1 lines written, %2 lost")
                  .arg(intake.linesTaken())
                  .arg(intake.linesLost()));
    if (isInputUnreadable)
        line.tell(QStringLiteral("ended, because standard input cannot be read"));
    if (isAllWritten)
        return isInputUnreadable ? Failure : Success;
    line.tell(QStringLiteral("%1 of lines could not be written; while a program takes part in "
                             "the log they wait for the next owner")
                  .arg(byteCountText(static_cast<std::int64_t>(owner.stagedBytes()))));
    return Failure;
}

/// Why the log could not be opened just now.
QString failureText(const Settings& settings)
{
    const int code = static_cast<int>(VelaOS::Get().GetLastError());
    const std::string defect = logging::peekLog().reason;
    if (!defect.empty())
        return QString::fromStdString(defect);
    QString text = QStringLiteral("%1 (it needs %2 of shared memory")
                       .arg(qt_error_string(code),
                            byteCountText(2 * static_cast<std::int64_t>(settings.bufferBytes)));
    const QStorageInfo memory(QStringLiteral("/dev/shm")); // not valid where memory is no file
    if (memory.isValid())
        text +=
            QStringLiteral(", of %1 there are %2 free")
                .arg(byteCountText(memory.bytesTotal()), byteCountText(memory.bytesAvailable()));
    return text + u')';
}

int run(CommandLine& line)
{
    selectInstance(line);
    const Settings settings = readSettings(line);
    if (line.hasFault())
        return line.tellFault();

    // Around the owner's whole life: a wish to end that comes late must not cut off its leaving.
    const platform::StopSignal stop;
    LogOwner owner(settings.bufferBytes, settings.reserveBytes);
    switch (owner.openResult()) {
    case LogOwner::OpenResult::Created:
    case LogOwner::OpenResult::TookOver:
        return serve(line, owner, settings, stop);
    case LogOwner::OpenResult::Busy:
        line.tell(QStringLiteral("the log has an owner already; it writes to %1")
                      .arg(QString::fromStdString(logging::peekLog().fileName)));
        return OwnerBusy;
    case LogOwner::OpenResult::Failed:
        break;
    }
    line.tell(QStringLiteral("the shared log cannot be opened: %1").arg(failureText(settings)));
    return Failure;
}

} // namespace

Command ownCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("own");
    command.summary = QStringLiteral("owns the shared log and writes it to a file");
    command.usage = QStringLiteral("[OPTION...]");
    command.about = QStringLiteral(
        "Owns the shared log of this user: creates it, and writes each line that any program "
        "puts into it to a file, until Ctrl-C or SIGTERM.\n"
        "\n"
        "A line is in shared memory or in the file at every moment, so an owner that is killed "
        "loses none: start the next one while a program takes part in the log, and it goes on "
        "where the file ends. When the disk is full, lines are kept in memory and written when "
        "there is room again.\n"
        "\n"
        "The file is UTF-8, one line each, fields separated by tabs: number, UTC time, zone, "
        "station, module, level, then the event. Characters that would break a line are written "
        "as their pictures. Lines that were lost before they could be written are counted, and "
        "a line with \"------\" for a number says how many are missing there and which.");
    command.options = {
        {QStringLiteral("file"), QStringLiteral("F"),
         QStringLiteral("Writes to F, after what is in it. Default: VLBase/vlbase.log in the "
                        "user's data folder; the full name is told at the start.")},
        {QStringLiteral("append-to-any"),
         {},
         QStringLiteral("Goes on behind whatever the file holds, and cuts nothing off. Otherwise a "
                        "file that does not end as a log does is refused.")},
        {QStringLiteral("rotate"), QStringLiteral("BYTES"),
         QStringLiteral("Goes on with an empty file before F grows past BYTES; F becomes F.1, "
                        "F.1 becomes F.2. Default: F grows.")},
        {QStringLiteral("keep"), QStringLiteral("N"),
         QStringLiteral("With --rotate, keeps N older files, and removes those of a time "
                        "when more were kept; 0 to 9999. Default: 5.")},
        {QStringLiteral("buffer-size"), QStringLiteral("BYTES"),
         QStringLiteral("Size of each half of the shared buffer, from 4K to 512M. Default: 1M.")},
        {QStringLiteral("reserve"), QStringLiteral("BYTES"),
         QStringLiteral("Memory for lines that the disk does not take yet, at least twice the "
                        "buffer and at most 1G. Default: 32M.")},
        {QStringLiteral("no-data-blocks"),
         {},
         QStringLiteral("Asks programs not to send data blocks.")},
        {QStringLiteral("end-with-input"),
         {},
         QStringLiteral("Ends when standard input ends: with the program that started it.")},
        instanceOption(),
    };
    command.exitStatuses = {
        {QStringLiteral("4"), QStringLiteral("the log has an owner already")},
    };
    command.examples = {
        {QStringLiteral("own the log, with a file of at most 10 MiB and three older ones"),
         QStringLiteral("vlbase log own --file station.log --rotate 10M --keep 3")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log
