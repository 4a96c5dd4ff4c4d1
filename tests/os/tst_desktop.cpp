// What a user sees and hears: icons of the icon library, opened documents, sounds.

#include "tests/support/program.h"

#include <VLBase/os/velaos.h>

#include <QGuiApplication>
#include <QIcon>
#include <QLibrary>
#include <QtTest>

#include <array>
#include <cstring>

#ifndef Q_OS_WIN
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

IVelaOS& os()
{
    return VelaOS::Get();
}

} // namespace

class TestDesktop : public QObject
{
    Q_OBJECT

private slots:
    void icons()
    {
        // Once it is loaded, its name alone finds it.
        QVERIFY(QLibrary(QStringLiteral(VLBASE_ICON_LIBRARY)).load());
        const auto colour = [](int id) {
            return os().GetIconById(id).pixmap(16).toImage().pixelColor(8, 8);
        };
        QCOMPARE(colour(0), QColor(Qt::red));
        QCOMPARE(colour(5), QColor(Qt::blue));
        for (const int id : {1, -1, 6})
            QVERIFY(os().GetIconById(id).isNull());
    }

    void tonesDoNotWaitForTheirEnd()
    {
        QElapsedTimer time;
        time.start();
        for (int i = 0; i < 5; ++i)
            QVERIFY(os().SystemSound(1) != -1);
        QVERIFY(time.elapsed() < 450);
    }

    void whatIsNotThereIsNotOpened()
    {
        const QTemporaryDir folder;
        QCOMPARE(os().ShellExec(folder.filePath(QStringLiteral("none.txt"))), qint64{2});
        // Windows knows a code for a missing folder too; Wine does not tell it apart.
        const qint64 inNoFolder = os().ShellExec(folder.filePath(QStringLiteral("none/none.txt")));
        QVERIFY(inNoFolder == 2 || inNoFolder == 3);
    }

#ifndef Q_OS_WIN
    void opening()
    {
        // Stands in for the desktop's own: notes what it is given, and ends as that says.
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("log"));
        QFile opener(folder.filePath(QStringLiteral("xdg-open")));
        QVERIFY(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\nprintf %s \"$*\" >" + QFile::encodeName(log) +
                     "\ncase \"$*\" in *wait*) exec sleep 3;; *bad*) exit 3;; esac\n");
        opener.setPermissions(QFile::ExeOwner | QFile::ReadOwner);
        opener.close();
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + qgetenv("PATH"));

        const QString before = QDir::currentPath();
        QDir::setCurrent(folder.path());
        const QString odd = QStringLiteral("-a \"b\" $c;'.txt");
        QVERIFY(QFile::copy(opener.fileName(), odd));
        QMap<QString, qint64> answers;
        for (const QString& target : {folder.path(), odd, QStringLiteral("https://a.org/?b=c d"),
                                      QStringLiteral("xx:wait"), QStringLiteral("mailto:bad")}) {
            QFile::remove(log);
            answers[target] = os().ShellExec(target);
            QFile given(log);
            QVERIFY(given.open(QIODevice::ReadOnly));
            QCOMPARE(QString::fromUtf8(given.readAll()),
                     (target == odd ? QStringLiteral("./") : QString()) + target);
        }
        QCOMPARE(answers.take(QStringLiteral("mailto:bad")), qint64{31});
        for (const qint64 answer : qAsConst(answers))
            QVERIFY(answer > 32);
        QCOMPARE(os().ShellExec(QStringLiteral("C:none")), qint64{2}); // no address

        // A process without standard streams gets the answer on one of their numbers.
        std::array<int, 3> aside{};
        for (int stream = 0; stream < 3; ++stream) {
            aside[static_cast<std::size_t>(stream)] = ::fcntl(stream, F_DUPFD_CLOEXEC, 3);
            ::close(stream);
        }
        const qint64 answer = os().ShellExec(QStringLiteral("mailto:bad"));
        for (int stream = 0; stream < 3; ++stream)
            ::dup2(aside[static_cast<std::size_t>(stream)], stream);
        QCOMPARE(answer, qint64{31});
        QDir::setCurrent(before);
    }

    /// Without a display, in a session whose terminal is ours to listen to.
    void bell()
    {
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0)
            QSKIP("no pseudo terminals are mounted here");
        const QByteArray name = ::ptsname(terminal);
        QProcess player;
        player.setChildProcessModifier([&name] {
            ::setsid();
            ::open(name.constData(), O_RDWR);
        });
        startThisProgram(player, {QStringLiteral("play")});
        QVERIFY(awaitEnd(player));
        QCOMPARE(player.exitCode(), 0);
        std::array<char, 8> heard{};
        QCOMPARE(::read(terminal, heard.data(), heard.size()), 2);
        QCOMPARE(heard.data(), "\a\a");
        ::close(terminal);
    }
#endif
};

int main(int argc, char* argv[])
{
    if (argc == 2 && std::strcmp(argv[1], "play") == 0) {
        QElapsedTimer time;
        time.start();
        os().Play(reinterpret_cast<void*>(1));
        os().Play(nullptr);
        return time.elapsed() >= 100 ? 0 : 1;
    }
    QGuiApplication app(argc, argv);
    TestDesktop test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktop.moc"
