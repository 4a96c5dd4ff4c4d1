#include "verdict.h"

#include "tally.h"
#include "writerrole.h"

#include <VLBase/logging/ownernotice.h>

#include <QFile>

#include <algorithm>
#include <vector>

namespace {

using namespace vlbase::logging;

constexpr quint64 period = 900000;

/// The index that the n-th line of a log gets, from 0: 100000 to 999998, then 100000 twice in each
/// round.
int indexAt(quint64 n)
{
    if (n < period - 1)
        return 100000 + static_cast<int>(n);
    const quint64 inRound = (n - (period - 1)) % period;
    return 100000 + static_cast<int>(inRound == 0 ? 0 : inRound - 1);
}

class Reader
{
public:
    Reader(Verdict& verdict, Tally& tally)
        : m_verdict(verdict)
        , m_seen(static_cast<std::size_t>(tally.slotCount()))
        , m_tally(tally)
    {
    }

    void read(const QByteArray& text)
    {
        parseLogLine({text.constData(), static_cast<std::size_t>(text.size())}, m_line);
        const auto notice = parseNotice(m_line);
        if (m_line.index != 0)
            readLine(text);
        else if (!notice)
            fault("not a line", text);
        else
            m_lostHere += notice->count;
    }

    void finish()
    {
        m_verdict.countedLost += m_lostHere;
        m_verdict.consumed = m_position + m_lostHere;
        for (int slot = 0; slot < m_tally.slotCount(); ++slot) {
            const auto& seen = m_seen[static_cast<std::size_t>(slot)];
            const quint64 returned = m_tally.slot(slot).returned;
            const auto filed = static_cast<quint64>(
                std::count(seen.begin(),
                           seen.begin() + std::min<qint64>(static_cast<qint64>(returned),
                                                           static_cast<qint64>(seen.size())),
                           true));
            m_verdict.missingReturned += returned - filed;
            m_verdict.startedCalls += m_tally.slot(slot).started;
            m_verdict.returnedCalls += returned;
        }
    }

private:
    void readLine(const QByteArray& text)
    {
        // The owner's own count of what is missing must lead to just this index.
        m_position += m_lostHere;
        if (indexAt(m_position) != m_line.index)
            fault("another index was due", text);
        ++m_position;
        m_verdict.countedLost += m_lostHere;
        m_lostHere = 0;
        ++m_verdict.filed;

        const auto field = [this](std::size_t i) {
            const std::string_view bytes = m_line.fields[i];
            return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
        };
        const bool isWhole = m_line.fields.size() == 3;
        const int slot = isWhole ? field(0).toInt() : 0;
        const quint64 sequence = isWhole ? field(1).toULongLong() : 0;
        if (!isWhole || slot >= m_tally.slotCount() || field(2) != roles::payload(slot, sequence)) {
            fault("torn", text);
            return;
        }
        auto& seen = m_seen[static_cast<std::size_t>(slot)];
        if (sequence >= seen.size())
            seen.resize(sequence + 1);
        if (seen[sequence])
            fault("twice", text);
        seen[sequence] = true;
    }

    void fault(const char* what, const QByteArray& text)
    {
        if (m_verdict.faults.size() < 10)
            m_verdict.faults << QStringLiteral("%1: %2").arg(QLatin1String(what),
                                                             QString::fromUtf8(text.left(400)));
    }

    Verdict& m_verdict;
    std::vector<std::vector<bool>> m_seen; // by slot and sequence
    Tally& m_tally;
    LogLine m_line;
    quint64 m_position = 0; // how many lines the log has given an index to so far
    quint64 m_lostHere = 0;
};

} // namespace

Verdict Verdict::of(const QString& logFile, Tally& tally, const QVector<int>& stoppedSlots)
{
    Verdict verdict;
    QFile file(logFile);
    if (!file.open(QIODevice::ReadOnly)) {
        verdict.faults << file.errorString();
        return verdict;
    }
    Reader reader(verdict, tally);
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        if (!line.endsWith('\n'))
            verdict.faults << QStringLiteral("the file ends in the middle of a line");
        line.chop(1);
        reader.read(line);
    }
    reader.finish();
    for (int slot = 0; slot < tally.slotCount(); ++slot)
        if (!stoppedSlots.contains(slot))
            verdict.longestCallUs =
                std::max(verdict.longestCallUs, tally.slot(slot).longestCallUs.load());
    return verdict;
}
