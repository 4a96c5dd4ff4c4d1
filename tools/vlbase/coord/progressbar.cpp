#include "progressbar.h"

#include "tools/vlbase/platform/standardstreams.h"

#include <QByteArray>

#include <algorithm>

namespace vlbase::tool::coord {
namespace {

using namespace std::chrono_literals;

// Short work shows no bar at all.
constexpr auto patience = 400ms;
constexpr auto interval = 100ms;
constexpr int stepsBetweenLooks = 1000;
constexpr int barWidth = 40;

void writeError(const QByteArray& text)
{
    platform::writeAll(platform::Stream::Error, text.constData(),
                       static_cast<std::size_t>(text.size()));
}

} // namespace

ProgressBar::ProgressBar(qint64 total)
    : m_total(total)
    , m_isWanted(platform::isTerminal(platform::Stream::Error))
    , m_next(Clock::now() + patience)
{
}

ProgressBar::~ProgressBar()
{
    clear();
}

void ProgressBar::show(qint64 done, qint64 count)
{
    if (!m_isWanted || --m_stepsToLook > 0)
        return;
    m_stepsToLook = stepsBetweenLooks;
    const auto now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + interval;
    draw(done, count);
}

void ProgressBar::draw(qint64 done, qint64 count)
{
    QByteArray text = "\r";
    if (m_total > 0) {
        const qint64 reached = std::clamp<qint64>(done, 0, m_total);
        const int filled = static_cast<int>(reached * barWidth / m_total);
        text += '[' + QByteArray(filled, '#') + QByteArray(barWidth - filled, '.') + "] " +
                QByteArray::number(reached * 100 / m_total).rightJustified(3) + "%  ";
    }
    text += QByteArray::number(count) + " lines";
    writeError(text);
    m_isShown = true;
}

void ProgressBar::clear()
{
    if (!m_isShown)
        return;
    // Blanks instead of an escape sequence: every terminal knows those.
    writeError('\r' + QByteArray(barWidth + 30, ' ') + '\r');
    m_isShown = false;
}

} // namespace vlbase::tool::coord
