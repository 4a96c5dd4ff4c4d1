#include "tools/vlbase/platform/standardstreams.h"

#include "tools/vlbase/platform/stopsignal.h"

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <langinfo.h>
#include <poll.h>
#include <unistd.h>

namespace vlbase::tool::platform {
namespace {

int descriptorOf(Stream stream)
{
    switch (stream) {
    case Stream::Input:
        return STDIN_FILENO;
    case Stream::Output:
        return STDOUT_FILENO;
    case Stream::Error:
        return STDERR_FILENO;
    }
    return -1;
}

bool becomesWritable(int descriptor)
{
    pollfd ready = {descriptor, POLLOUT, 0};
    return poll(&ready, 1, 100) >= 0 || errno == EINTR;
}

/// A closed stream's number would go to the next file that is opened, which then gets the
/// program's messages. What is put there can neither be read nor written, so whoever tries is told.
void occupyStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken, and those below are in use by now.
        if (fcntl(descriptor, F_GETFD) == -1)
            open("/", O_PATH | O_DIRECTORY);
    }
}

} // namespace

void prepareStandardStreams()
{
    occupyStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // Qt would switch to this locale by itself, but with a warning on each start.
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
        setenv("LC_ALL", "C.UTF-8", 1);
}

bool isTerminal(Stream stream)
{
    return isatty(descriptorOf(stream)) == 1;
}

bool enableEscapeSequences()
{
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

std::ptrdiff_t readInput(char* data, std::size_t size)
{
    for (;;) {
        const ssize_t got = read(STDIN_FILENO, data, size);
        if (got >= 0)
            return got;
        if (errno == EAGAIN) {
            pollfd ready = {STDIN_FILENO, POLLIN, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return -1;
        }
    }
}

WriteResult writeAll(Stream stream, const char* data, std::size_t size)
{
    const int descriptor = descriptorOf(stream);
    while (size > 0) {
        const ssize_t put = write(descriptor, data, size);
        if (put >= 0) {
            data += put;
            size -= static_cast<std::size_t>(put);
        } else if (errno == EPIPE) {
            return WriteResult::Closed;
        } else if (errno == EINTR || (errno == EAGAIN && becomesWritable(descriptor))) {
            // A terminal that was stopped (Ctrl-S) must not keep the program from ending.
            if (StopSignal::requested())
                return WriteResult::Closed;
        } else {
            return WriteResult::Failed;
        }
    }
    return WriteResult::Done;
}

} // namespace vlbase::tool::platform
