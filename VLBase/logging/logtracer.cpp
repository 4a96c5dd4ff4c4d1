#include "logtracer.h"

CLogTracer::CLogTracer() = default;
CLogTracer::~CLogTracer() = default;

void CLogTracer::SendDataTrace(QString text)
{
    if (GetAcceptDataBlocks())
        Send(QStringLiteral("Data\tTrace\t%1\t").arg(text));
}

void CLogTracer::ReportException(QString text)
{
    SendError(text, QString(), QString());
}

bool CLogTracer::IsOpen()
{
    return IsWriterAvailable();
}
