#include "descriptor.h"
#include "detachedprogram.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/shellopen.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <unistd.h>

namespace vlbase::platform {

namespace {

// What Windows answers.
constexpr std::int64_t noMemory = 0;
constexpr std::int64_t fileNotFound = 2;
constexpr std::int64_t pathNotFound = 3;
constexpr std::int64_t accessDenied = 5;
constexpr std::int64_t noAssociation = 31;
constexpr std::int64_t done = 33;

/// Whether it begins like an address: "https:", "mailto:", but not "C:".
bool hasScheme(const std::string& target)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::size_t end = target.find_first_not_of(letters + "0123456789+.-");
    return end != std::string::npos && end > 1 && target[end] == ':' &&
           letters.find(target[0]) != std::string::npos;
}

std::int64_t whyNotThere(const std::string& path, int error)
{
    setLastError(static_cast<std::uint32_t>(error));
    if (error == EACCES)
        return accessDenied;
    const std::size_t slash = path.rfind('/');
    const bool hasFolder =
        slash == std::string::npos || ::access(path.substr(0, slash + 1).c_str(), F_OK) == 0;
    return hasFolder ? fileNotFound : pathNotFound;
}

/// A pipe whose ends no other program inherits.
class Pipe
{
public:
    Pipe()
    {
        if (::pipe2(m_ends.data(), O_CLOEXEC) != 0)
            return;
        for (int& end : m_ends)
            end = behindStandardStreams(end);
        m_isOpen = m_ends[0] >= 0 && m_ends[1] >= 0;
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        closeWriter();
        if (m_ends[0] >= 0)
            ::close(m_ends[0]);
    }

    bool isOpen() const { return m_isOpen; }
    int reader() const { return m_ends[0]; }
    int writer() const { return m_ends[1]; }
    void closeWriter()
    {
        if (m_ends[1] >= 0)
            ::close(m_ends[1]);
        m_ends[1] = -1;
    }

private:
    std::array<int, 2> m_ends{-1, -1};
    bool m_isOpen = false;
};

/// None when nothing was said in time.
std::optional<char> readWithin(int descriptor, std::chrono::milliseconds limit)
{
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + limit;
    pollfd input{descriptor, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
        const int ready = ::poll(&input, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
        if (ready < 0 && errno == EINTR)
            continue;
        char said = 0;
        if (ready <= 0 || ::read(descriptor, &said, 1) != 1)
            return std::nullopt;
        return said;
    }
}

} // namespace

std::int64_t openForUser(const std::string& target)
{
    std::string argument = target;
    if (::access(target.c_str(), F_OK) == 0) {
        if (target.front() != '/')
            argument.insert(0, "./"); // It may begin like an option, or like an address.
    } else if (!hasScheme(target)) {
        return whyNotThere(target, errno);
    }

    // A shell tells how xdg-open ended: that is not this process's child, and on some desktops it
    // ends only with the program that it starts.
    const char* const script = "xdg-open \"$1\" >/dev/null && printf y || printf n";
    Pipe answer;
    if (!answer.isOpen() ||
        !startDetachedProgram({"/bin/sh", "-c", script, "sh", argument}, answer.writer()))
        return noMemory;
    answer.closeWriter();
    if (readWithin(answer.reader(), std::chrono::seconds(1)) != 'n')
        return done;
    setLastError(Fault::NotFound);
    return noAssociation;
}

} // namespace vlbase::platform
