#include "livelogreader.h"

#include <VLBase/logging/internal/logimage.h>

#include <string>

using vlbase::logging::Role;

CLiveLogReader::CLiveLogReader()
    : CMMShared(static_cast<int>(Role::Reader), 0)
{
}

CLiveLogReader::CLiveLogReader(const CLiveLogReader& other) = default;
CLiveLogReader& CLiveLogReader::operator=(const CLiveLogReader& other) = default;
CLiveLogReader::~CLiveLogReader() = default;

void CLiveLogReader::GetBuffer(char** data, long* length)
{
    LockData();
    CMMShared::GetBuffer(0, data, length);
}

void CLiveLogReader::ReleaseBuffer()
{
    CMMShared::ReleaseBuffer();
    UnLockData();
}

void CLiveLogReader::SendLikeItIs(QString line)
{
    Add(line.toStdString().c_str());
}
