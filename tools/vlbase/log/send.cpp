#include "instance.h"
#include "linesplitter.h"
#include "surewriter.h"
#include "tools/vlbase/bytecount.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/platform/standardstreams.h"
#include "tools/vlbase/suggestion.h"
#include "verbs.h"

#include <VLBase/logging/logstatus.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace vlbase::tool::log {
namespace {

using namespace std::chrono_literals;
using Result = SureWriter::Result;

constexpr auto shortestPause = 100us;
constexpr auto longestPause = 5ms;
constexpr auto ownerCheckTime = 100ms;
constexpr qsizetype mostFields = 3;

QStringList levelNames()
{
    QStringList names;
    for (const std::string_view word : logging::levelWords)
        names << QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size())).toLower();
    return names;
}

/// Brings lines into the log, waiting for room, and for an owner when it is told to.
class Sender
{
public:
    Sender(const CommandLine& line, const QString& module, logging::LogLevel level)
        : m_line(line)
        , m_writer(module)
        , m_level(level)
        , m_waits(line.isSet(QStringLiteral("wait")))
    {
    }

    /// \return Success when an owner is there, NoOwner otherwise, told.
    int findOwner()
    {
        const logging::LogStatus status = logging::peekLog();
        if (status.hasOwner() && isOpen())
            return Success;
        if (!m_waits) {
            m_line.tell(QStringLiteral("%1, so nobody would write the line; "
                                       "start '%2', or wait for one with --wait")
                            .arg(absenceText(status), ownCommandLine()));
            return NoOwner;
        }
        m_line.tell(
            QStringLiteral("%1; waiting for '%2'").arg(absenceText(status), ownCommandLine()));
        while (!logging::peekLog().hasOwner() || !isOpen())
            std::this_thread::sleep_for(ownerCheckTime);
        return Success;
    }

    /// Sends one line as soon as there is room for it.
    int send(const SureWriter::Fields& fields)
    {
        std::chrono::microseconds pause = shortestPause;
        auto lookedAt = std::chrono::steady_clock::now();
        for (;;) {
            switch (m_writer.send(m_level, fields)) {
            case Result::Sent:
                ++m_sent;
                return Success;
            case Result::TooLong:
                m_line.tell(QStringLiteral("the line is longer than this log can hold, %1; the "
                                           "owner's --buffer-size sets that")
                                .arg(byteCountText(static_cast<std::int64_t>(longestText()))));
                return Failure;
            case Result::NoBlocks:
                m_line.tell(QStringLiteral("the log's owner takes no data blocks"));
                return Failure;
            case Result::NoOwner:
                if (const int status = findOwnerAgain())
                    return status;
                break;
            case Result::Full:
                if (std::chrono::steady_clock::now() - lookedAt > ownerCheckTime) {
                    lookedAt = std::chrono::steady_clock::now();
                    if (const int status = findOwnerAgain())
                        return status;
                }
                std::this_thread::sleep_for(pause);
                pause = std::min<std::chrono::microseconds>(pause * 2, longestPause);
                break;
            }
        }
    }

    /// Lines in the buffer are safe only while somebody is attached to the log or its owner has
    /// taken them, so this does not leave them alone.
    int finish()
    {
        const logging::LogStatus status = logging::peekLog();
        const bool isTaken = status.fill[1] == 0 && status.stagedBytes == 0;
        if (m_sent == 0 || isTaken || status.hasOwner())
            return Success;
        return findOwnerAgain();
    }

    std::size_t longestText() { return m_writer.longestText(); }
    std::uint64_t linesSent() const { return m_sent; }

private:
    bool isOpen() { return m_writer.IsOpen() || m_writer.Open(); }

    int findOwnerAgain()
    {
        if (logging::peekLog().hasOwner())
            return Success;
        if (m_waits)
            return findOwner();
        m_line.tell(QStringLiteral("the log's owner ended after %1 lines; the last of them are "
                                   "lost unless another program takes part in the log")
                        .arg(m_sent));
        return NoOwner;
    }

    const CommandLine& m_line;
    SureWriter m_writer;
    logging::LogLevel m_level;
    bool m_waits;
    std::uint64_t m_sent = 0;
};

constexpr QStringView blockType = u"Text"; // of a line that is sent as data

std::size_t typeBytes(logging::LogLevel level)
{
    return level == logging::LogLevel::Data ? static_cast<std::size_t>(blockType.size()) : 0;
}

SureWriter::Fields fieldsOf(logging::LogLevel level, const QString& text)
{
    if (level == logging::LogLevel::Data)
        return {blockType.toString(), text, QString()};
    return {text, QString(), QString()};
}

/// Cuts the text to so many bytes in the log, at a character's begin: a byte that is no UTF-8 takes
/// three there.
/// \return how many bytes of the log's were cut off.
std::size_t cutToFit(QString& text, std::size_t longest)
{
    const QByteArray written = SureWriter::asWritten(text).toUtf8();
    const auto size = static_cast<std::size_t>(written.size());
    if (size <= longest)
        return 0;
    auto end = static_cast<qsizetype>(longest);
    while (end > 0 && (static_cast<unsigned char>(written[end]) & 0xC0) == 0x80)
        --end;
    text = QString::fromUtf8(written.constData(), end);
    return size - static_cast<std::size_t>(end);
}

int sendInput(const CommandLine& line, Sender& sender, logging::LogLevel level)
{
    int status = Success;
    std::uint64_t number = 0;
    const std::size_t room = sender.longestText();
    const std::size_t longest = room - std::min(room, typeBytes(level));
    LineSplitter splitter(longest, [&](std::string_view bytes, std::size_t cut) {
        ++number;
        if (status != Success)
            return;
        QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
        cut += cutToFit(text, longest);
        if (cut > 0)
            line.tell(QStringLiteral("line %1 is longer than this log can hold; its last %2 are "
                                     "cut off")
                          .arg(number)
                          .arg(byteCountText(static_cast<std::int64_t>(cut))));
        status = sender.send(fieldsOf(level, text));
    });
    std::array<char, 64 * 1024> block;
    while (status == Success) {
        const std::ptrdiff_t got = platform::readInput(block.data(), block.size());
        if (got < 0) {
            line.tell(QStringLiteral("cannot read standard input: %1").arg(qt_error_string()));
            return Failure;
        }
        if (got == 0)
            break;
        splitter.feed({block.data(), static_cast<std::size_t>(got)});
    }
    if (status == Success)
        splitter.finish();
    return status == Success ? sender.finish() : status;
}

int sendArguments(Sender& sender, const QStringList& texts)
{
    SureWriter::Fields fields;
    std::copy(texts.begin(), texts.end(), fields.begin());
    if (const int status = sender.send(fields))
        return status;
    return sender.finish();
}

std::optional<logging::LogLevel> readLevel(CommandLine& line)
{
    if (line.positional().isEmpty()) {
        line.addFault(QStringLiteral("which level? There are: %1")
                          .arg(levelNames().join(QStringLiteral(", "))));
        return std::nullopt;
    }
    const QString word = line.positional().constFirst();
    const auto level = logging::levelOf(word.toStdString(), true);
    if (!level)
        line.addFault(QStringLiteral("unknown level '%1'.%2 There are: %3")
                          .arg(word, didYouMean(word, levelNames()),
                               levelNames().join(QStringLiteral(", "))));
    return level;
}

int run(CommandLine& line)
{
    selectInstance(line);
    const auto level = readLevel(line);
    const QStringList texts = line.positional().mid(1);
    if (level && texts.isEmpty())
        line.addFault(QStringLiteral("which text? '-' takes the lines of standard input"));
    if (texts.size() > mostFields)
        line.addFault(QStringLiteral("a line has a text and at most two fields; a text with "
                                     "blanks goes between quotation marks"));
    if (line.hasFault())
        return line.tellFault();

    const QString module = line.isSet(QStringLiteral("module"))
                               ? line.value(QStringLiteral("module"))
                               : QStringLiteral("vlbase log send");
    Sender sender(line, module, *level);
    if (const int status = sender.findOwner())
        return status;
    if (texts == QStringList(QStringLiteral("-")))
        return sendInput(line, sender, *level);
    return sendArguments(sender, texts);
}

} // namespace

Command sendCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("send");
    command.summary = QStringLiteral("puts one line, or each line of standard input, into the log");
    command.usage = QStringLiteral("[OPTION...] LEVEL TEXT [FIELD [FIELD]]\n"
                                   "       vlbase log send [OPTION...] LEVEL -");
    command.about = QStringLiteral(
        "Puts a line with a text and up to two more fields into the shared log. LEVEL is error, "
        "warning, event, admin, trace or data; data takes the block's type, its text and a "
        "remark. With \"-\" for the text it sends each line of standard input as it comes, so the "
        "output of any program can go into the log.\n"
        "\n"
        "Nothing gets lost on the way: when the buffer is three quarters full, it waits for the "
        "owner to make room. A line longer than the buffer is refused, or cut off with a message "
        "when it comes from standard input. Tabs separate fields in the log, also those inside a "
        "text. A text that begins with '-' goes after \"--\".");
    command.options = {
        {QStringLiteral("module"), QStringLiteral("M"),
         QStringLiteral("The module that the line names as its sender. Default: vlbase log "
                        "send.")},
        {QStringLiteral("wait"),
         {},
         QStringLiteral("Waits for an owner when there is none, also when it ends meanwhile.")},
        instanceOption(),
    };
    command.exitStatuses = {
        {QStringLiteral("3"), QStringLiteral("the log has no owner")},
    };
    command.examples = {
        {QStringLiteral("one line"),
         QStringLiteral("vlbase log send warning \"antenna 2 is iced\" --module Mast")},
        {QStringLiteral("all that a program says"),
         QStringLiteral("ping -c 5 receiver | vlbase log send event --module ping -")},
        {QStringLiteral("a text that looks like an option"),
         QStringLiteral("vlbase log send trace -- \"-40 dBm\"")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log
