#include "tally.h"

bool Tally::open(const QString& fileName, int count)
{
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::ReadWrite))
        return false;
    if (count > 0 && !m_file.resize(qint64{64} * (count + 1)))
        return false;
    uchar* const base = m_file.map(0, m_file.size());
    if (!base)
        return false;
    m_header = reinterpret_cast<Header*>(base);
    m_slots = reinterpret_cast<Slot*>(base + sizeof(Header));
    m_count = static_cast<int>(m_file.size() / 64) - 1;
    return true;
}
