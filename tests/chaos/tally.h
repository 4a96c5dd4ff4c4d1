#pragma once

#include <QFile>
#include <QString>

#include <atomic>

/// What the processes of a run say of themselves in a file mapping, which outlives those that
/// are killed. Each start of a writer has a slot of its own.
class Tally
{
public:
    struct Slot
    {
        std::atomic<quint64> started;  ///< calls begun
        std::atomic<quint64> returned; ///< calls that came back
        std::atomic<quint64> longestCallUs;
        std::atomic<quint64> reserved[5]; ///< keeps the slots of two processes apart
    };

    /// \param count how many there are; 0 attaches to what another process has made
    bool open(const QString& fileName, int count);

    Slot& slot(int number) { return m_slots[number]; }
    int slotCount() const { return m_count; }

    /// Asks all writers to end after their current line.
    void requestStop() { m_header->stop = 1; }
    bool isStopRequested() const { return m_header->stop != 0; }

private:
    struct Header
    {
        std::atomic<quint64> stop;
        std::atomic<quint64> reserved[7];
    };
    static_assert(sizeof(Header) == 64 && sizeof(Slot) == 64);

    QFile m_file;
    Header* m_header = nullptr;
    Slot* m_slots = nullptr;
    int m_count = 0;
};
