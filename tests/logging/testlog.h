#pragma once

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/mmshared.h>

#include <QCoreApplication>
#include <QString>

#include <string>
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

    /// The lines of a half; empty ones included.
    std::vector<std::string> lines(int half)
    {
        const Lock lock(this);
        char* data = nullptr;
        long length = 0;
        GetBuffer(half, &data, &length);
        std::vector<std::string> result;
        for (const char* line = data; line < data + length; line += result.back().size() + 1)
            result.emplace_back(line);
        return result;
    }
};
