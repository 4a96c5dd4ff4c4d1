#include "logobjects.h"

namespace vlbase::logging {

namespace {

// Never destroyed: a tracer may be among the last objects of the process.
std::string& storedName()
{
    static auto& name = *new std::string;
    return name;
}

std::mutex& instanceMutex()
{
    static auto& mutex = *new std::mutex;
    return mutex;
}

} // namespace

std::string instanceName()
{
    const std::lock_guard guard(instanceMutex());
    return storedName();
}

void setInstanceName(const std::string& name)
{
    const std::lock_guard guard(instanceMutex());
    storedName() = name;
}

std::mutex& attachmentMutex()
{
    static auto& mutex = *new std::mutex;
    return mutex;
}

std::string objectName(const char* object)
{
    const std::string instance = instanceName();
    return instance.empty() ? object : object + ("." + instance);
}

} // namespace vlbase::logging
