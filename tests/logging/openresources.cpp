#include "testlog.h"

#ifdef Q_OS_WIN
#include <cstdint>
#include <windows.h>

// Handles are numbered without gaps, so a new one tells how many there are. Wine does not count
// them.
int countOfOpenResources()
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const auto number = reinterpret_cast<std::uintptr_t>(event) / 4;
    CloseHandle(event);
    return static_cast<int>(number);
}
#else
#include <QDir>
#include <QFile>

int countOfOpenResources()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return 0;
    const auto mappings = maps.readAll().count("/dev/shm");
    return static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).count() + mappings);
}
#endif
