#include "logfile.h"

LogFile::LogFile(const QString& path)
    : VLTextFile(path)
{
}

LogFile::~LogFile() = default;

bool LogFile::AddMessage(const std::string& line)
{
    return AppendLine(line) != 0;
}
