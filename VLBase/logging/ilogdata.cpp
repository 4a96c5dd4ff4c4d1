#include "ilogdata.h"

ILogData::ILogData() = default;
ILogData::ILogData(const ILogData& other) = default;
ILogData& ILogData::operator=(const ILogData& other) = default;
ILogData::~ILogData() = default;
