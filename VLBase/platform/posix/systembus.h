#pragma once

#include <cstdint>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace vlbase::platform {

/// What an object on the system bus answered.
struct BusReply
{
    std::uint32_t error = 0; ///< an errno value; ETIMEDOUT and ENOTCONN when there is no answer
    std::string text;        ///< the first value, when that is a text
};

/// A connection of its own to the system bus, by the C library of D-Bus: Qt's module would bring
/// a thread that outlives the call, and that complains when the process ends right behind it.
/// The connection and each call take five seconds at most.
class SystemBus
{
public:
    SystemBus();
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;
    ~SystemBus();

    bool isConnected() const { return m_connection != nullptr; }

    // Methods of logind's manager with no argument, a number or a bool.
    BusReply callLoginManager(const char* method) const;
    BusReply callLoginManager(const char* method, std::uint64_t argument) const;
    BusReply callLoginManager(const char* method, bool argument) const;

private:
    void close();
    BusReply call(DBusMessage* message) const;

    DBusConnection* m_connection = nullptr;
};

} // namespace vlbase::platform
