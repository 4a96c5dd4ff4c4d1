#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// Something that a station sends after it got an echo request.
struct Shot
{
    enum What { Reply, OtherId, OtherSequence, OtherData, Shortened, BadSum, Error, OthersError };

    What what;
    int type = 0; // of errors
    int code = 0;
    int delayMs = 0;
};

/// What a station does with requests of as many bytes as it has in the list of scenarios.
struct Scenario
{
    std::vector<Shot> shots;
    quint32 replies;
    const char* message;
};

/// By size. Size 4 is silence.
const std::vector<Scenario>& scenarios(bool isV6);

/// Puts this process, which must not have threads yet, into a network of its own with a station
/// at 10.77.0.2 and fd77::2 that plays the scenarios. Packets to 10.78.N.1 and fd78:N::1 go
/// there as to a router. The station ends with this process.
/// \return what was not possible; empty when it stands.
QByteArray makePrivateNetwork();

/// Runs a shell command; false when it fails.
bool shell(const QByteArray& command);
