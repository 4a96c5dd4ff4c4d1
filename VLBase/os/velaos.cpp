#include "velaos.h"

VelaOS::~VelaOS() = default;

VelaOS::VelaOS(const VelaOS& other)
    : IVelaOS(other)
    , m_workStationName(other.cachedWorkStationName())
    , m_appThreadId(other.m_appThreadId.load())
{
}

VelaOS& VelaOS::operator=(const VelaOS& other)
{
    setCachedWorkStationName(other.cachedWorkStationName());
    m_appThreadId = other.m_appThreadId.load();
    return *this;
}

int VelaOS::GetAppThreadId()
{
    return m_appThreadId;
}

std::wstring VelaOS::cachedWorkStationName() const
{
    const std::lock_guard<std::mutex> guard(m_nameLock);
    return m_workStationName;
}

void VelaOS::setCachedWorkStationName(const std::wstring& name)
{
    const std::lock_guard<std::mutex> guard(m_nameLock);
    m_workStationName = name;
}

void VelaOS::setAppThread(int threadId)
{
    m_appThreadId = threadId;
}
