#include "helperrole.h"

#include "testlog.h"

#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logwriter.h>
#include <VLBase/platform/namedmapping.h>

#include <QStringList>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

using vlbase::logging::LogOwner;
using vlbase::platform::NamedMapping;

namespace {

// Leaves half 1 as somebody does who dies between the bytes and the end of a line.
void spoilHalf(const QString& instance)
{
    NamedMapping mapping;
    mapping.open("vlcoreShareBuffer1." + instance.toStdString());
    std::int32_t fill = 0;
    std::memcpy(&fill, mapping.data() + 44, 4);
    std::memcpy(mapping.data() + 1080 + fill, "half a line", 11);
    fill += 11;
    std::memcpy(mapping.data() + 44, &fill, 4);
}

class Helper
{
public:
    std::string execute(const QStringList& words)
    {
        const QString& command = words.at(0);
        const int number = words.value(1).toInt();
        if (command == QLatin1String("own")) {
            m_owner = std::make_unique<LogOwner>(number, words.value(2).toInt());
            return std::to_string(static_cast<int>(m_owner->openResult()));
        }
        if (command == QLatin1String("join")) {
            m_writer = std::make_unique<CLogWriter>(words.value(1));
            return m_writer->IsOpen() ? "open" : "closed";
        }
        if (command == QLatin1String("send")) {
            for (int i = 0; i < number; ++i)
                m_writer->SendEvent(QString::number(i), QString(), QString());
        } else if (command == QLatin1String("drain")) {
            m_owner->drain();
        } else if (command == QLatin1String("mark")) {
            for (int i = 0; i < number; ++i)
                m_owner->markWritten(m_owner->pending().find('\0') + 1);
        } else if (command == QLatin1String("lock")) {
            m_writer->LockData();
        } else if (command == QLatin1String("spoil")) {
            spoilHalf(logInstance());
        } else {
            return "unknown";
        }
        return "done";
    }

private:
    std::unique_ptr<LogOwner> m_owner;
    std::unique_ptr<CLogWriter> m_writer;
};

} // namespace

int runHelper(const QString& instance)
{
    if (!setLogInstance(instance))
        return 1;
    Helper helper;
    std::string line;
    while (std::getline(std::cin, line)) {
        const QString command = QString::fromStdString(line).trimmed();
        std::cout << helper.execute(command.split(QLatin1Char(' '))) << std::endl;
    }
    return 0;
}
