#include "systembus.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <dbus/dbus.h>
#include <memory>
#include <utility>

namespace vlbase::platform {

namespace {

struct Unref
{
    void operator()(DBusMessage* message) const { ::dbus_message_unref(message); }
};
using OwnedMessage = std::unique_ptr<DBusMessage, Unref>;

class Error
{
public:
    Error() { ::dbus_error_init(&m_error); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;
    ~Error() { ::dbus_error_free(&m_error); }

    DBusError* get() { return &m_error; }

    std::uint32_t code() const
    {
        static constexpr std::array<std::pair<const char*, std::uint32_t>, 11> codes{{
            {DBUS_ERROR_ACCESS_DENIED, EPERM},
            {DBUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED, EPERM},
            {DBUS_ERROR_SERVICE_UNKNOWN, ENOSYS},
            {DBUS_ERROR_UNKNOWN_OBJECT, ENOSYS},
            {DBUS_ERROR_UNKNOWN_INTERFACE, ENOSYS},
            {DBUS_ERROR_UNKNOWN_METHOD, ENOSYS},
            {DBUS_ERROR_NO_REPLY, ETIMEDOUT},
            {DBUS_ERROR_TIMEOUT, ETIMEDOUT},
            {DBUS_ERROR_TIMED_OUT, ETIMEDOUT},
            {DBUS_ERROR_DISCONNECTED, ENOTCONN},
            {DBUS_ERROR_NO_MEMORY, ENOMEM},
        }};
        for (const auto& [name, code] : codes) {
            if (::dbus_error_has_name(&m_error, name))
                return code;
        }
        return EIO;
    }

private:
    DBusError m_error{};
};

constexpr std::chrono::milliseconds limit{5000};

/// A call would wait for this without a limit.
void waitUntilAuthenticated(DBusConnection* connection)
{
    using Clock = std::chrono::steady_clock;
    constexpr int stepMs = 100;
    const Clock::time_point end = Clock::now() + limit;
    while (!::dbus_connection_get_is_authenticated(connection) && Clock::now() < end) {
        if (!::dbus_connection_read_write(connection, stepMs))
            return;
    }
}

const char* systemBusAddress()
{
    const char* address = ::secure_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return address != nullptr ? address : "unix:path=/run/dbus/system_bus_socket";
}

OwnedMessage loginManagerMessage(const char* method)
{
    return OwnedMessage(::dbus_message_new_method_call("org.freedesktop.login1",
                                                       "/org/freedesktop/login1",
                                                       "org.freedesktop.login1.Manager", method));
}

} // namespace

SystemBus::SystemBus()
{
    Error error;
    m_connection = ::dbus_connection_open_private(systemBusAddress(), error.get());
    if (m_connection == nullptr)
        return;
    waitUntilAuthenticated(m_connection);
    // dbus_bus_register() would do the same, but wait for half a minute.
    const OwnedMessage hello(::dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                            DBUS_INTERFACE_DBUS, "Hello"));
    if (!::dbus_connection_get_is_authenticated(m_connection) || call(hello.get()).error != 0)
        close();
}

SystemBus::~SystemBus()
{
    close();
}

void SystemBus::close()
{
    if (m_connection == nullptr)
        return;
    ::dbus_connection_close(m_connection);
    ::dbus_connection_unref(std::exchange(m_connection, nullptr));
}

BusReply SystemBus::call(DBusMessage* message) const
{
    if (message == nullptr)
        return {ENOMEM, {}};
    Error error;
    const OwnedMessage reply(::dbus_connection_send_with_reply_and_block(
        m_connection, message, static_cast<int>(limit.count()), error.get()));
    if (!reply)
        return {error.code(), {}};
    const char* text = nullptr;
    ::dbus_message_get_args(reply.get(), nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    return {0, text != nullptr ? text : ""};
}

BusReply SystemBus::callLoginManager(const char* method) const
{
    return call(loginManagerMessage(method).get());
}

BusReply SystemBus::callLoginManager(const char* method, std::uint64_t argument) const
{
    OwnedMessage message = loginManagerMessage(method);
    const dbus_uint64_t value = argument;
    if (message &&
        !::dbus_message_append_args(message.get(), DBUS_TYPE_UINT64, &value, DBUS_TYPE_INVALID))
        message.reset();
    return call(message.get());
}

BusReply SystemBus::callLoginManager(const char* method, bool argument) const
{
    OwnedMessage message = loginManagerMessage(method);
    const dbus_bool_t value = argument ? TRUE : FALSE;
    if (message &&
        !::dbus_message_append_args(message.get(), DBUS_TYPE_BOOLEAN, &value, DBUS_TYPE_INVALID))
        message.reset();
    return call(message.get());
}

} // namespace vlbase::platform
