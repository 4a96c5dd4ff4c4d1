#include "mmshared.h"

#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/logopening.h>

#include <string_view>

using vlbase::logging::LogAttachment;
using vlbase::logging::LogImage;
using vlbase::logging::OpenResult;
using vlbase::logging::Role;

CMMShared::CMMShared(int role, int bufferSize)
    : CMMShared(role, bufferSize, 0)
{
}

CMMShared::CMMShared(int role, int bufferSize, int reserveBytes)
    : m_role(role)
    , m_bufferSize(bufferSize)
    , m_reserveBytes(reserveBytes)
{
    Open();
}

CMMShared::~CMMShared() = default;
CMMShared::CMMShared(const CMMShared& other) = default;
CMMShared& CMMShared::operator=(const CMMShared& other) = default;

bool CMMShared::Open()
{
    if (IsOpen())
        return false;
    m_attachment = vlbase::logging::openLog(m_role, m_bufferSize, m_reserveBytes, m_lastOpening);
    if (IsOpen())
        m_bufferSize = m_attachment->image().bufferSize();
    return IsOpen();
}

bool CMMShared::IsOpen() const
{
    return m_attachment != nullptr;
}

bool CMMShared::IsWriterAvailable()
{
    return IsOpen() && m_attachment->image().users(Role::Owner) > 0;
}

int CMMShared::GetUserCount()
{
    if (!IsOpen())
        return -1;
    const Lock lock(this);
    const LogImage& image = m_attachment->image();
    std::uint32_t users = 0; // any values may stand there, and these wrap without harm
    for (const Role role : {Role::Owner, Role::Writer, Role::Reader})
        users += static_cast<std::uint32_t>(image.users(role));
    return static_cast<int>(users);
}

char* CMMShared::GetFileName()
{
    if (!IsOpen())
        return nullptr;
    const Lock lock(this);
    return m_attachment->image().fileName();
}

bool CMMShared::SetFileName(const char* name)
{
    if (!IsOpen() || !name)
        return false;
    const Lock lock(this);
    return m_attachment->image().setFileName(name);
}

bool CMMShared::GetAcceptDataBlocks()
{
    if (!IsOpen())
        return false;
    const Lock lock(this);
    return m_attachment->image().acceptsDataBlocks();
}

void CMMShared::SetAcceptDataBlocks(bool accept)
{
    if (!IsOpen())
        return;
    const Lock lock(this);
    m_attachment->image().setAcceptsDataBlocks(accept);
}

long CMMShared::GetIndex()
{
    if (!IsOpen())
        return -1;
    const Lock lock(this);
    return m_attachment->image().index();
}

long CMMShared::SetIndex(long index)
{
    if (!IsOpen())
        return -1;
    vlbase::logging::LogReserve* const reserve = m_attachment->reserve();
    const std::uint64_t reached = reserve ? reserve->reached() : 0;
    m_attachment->image().setIndex(static_cast<std::int32_t>(index));
    if (reserve)
        reserve->jump(reached, static_cast<std::int32_t>(index));
    return index;
}

long CMMShared::GetAndIncIndex()
{
    if (!IsOpen())
        return -1;
    const LogAttachment::Taken taken = m_attachment->takeNumber();
    m_takenIndex = taken.position ? taken.number : -1;
    m_takenPosition = taken.position.value_or(0);
    return taken.number;
}

void CMMShared::Add(const char* line)
{
    if (!line || !IsWriterAvailable())
        return;
    // Only the line for which this object took a number is sealed under it; any other is
    // somebody's copy.
    const std::string_view text(line);
    std::optional<std::uint64_t> position;
    if (m_takenIndex >= 0 && vlbase::logging::numberOfLine(text) == m_takenIndex) {
        position = m_takenPosition;
        m_takenIndex = -1;
    }
    m_attachment->add(text, position);
}

void CMMShared::GetBuffer(int index, char** data, long* length)
{
    *data = nullptr;
    *length = 0;
    if (!IsOpen() || index < 0 || index > 1)
        return;
    m_currentBuffer = index;
    const LogImage& image = m_attachment->image();
    *data = image.half(index);
    *length = image.fill(index);
}

void CMMShared::ReleaseBuffer()
{
    if (IsOpen())
        m_attachment->image().setFill(m_currentBuffer, 0);
}

void CMMShared::LockData()
{
    if (IsOpen())
        m_attachment->lock();
}

void CMMShared::UnLockData()
{
    if (IsOpen())
        m_attachment->unlock();
}

const std::shared_ptr<LogAttachment>& CMMShared::attachment() const
{
    return m_attachment;
}

OpenResult CMMShared::lastOpening() const
{
    return m_lastOpening;
}

Lock::Lock(CMMShared* shared)
    : m_shared(shared)
{
    m_shared->LockData();
}

Lock::~Lock()
{
    m_shared->UnLockData();
}
