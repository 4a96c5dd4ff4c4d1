#include "blocktrace.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>

#include <algorithm>

namespace {

constexpr unsigned int traceBit = 32;
constexpr unsigned short beginLine = 129;
constexpr unsigned short endLine = 136;

void trace(const QString& text, unsigned short line)
{
    if (ErrorHandler::Instance().GetMessageMask() & traceBit)
        _Q_Trace(BLOCK_TRACE::GetIndent() + text, QStringLiteral("errorhandling/quality"), line);
}

} // namespace

std::atomic<int> BLOCK_TRACE::m_nIndent{0};

BLOCK_TRACE::BLOCK_TRACE(QString name)
{
    trace(name + QStringLiteral(" {"), beginLine);
    ++m_nIndent;
}

BLOCK_TRACE::~BLOCK_TRACE()
{
    --m_nIndent;
    trace(QStringLiteral("}"), endLine);
}

QString BLOCK_TRACE::GetIndent()
{
    return QLatin1Char('*') + QString(std::max(m_nIndent.load(), 0), QLatin1Char(' '));
}
