#include "linetime.h"

#include <VLBase/os/velaos.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <algorithm>
#include <chrono>

namespace vlbase::logging {

void LineTime::update()
{
    using namespace std::chrono;
    const std::int64_t second =
        duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    if (second == m_second)
        return;
    const QString time = QDateTime::fromSecsSinceEpoch(second, Qt::UTC)
                             .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    const auto offset = static_cast<double>(VelaOS::Get().GetTimezoneOffset(true));
    const QByteArray text = QStringLiteral("%1\tUTC: %2").arg(time).arg(offset, 0, 'f').toUtf8();
    m_length = std::min(static_cast<std::size_t>(text.size()), sizeof m_text);
    std::copy_n(text.data(), m_length, m_text);
    m_second = second;
}

} // namespace vlbase::logging
