#include "peers.h"

#include <boost/log/utility/ipc/object_name.hpp>
#include <boost/log/utility/ipc/reliable_message_queue.hpp>
#include <boost/log/utility/open_mode.hpp>
#include <stdexcept>

namespace bench {

namespace {

namespace ipc = boost::log::ipc;
using Queue = ipc::reliable_message_queue;

// One block to a line, which measured faster than three blocks of 64 bytes.
constexpr Queue::size_type blockSize = 256;

class QueueSender : public Sender
{
public:
    explicit QueueSender(const ipc::object_name& name)
        : m_queue(boost::log::open_mode::open_only, name)
    {
    }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        for (; count > 0; --count, lines.next()) {
            const std::string& line = lines.line();
            if (m_queue.send(line.data(), static_cast<Queue::size_type>(line.size())) !=
                Queue::succeeded)
                throw std::runtime_error("Boost.Log queue: send failed");
        }
    }

private:
    Queue m_queue;
};

class QueueReceiver : public Receiver
{
public:
    explicit QueueReceiver(const ipc::object_name& name)
        : m_queue(boost::log::open_mode::open_only, name)
    {
    }

    void receive(Tally& tally, std::uint64_t count) override
    {
        char line[256];
        for (; count > 0; --count) {
            Queue::size_type length = 0;
            if (m_queue.receive(line, length) != Queue::succeeded)
                throw std::runtime_error("Boost.Log queue: receive failed");
            tally.take({line, length});
        }
    }

private:
    Queue m_queue;
};

class BoostLogQueue : public Transport
{
public:
    explicit BoostLogQueue(const std::string& uniqueName)
        : m_name(ipc::object_name::user, uniqueName)
    {
    }

    void prepare() override
    {
        m_queue = Queue(boost::log::open_mode::create_only, m_name, queueLines, blockSize,
                        Queue::block_on_overflow);
    }
    std::unique_ptr<Sender> makeSender() override { return std::make_unique<QueueSender>(m_name); }
    std::unique_ptr<Receiver> makeReceiver() override
    {
        return std::make_unique<QueueReceiver>(m_name);
    }

private:
    ipc::object_name m_name;
    Queue m_queue; // the queue ends with the last object that has it open
};

} // namespace

std::unique_ptr<Transport> makeBoostLogQueue(const std::string& uniqueName)
{
    return std::make_unique<BoostLogQueue>(uniqueName);
}

} // namespace bench
