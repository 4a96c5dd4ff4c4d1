#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>

/// Starts a program that is known to be there.
///
/// Wine 8 refuses one start of some thousands with "Internal error", whichever program it is. A
/// suite that starts hundreds would fail of that now and then, so such a start is tried again.
/// \return whether it runs; else `errorString()` of the process tells why it does not.
inline bool startProgram(QProcess& process, const QString& program, const QStringList& arguments)
{
    constexpr int mostTries = 5;
    for (int tries = 1;; ++tries) {
        process.start(program, arguments);
        if (process.waitForStarted())
            return true;
        const QString reason = process.errorString();
        qWarning("%s was not started: %s", qPrintable(program), qPrintable(reason));
        if (tries == mostTries || process.error() != QProcess::FailedToStart)
            return false;
    }
}

/// The program `vlbase` that is built beside the tests.
inline bool startVlbase(QProcess& process, const QStringList& arguments)
{
    return startProgram(process, QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"),
                        arguments);
}

/// This program once more, in the role that the arguments name.
inline bool startThisProgram(QProcess& process, const QStringList& arguments)
{
    return startProgram(process, QCoreApplication::applicationFilePath(), arguments);
}

/// Waits for the end of a program, in the event loop.
///
/// `QProcess::waitForFinished` deletes the notifier of the end while a thread of the system may
/// still run it. Under Wine 8 that crashed one waiting test program in a thousand.
/// \return whether it has ended
inline bool awaitEnd(const QProcess& process, int limitMs = 60'000)
{
    return QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, limitMs);
}
