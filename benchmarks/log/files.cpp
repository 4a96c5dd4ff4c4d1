#include "peers.h"

#include <cstdio>
#include <fcntl.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <stdexcept>
#include <unistd.h>

namespace bench {

namespace {

class AppendingSender : public Sender
{
public:
    explicit AppendingSender(const std::string& path)
        : m_fd(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600))
    {
    }
    ~AppendingSender() override { ::close(m_fd); }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        char row[lineLength + 1];
        row[lineLength] = '\n';
        for (; count > 0; --count, lines.next()) {
            lines.line().copy(row, lineLength);
            if (::write(m_fd, row, sizeof row) != ssize_t{sizeof row})
                throw std::runtime_error("write failed");
        }
    }

private:
    int m_fd;
};

class SpdlogSender : public Sender
{
public:
    // The variant without a lock of its own, spdlog's fastest for a process with one thread.
    explicit SpdlogSender(const std::string& path)
        : m_logger("bench", std::make_shared<spdlog::sinks::basic_file_sink_st>(path))
    {
        m_logger.set_pattern("%v");
        m_logger.flush_on(spdlog::level::trace);
    }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        for (; count > 0; --count, lines.next())
            m_logger.error(lines.line());
    }

private:
    spdlog::logger m_logger;
};

template <class FileSender> class LogFile : public Transport
{
public:
    explicit LogFile(const std::string& path)
        : m_path(path)
    {
    }
    ~LogFile() override { std::remove(m_path.c_str()); }

    std::unique_ptr<Sender> makeSender() override { return std::make_unique<FileSender>(m_path); }
    std::string file() const override { return m_path; }

private:
    std::string m_path;
};

} // namespace

std::unique_ptr<Transport> makeAppendedFile(const std::string& path)
{
    return std::make_unique<LogFile<AppendingSender>>(path);
}

std::unique_ptr<Transport> makeSpdlogFile(const std::string& path)
{
    return std::make_unique<LogFile<SpdlogSender>>(path);
}

} // namespace bench
