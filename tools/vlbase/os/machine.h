#pragma once

#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <vector>

class IVelaOS;

namespace vlbase::tool::os {

/// One thing that the service knows of this machine.
struct Fact
{
    QString key;       ///< in JSON
    QJsonValue value;  ///< for programs
    QString title;     ///< for people
    QStringList texts; ///< one line each; none when there is nothing
};

/// Asks the service everything that it tells without being told. Blocks while the name service
/// looks for this machine's addresses.
std::vector<Fact> machineFacts(IVelaOS& service);

} // namespace vlbase::tool::os
