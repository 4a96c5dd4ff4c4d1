#include "verdict.h"

#include "tally.h"
#include "writerrole.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace {

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

    void read(const QByteArray& line)
    {
        static const QRegularExpression lost(QStringLiteral("\\b(\\d+) lines? lost\\b"));
        const QString text = QString::fromUtf8(line);
        const QStringList fields = text.split(QLatin1Char('\t'));
        bool isIndex = false;
        const int index = fields.first().toInt(&isIndex);
        if (isIndex && fields.first().size() == 6)
            readLine(index, fields, text);
        else if (const auto match = lost.match(text); match.hasMatch())
            m_lostHere += match.captured(1).toULongLong();
        else if (!text.contains(QLatin1String("\tlog begins\t")))
            fault(QStringLiteral("not a line: ") + text.left(200));
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
    void readLine(int index, const QStringList& fields, const QString& text)
    {
        // The owner's own count of what is missing must lead to just this index.
        m_position += m_lostHere;
        if (indexAt(m_position) != index)
            fault(
                QStringLiteral("index %1 where %2 was due: ").arg(index).arg(indexAt(m_position)) +
                text.left(80));
        ++m_position;
        m_verdict.countedLost += m_lostHere;
        m_lostHere = 0;
        ++m_verdict.filed;

        const int slot = fields.value(6).toInt();
        const quint64 sequence = fields.value(7).toULongLong();
        if (fields.size() != 9 || slot >= m_tally.slotCount() ||
            fields.at(8) != roles::payload(slot, sequence)) {
            fault(QStringLiteral("torn: ") + text.left(400));
            return;
        }
        auto& seen = m_seen[static_cast<std::size_t>(slot)];
        if (sequence >= seen.size())
            seen.resize(sequence + 1);
        if (seen[sequence])
            fault(QStringLiteral("twice: ") + text.left(80));
        seen[sequence] = true;
    }

    void fault(const QString& what)
    {
        if (m_verdict.faults.size() < 10)
            m_verdict.faults << what;
    }

    Verdict& m_verdict;
    std::vector<std::vector<bool>> m_seen; // by slot and sequence
    Tally& m_tally;
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
