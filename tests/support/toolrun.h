#pragma once

#include "tests/support/program.h"

#include <QProcess>
#include <QString>
#include <QStringList>

/// What a run of `vlbase` came to. Line ends are those of this system's texts.
struct Outcome
{
    int status = -1;
    QString output;
    QString errors;
};

/// Runs the program that is built beside the tests.
/// \param outputFile where standard output goes instead
inline Outcome runTool(const QStringList& arguments, const QByteArray& input = {},
                       const QString& outputFile = {})
{
    QProcess process;
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    startVlbase(process, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!awaitEnd(process) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString()};
    const auto text = [](const QByteArray& bytes) {
        return QString::fromUtf8(bytes).remove(QLatin1Char('\r'));
    };
    return {process.exitCode(), text(process.readAllStandardOutput()),
            text(process.readAllStandardError())};
}

/// The same with the words of a line.
inline Outcome runTool(const char* line)
{
    return runTool(QString::fromUtf8(line).split(QLatin1Char(' ')));
}
