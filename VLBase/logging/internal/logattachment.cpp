#include "logattachment.h"

#include <VLBase/logging/internal/linehash.h>
#include <VLBase/logging/internal/logobjects.h>

#include <algorithm>
#include <chrono>

namespace vlbase::logging {

using platform::LockResult;
using platform::NamedMapping;

namespace {

constexpr std::chrono::milliseconds lockTimeout(2000);

} // namespace

std::shared_ptr<LogAttachment> LogAttachment::join(bool& absent)
{
    auto attachment = std::make_shared<LogAttachment>();
    NamedMapping& mapping = attachment->m_mapping;
    const NamedMapping::Opened opened = mapping.open(objectName(bufferObject));
    absent = opened == NamedMapping::Opened::Absent;
    if (opened != NamedMapping::Opened::Done || LogImage::defect(mapping.data(), mapping.size()) ||
        !attachment->m_mutex.open(objectName(mutexObject)))
        return nullptr;
    attachment->m_image = LogImage::view(mapping.data(), mapping.size());
    if (attachment->m_image.bufferSize() == 0)
        return nullptr;

    NamedMapping& reserve = attachment->m_reserveMapping;
    if (reserve.open(objectName(reserveObject)) == NamedMapping::Opened::Done &&
        LogReserve::isReserve(reserve.data(), reserve.size()))
        attachment->m_reserve.emplace(reserve.data(), reserve.size(), attachment->m_image);
    return attachment;
}

std::shared_ptr<LogAttachment> LogAttachment::create(int bufferSize)
{
    if (bufferSize <= 0)
        return nullptr;
    auto attachment = std::make_shared<LogAttachment>();
    NamedMapping& mapping = attachment->m_mapping;
    if (!mapping.create(objectName(bufferObject), LogImage::sizeFor(bufferSize)) ||
        !attachment->m_mutex.create(objectName(mutexObject)))
        return nullptr;
    attachment->m_image = LogImage::format(mapping.data(), bufferSize);

    // What is there now belongs to processes that are just being ended.
    NamedMapping& reserve = attachment->m_reserveMapping;
    if (reserve.open(objectName(reserveObject)) == NamedMapping::Opened::Done &&
        LogReserve::isReserve(reserve.data(), reserve.size())) {
        LogReserve::format(reserve.data(), LogReserve::stagingBytes(reserve.data()),
                           attachment->m_image);
        attachment->m_reserve.emplace(reserve.data(), reserve.size(), attachment->m_image);
    }
    return attachment;
}

void LogAttachment::ensureReserve(int reserveBytes)
{
    if (m_reserve || m_reserveMapping.isOpen())
        return;
    const std::string name = objectName(reserveObject);
    const std::size_t least = 2 * static_cast<std::size_t>(m_image.bufferSize());
    std::size_t bytes = static_cast<std::size_t>(std::max(reserveBytes, 0));
    while (!m_reserveMapping.create(name, LogReserve::sizeFor(bytes))) {
        if (bytes == 0)
            return;
        bytes = bytes > least ? std::max(bytes / 2, least) : 0;
    }
    LogReserve::format(m_reserveMapping.data(), bytes, m_image);
    m_reserve.emplace(m_reserveMapping.data(), m_reserveMapping.size(), m_image);
}

LogStaging* LogAttachment::sharedStaging()
{
    return m_reserve && m_reserve->staging().size() > 0 ? &m_reserve->staging() : nullptr;
}

LockResult LogAttachment::lock()
{
    const bool isTry = isHolderHanging();
    const LockResult result = m_mutex.lock(isTry ? std::chrono::milliseconds(0) : lockTimeout);
    if (isTry && result != LockResult::TimedOut)
        m_isHolderHanging.store(false, std::memory_order_relaxed);
    switch (result) {
    case LockResult::Owned:
        // All at once, where the steps of adding a line would ask for them one after another.
        m_image.prefetchEnds();
        if (m_reserve)
            m_reserve->prefetchSeal();
        break;
    case LockResult::Failed:
        break;
    case LockResult::OwnedAfterDeath:
        repair();
        break;
    case LockResult::TimedOut:
        // Whoever waited at the same time must not take away what the first has written since.
        if (m_isHolderHanging.exchange(true, std::memory_order_relaxed))
            return LockResult::Failed;
        m_image.emptyHalves();
        if (m_reserve)
            m_reserve->noteHang();
        break;
    }
    return result;
}

void LogAttachment::repair()
{
    m_image.repair();
    if (LogStaging* const staging = sharedStaging())
        staging->finishMove(m_image);
}

LogAttachment::Taken LogAttachment::takeNumber()
{
    const LogImage::Number taken = m_image.takeNumber();
    return {taken.number, m_reserve ? m_reserve->takePosition(taken.counter) : std::nullopt};
}

void LogAttachment::add(std::string_view line, std::optional<std::uint64_t> position)
{
    if (m_reserve && position)
        m_reserve->seal(*position, line);
    else if (m_reserve)
        m_reserve->noteInjected(lineHash(line));
    m_image.append(0, line);
    m_image.append(1, line);
}

} // namespace vlbase::logging
