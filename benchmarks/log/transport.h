#pragma once

#include "line.h"

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

/// The writing end, made and used in a writer's process.
class Sender
{
public:
    virtual ~Sender() = default;

    /// Sends the next \p count lines of \p lines. Returns when the last call has returned.
    virtual void send(LineMaker& lines, std::uint64_t count) = 0;
};

/// The reading end, made and used in the receiver's process.
class Receiver
{
public:
    virtual ~Receiver() = default;

    /// Takes lines until \p count more of them have arrived or are known to be lost.
    virtual void receive(Tally& tally, std::uint64_t count) = 0;

    /// Lines that the transport itself reported as lost, over all calls.
    virtual std::uint64_t reportedLost() const { return 0; }
};

/// One way of bringing the lines of many processes together. An object serves one run and
/// removes in its destructor whatever the run made.
class Transport
{
public:
    virtual ~Transport() = default;

    /// Makes what has to exist before any process attaches.
    virtual void prepare() {}

    virtual std::unique_ptr<Sender> makeSender() = 0;

    /// Null when the lines go straight into a file.
    virtual std::unique_ptr<Receiver> makeReceiver() { return nullptr; }

    /// The file in which the lines end, one per row; empty when they go to a receiver.
    virtual std::string file() const { return {}; }

    /// Removes what killed processes left behind.
    virtual void sweep() {}
};

} // namespace bench
