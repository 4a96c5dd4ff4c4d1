#include "quality.h"

#include "internal/methodquality.h"
#include "internal/qualitylock.h"
#include "internal/wideformat.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/vlexception.h>

#include <cstdarg>

namespace {

constexpr unsigned char TraceLevel = 3;
constexpr int MaxTraceLength = 400;
constexpr int MaxFormattedLength = 399;

QString textOf(const wchar_t* text)
{
    return text ? QString::fromWCharArray(text) : QString();
}

void reportFailure(const QString& reason, const wchar_t* className, const wchar_t* file,
                   unsigned short line)
{
    const vlbase::QualityLock lock(*ErrorHandler::Instance().GetQualityMutex());
    VLException failure(reason, textOf(file), textOf(className), QString(), line,
                        VLException::NoErrorId);
    ErrorHandler::Interface()->ProtocolException(failure);
    ErrorHandler::Interface()->PostErrorDialog(failure, false, -1, false);
}

} // namespace

void _Q_require(const wchar_t* file, unsigned short line)
{
    reportFailure(QStringLiteral("REQUIREMENT FAILED"), nullptr, file, line);
}

void _Q_ensure(const wchar_t* file, unsigned short line)
{
    reportFailure(QStringLiteral("ENSURE FAILED"), nullptr, file, line);
}

void _Q_assert(const wchar_t* expression, const wchar_t* file, unsigned short line)
{
    reportFailure(QLatin1String("ASSERTION FAILED ") + textOf(expression), nullptr, file, line);
}

void _Q_premethod(const wchar_t* className, const wchar_t* file, unsigned short line)
{
    reportFailure(QStringLiteral("PREMETHOD FAILED"), className, file, line);
}

void _Q_postmethod(const wchar_t* className, const wchar_t* file, unsigned short line)
{
    reportFailure(QStringLiteral("POSTMETHOD FAILED"), className, file, line);
}

void _Q_Trace(const QString& text, const QString& fileName, unsigned short line)
{
    const vlbase::QualityLock lock(*ErrorHandler::Instance().GetQualityMutex());
    ErrorHandler::Interface()->ProtocolMessage(text.left(MaxTraceLength), fileName,
                                               QStringLiteral(""), QStringLiteral(""), line,
                                               TraceLevel);
}

void _Q_TraceOld(QString format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const QString text = vlbase::formatWide(format, MaxFormattedLength, arguments);
    va_end(arguments);
    _Q_Trace(text, QStringLiteral(""), 0);
}
