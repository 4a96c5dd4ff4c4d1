#include "mmshared.h"

#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/logregistration.h>

#include <string_view>

using vlbase::logging::LogAttachment;
using vlbase::logging::LogImage;
using vlbase::logging::LogRegistration;
using vlbase::logging::OpenOutcome;
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
    m_registration = LogRegistration::open(m_role, m_bufferSize, m_reserveBytes, m_outcome);
    if (IsOpen())
        m_bufferSize = m_registration->attachment().image().bufferSize();
    return IsOpen();
}

bool CMMShared::IsOpen() const
{
    return m_registration != nullptr;
}

bool CMMShared::IsWriterAvailable()
{
    return IsOpen() && m_registration->attachment().image().users(Role::Owner) > 0;
}

int CMMShared::GetUserCount()
{
    if (!IsOpen())
        return -1;
    const Lock lock(this);
    const LogImage& image = m_registration->attachment().image();
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
    return m_registration->attachment().image().fileName();
}

bool CMMShared::SetFileName(const char* name)
{
    if (!IsOpen() || !name)
        return false;
    const Lock lock(this);
    return m_registration->attachment().image().setFileName(name);
}

bool CMMShared::GetAcceptDataBlocks()
{
    if (!IsOpen())
        return false;
    const Lock lock(this);
    return m_registration->attachment().image().acceptsDataBlocks();
}

void CMMShared::SetAcceptDataBlocks(bool accept)
{
    if (!IsOpen())
        return;
    const Lock lock(this);
    m_registration->attachment().image().setAcceptsDataBlocks(accept);
}

long CMMShared::GetIndex()
{
    if (!IsOpen())
        return -1;
    const Lock lock(this);
    return m_registration->attachment().image().index();
}

long CMMShared::SetIndex(long index)
{
    if (!IsOpen())
        return -1;
    LogAttachment& attachment = m_registration->attachment();
    vlbase::logging::LogReserve* const reserve = attachment.reserve();
    const std::uint64_t reached = reserve ? reserve->reached() : 0;
    attachment.image().setIndex(static_cast<std::int32_t>(index));
    if (reserve)
        reserve->jump(reached, static_cast<std::int32_t>(index));
    return index;
}

long CMMShared::GetAndIncIndex()
{
    if (!IsOpen())
        return -1;
    const LogAttachment::Number taken = m_registration->attachment().takeNumber();
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
    m_registration->attachment().add(text, position);
}

void CMMShared::GetBuffer(int index, char** data, long* length)
{
    *data = nullptr;
    *length = 0;
    if (!IsOpen() || index < 0 || index > 1)
        return;
    m_currentBuffer = index;
    const LogImage& image = m_registration->attachment().image();
    *data = image.half(index);
    *length = image.fill(index);
}

void CMMShared::ReleaseBuffer()
{
    if (IsOpen())
        m_registration->attachment().image().setFill(m_currentBuffer, 0);
}

void CMMShared::LockData()
{
    if (IsOpen())
        m_registration->attachment().lock();
}

void CMMShared::UnLockData()
{
    if (IsOpen())
        m_registration->attachment().unlock();
}

const std::shared_ptr<LogRegistration>& CMMShared::registration() const
{
    return m_registration;
}

OpenOutcome CMMShared::openOutcome() const
{
    return m_outcome;
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
