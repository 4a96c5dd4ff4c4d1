#include "peers.h"

#include <boost/interprocess/ipc/message_queue.hpp>

namespace bench {

namespace {

using Queue = boost::interprocess::message_queue;

constexpr std::size_t longestLine = 160;

class QueueSender : public Sender
{
public:
    explicit QueueSender(const std::string& name)
        : m_queue(boost::interprocess::open_only, name.c_str())
    {
    }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        for (; count > 0; --count, lines.next())
            m_queue.send(lines.line().data(), lines.line().size(), 0);
    }

private:
    Queue m_queue;
};

class QueueReceiver : public Receiver
{
public:
    explicit QueueReceiver(const std::string& name)
        : m_queue(boost::interprocess::open_only, name.c_str())
    {
    }

    void receive(Tally& tally, std::uint64_t count) override
    {
        char line[longestLine];
        for (; count > 0; --count) {
            Queue::size_type length = 0;
            unsigned int priority = 0;
            m_queue.receive(line, sizeof line, length, priority);
            tally.take({line, length});
        }
    }

private:
    Queue m_queue;
};

class InterprocessQueue : public Transport
{
public:
    explicit InterprocessQueue(const std::string& uniqueName)
        : m_name(uniqueName)
    {
    }
    ~InterprocessQueue() override { Queue::remove(m_name.c_str()); }

    void prepare() override
    {
        const Queue created(boost::interprocess::create_only, m_name.c_str(), 4096, longestLine);
    }
    std::unique_ptr<Sender> makeSender() override { return std::make_unique<QueueSender>(m_name); }
    std::unique_ptr<Receiver> makeReceiver() override
    {
        return std::make_unique<QueueReceiver>(m_name);
    }

private:
    std::string m_name;
};

} // namespace

std::unique_ptr<Transport> makeInterprocessQueue(const std::string& uniqueName)
{
    return std::make_unique<InterprocessQueue>(uniqueName);
}

} // namespace bench
