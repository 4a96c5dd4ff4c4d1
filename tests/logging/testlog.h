#pragma once

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/mmshared.h>

#include <QCoreApplication>
#include <QString>

#include <string>
#include <string_view>
#include <vector>

/// Chooses a log of the test's own, a new one for each call.
inline QString useOwnLog()
{
    static int count = 0;
    const QString name =
        QStringLiteral("test-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
    return setLogInstance(name) ? name : QString();
}

/// Descriptors and mappings, or handles, of this process.
int countOfOpenResources();

/// The lines of a pack, each ended by a zero byte; empty ones included.
inline std::vector<std::string> linesOf(std::string_view pack)
{
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < pack.size(); at += lines.back().size() + 1)
        lines.emplace_back(pack.data() + at);
    return lines;
}

/// What an owner or a program of its own role sees.
class TestShared : public CMMShared
{
public:
    explicit TestShared(int role, int bufferSize = 0)
        : CMMShared(role, bufferSize)
    {
    }
    using CMMShared::GetAcceptDataBlocks;
    using CMMShared::GetAndIncIndex;
    using CMMShared::GetBuffer;
    using CMMShared::GetIndex;
    using CMMShared::ReleaseBuffer;
    using CMMShared::SetAcceptDataBlocks;
    using CMMShared::SetFileName;
    using CMMShared::SetIndex;

    std::vector<std::string> lines(int half, bool taken = false)
    {
        const Lock lock(this);
        const auto result = linesOf(pack(half));
        if (taken)
            ReleaseBuffer();
        return result;
    }
    /// The bytes of a half.
    std::string_view pack(int half)
    {
        char* data = nullptr;
        long length = 0;
        GetBuffer(half, &data, &length);
        return {data, static_cast<std::size_t>(length)};
    }
};
