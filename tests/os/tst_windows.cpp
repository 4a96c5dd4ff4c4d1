// Windows of other processes, on a display of the test's own. This program, copied under a name
// that no other process has, is the application: it tells over a connection how it sees itself.

#include "tests/support/program.h"

#include <VLBase/os/processinformation.h>
#include <VLBase/os/terminationlistener.h>
#include <VLBase/os/velaos.h>

#include <QApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWidget>
#include <QtTest>

#include <array>
#include <csignal>
#include <cstring>
#include <memory>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr int limitMs = 30000;
constexpr int quitStatus = 7;

using Numbers = std::array<int, 5>; // the four edges with the frame, and how it is shown

IVelaOS& os()
{
    return VelaOS::Get();
}

QByteArray text(const Numbers& numbers)
{
    QByteArrayList texts;
    for (const int number : numbers)
        texts << QByteArray::number(number);
    return texts.join(' ');
}

Numbers numbers(const QByteArray& text)
{
    Numbers result{};
    const QByteArrayList texts = text.split(' ');
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = texts.value(static_cast<qsizetype>(i)).toInt();
    return result;
}

QByteArray placement(int processId)
{
    Numbers out{-1, -2, -3, -4, -5};
    const bool isFound = os().GetWindowPositions(out[0], out[1], out[2], out[3], out[4], processId);
    return isFound ? text(out) : "none, " + text(out);
}

const QByteArray none = "none, -1 -2 -3 -4 -5";

void place(const Numbers& to, int processId)
{
    os().SetWindowPositions(to[0], to[1], to[2], to[3], to[4], processId);
}

/// Wine places no windows of another process, and tells of them only where they are now.
bool knowsOnlyOwnPlacements()
{
#ifdef Q_OS_WIN
    return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
#else
    return false;
#endif
}

/// By the system's own words where Qt leaves out a part of the frame that nobody sees.
QByteArray describe(const QWidget& window)
{
    QRect frame = window.frameGeometry();
#ifdef Q_OS_WIN
    RECT native{};
    GetWindowRect(reinterpret_cast<HWND>(window.winId()), &native);
    frame.setCoords(native.left, native.top, native.right - 1, native.bottom - 1);
#endif
    const int shown = window.isMinimized() ? 2 : window.isMaximized() ? 3 : 1;
    return text(
        {frame.x(), frame.y(), frame.x() + frame.width(), frame.y() + frame.height(), shown});
}

int runApplication(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("main"));
    window.setStyleSheet(QStringLiteral("background: teal"));
    window.setGeometry(220, 160, 300, 200);
    window.show();
    QWidget owned(&window, Qt::Dialog);
    owned.setWindowTitle(QStringLiteral("owned"));
    const TerminationListener listener;
    QObject::connect(&listener, &TerminationListener::terminationRequested, &app,
                     [] { QCoreApplication::exit(quitStatus); });

    QTcpSocket test;
    QObject::connect(&test, &QTcpSocket::readyRead, &app, [&] {
        while (test.canReadLine()) {
            const QByteArray wish = test.readLine().trimmed();
            if (wish == "own")
                owned.show();
            else if (wish == "hide")
                window.hide();
            else if (wish == "maximise")
                window.showMaximized();
            else if (wish.startsWith("place "))
                place(numbers(wish.mid(6)), static_cast<int>(QCoreApplication::applicationPid()));
            const QWidget* const active = QApplication::activeWindow();
            test.write(wish == "describe" ? describe(window)
                       : wish == "placement"
                           ? placement(static_cast<int>(QCoreApplication::applicationPid()))
                       : active ? active->windowTitle().toLatin1()
                                : QByteArray("none"));
            test.write("\n");
        }
    });
    QObject::connect(&test, &QTcpSocket::disconnected, &app, &QCoreApplication::quit);
    test.connectToHost(QHostAddress::LocalHost, app.arguments().constLast().toUShort());
    if (!test.waitForConnected(limitMs) || !QTest::qWaitForWindowExposed(&window, limitMs))
        return 1;
    test.write(QByteArray::number(window.winId()) + '\n');
    return QApplication::exec();
}

class Application
{
public:
    explicit Application(const QString& program)
    {
        m_server.listen(QHostAddress::LocalHost);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral(VLBASE_TEST_PLUGIN));
        // What libdbus keeps of Qt's platform plugin at the end is no leak of ours.
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        startProgram(process, program,
                     {QStringLiteral("application"), QString::number(m_server.serverPort())});
        if (m_server.waitForNewConnection(limitMs))
            m_socket.reset(m_server.nextPendingConnection());
        window = readLine().toULongLong();
    }
    ~Application()
    {
        process.kill();
        awaitEnd(process, limitMs);
    }

    int id() const { return static_cast<int>(process.processId()); }

    QByteArray ask(const QByteArray& wish)
    {
        if (m_socket)
            m_socket->write(wish + '\n');
        return readLine();
    }

    void place(const Numbers& to)
    {
        if (knowsOnlyOwnPlacements())
            ask("place " + text(to));
        else
            ::place(to, id());
    }

    QByteArray placement()
    {
        return knowsOnlyOwnPlacements() ? ask("placement") : ::placement(id());
    }

    QProcess process;
    quintptr window = 0;

private:
    QByteArray readLine()
    {
        while (m_socket && !m_socket->canReadLine()) {
            if (!m_socket->waitForReadyRead(limitMs))
                return "no answer";
        }
        return m_socket ? m_socket->readLine().trimmed() : "no connection";
    }

    QTcpServer m_server;
    std::unique_ptr<QTcpSocket> m_socket;
};

bool bringToFront(int processId)
{
    PROCESS_INFORMATION record{};
    record.dwProcessId = static_cast<quint32>(processId);
    return os().SetWindowToForeground(&record);
}

} // namespace

class TestWindows : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_program;
    QProcess m_display;
    QProcess m_manager;

#ifndef Q_OS_WIN
    void startDisplay()
    {
        m_display.start(QStringLiteral("Xvfb"),
                        {QStringLiteral("-displayfd"), QStringLiteral("1"),
                         QStringLiteral("-screen"), QStringLiteral("0"),
                         QStringLiteral("1024x768x24"), QStringLiteral("-nolisten"),
                         QStringLiteral("tcp")});
        while (!m_display.canReadLine())
            QVERIFY(m_display.waitForReadyRead(limitMs));
        qputenv("DISPLAY", ':' + m_display.readLine().trimmed());
    }

    void startManager()
    {
        const QString mark = m_folder.filePath(QStringLiteral("managed"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        m_manager.setProcessEnvironment(environment);
        // Its play of shrinking windows would move them, at times until the next event.
        QFile settings(m_folder.filePath(QStringLiteral("rc.xml")));
        QVERIFY(settings.open(QIODevice::WriteOnly));
        settings.write("<openbox_config xmlns=\"http://openbox.org/3.4/rc\"><theme>"
                       "<animateIconify>no</animateIconify></theme></openbox_config>");
        settings.close();
        m_manager.start(QStringLiteral("openbox"),
                        {QStringLiteral("--config-file"), settings.fileName(),
                         QStringLiteral("--sm-disable"), QStringLiteral("--startup"),
                         QStringLiteral("touch ") + mark});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(mark), limitMs);
    }

    void signalDisplay(int number) const
    {
        QCOMPARE(::kill(static_cast<pid_t>(m_display.processId()), number), 0);
    }
#endif

private slots:
    void initTestCase()
    {
        const QFileInfo self(QCoreApplication::applicationFilePath());
        m_program = m_folder.filePath(QStringLiteral("WindowsOf%1.%2")
                                          .arg(QCoreApplication::applicationPid())
                                          .arg(self.suffix()));
        QVERIFY(QFile::copy(self.filePath(), m_program));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
#ifndef Q_OS_WIN
        for (const char* display : {"", ":987", "no such display"}) {
            qputenv("DISPLAY", display);
            os().SetLastError(0);
            QCOMPARE(placement(int(getpid())), none);
            QCOMPARE(os().GetLastError(), quint32{ENOSYS});
            place({1, 1, 99, 99, 1}, int(getpid()));
            os().BroadcastTerminationMessage();
            QVERIFY(!bringToFront(int(getpid())));
            QVERIFY(!os().SetWindowToForeground(reinterpret_cast<HWND>(1)));
            QVERIFY(!TerminationListener().isListening());
        }
        startDisplay();
        startManager();
#endif
    }

    void cleanupTestCase()
    {
        for (QProcess* process : {&m_manager, &m_display}) {
            process->terminate();
            process->waitForFinished(limitMs);
        }
        QVERIFY(QTest::qWaitFor([this] { return QFile::remove(m_program); }));
    }

    void placements()
    {
        Application application(m_program);
        const int id = application.id();
        QTRY_COMPARE(placement(id), application.ask("describe"));
        QVERIFY(placement(id).endsWith(" 1"));
        QCOMPARE(placement(id + 100000), none);

        const auto isSeenAs = [&](const Numbers& normal) {
            // Which place it has now is the application's only while that is the normal one.
            return application.placement() == text(normal) &&
                   (normal[4] == 1 ? application.ask("describe") == text(normal)
                                   : application.ask("describe").right(1).toInt() == normal[4]);
        };
        // Minimised, restored, maximised, minimised from there and so on.
        for (const auto& [command, shown] :
             {std::pair(1, 1), {2, 2}, {9, 1}, {3, 3}, {6, 2}, {3, 3}, {4, 1}}) {
            const int shift = 10 * command;
            application.place({150 + shift, 160, 450 + shift, 360 + shift, command});
            const Numbers expected{150 + shift, 160, 450 + shift, 360 + shift, shown};
            QTRY_VERIFY2(isSeenAs(expected), application.placement() + " beside " + text(expected));
        }
        application.ask("maximise");
        QTRY_VERIFY2(isSeenAs({190, 160, 490, 400, 3}), application.placement());
        application.place({30, 0, 330, 200, 1}); // whose top reads as none
        QTRY_VERIFY(application.ask("describe").startsWith("30 0 "));
        QCOMPARE(application.placement(), none);
        application.place({40, 50, 340, 200, 0});
        QTRY_COMPARE(application.placement(), none);
        QVERIFY(!bringToFront(id));
    }

    void foreground()
    {
        Application one(QCoreApplication::applicationFilePath());
        Application two(m_program);
        const QString name = QFileInfo(m_program).fileName();
        const auto activeIn = [](Application& application) { return application.ask("active"); };
        QTRY_COMPARE(activeIn(two), "main");
        two.ask("own");
        QTRY_COMPARE(activeIn(two), "owned");
        QTRY_VERIFY(bringToFront(two.id()));
        QTRY_COMPARE(activeIn(two), "main");

        QTRY_VERIFY(bringToFront(one.id()));
        QTRY_COMPARE(activeIn(one), "main");
        QTRY_COMPARE(activeIn(two), "none");
        QTRY_VERIFY(os().SetWindowToForeground(name.toUpper()));
        QTRY_COMPARE(activeIn(two), "main");
        QVERIFY(!os().SetWindowToForeground(name.mid(1)));
        QVERIFY(!os().SetWindowToForeground(QString()));

        one.place({200, 200, 500, 400, 2});
        QTRY_COMPARE(one.placement(), "200 200 500 400 2");
        QTRY_VERIFY(os().SetWindowToForeground(reinterpret_cast<HWND>(one.window)));
        QTRY_COMPARE(activeIn(one), "main");
        QTRY_COMPARE(one.ask("describe"), "200 200 500 400 1");

        one.ask("hide");
        QTRY_COMPARE(one.placement(), none);
        for (const quintptr window : {quintptr{0}, quintptr{0x12345678}, one.window}) {
            const auto handle = reinterpret_cast<HWND>(window);
            if (window != one.window)
                QVERIFY(!os().SetWindowToForeground(handle));
        }
        QVERIFY(!os().SetWindowToForeground(static_cast<PROCESS_INFORMATION*>(nullptr)));
        QVERIFY(!bringToFront(one.id()));
    }

    void broadcast()
    {
        Application one(QCoreApplication::applicationFilePath());
        Application two(m_program);
        const TerminationListener own;
        QVERIFY(own.isListening());
        const QSignalSpy heard(&own, &TerminationListener::terminationRequested);
        QProcess viewer;
        viewer.setReadChannel(QProcess::StandardError);
        startVlbase(viewer,
                    {QStringLiteral("log"), QStringLiteral("tail"), QStringLiteral("--instance"),
                     QFileInfo(m_program).completeBaseName()});
        QVERIFY(viewer.waitForReadyRead(limitMs)); // that it waits for an owner

        // The viewer may begin to listen only later.
        QTRY_VERIFY_WITH_TIMEOUT(
            (os().BroadcastTerminationMessage(), viewer.state() == QProcess::NotRunning), limitMs);
        QCOMPARE(viewer.exitCode(), 0);
        for (Application* application : {&one, &two}) {
            QVERIFY(awaitEnd(application->process, limitMs));
            QCOMPARE(application->process.exitCode(), quitStatus);
        }
        QTest::qWait(50); // in which its own messages would come
        QCOMPARE(heard.count(), 0);
    }

#ifndef Q_OS_WIN
    void withoutManager()
    {
        Application application(m_program);
        QTRY_COMPARE(placement(application.id()), application.ask("describe"));
        m_manager.kill(); // which leaves what it said about windows behind
        QVERIFY(m_manager.waitForFinished(limitMs));
        place({50, 60, 350, 260, 1}, application.id());
        QTRY_COMPARE(placement(application.id()), "50 60 350 260 1");
        QTRY_VERIFY(bringToFront(application.id()));
        QCOMPARE(application.ask("active"), "main");
    }

    void displayThatHangsOrEnds()
    {
        auto application = std::make_unique<Application>(m_program);
        TerminationListener listener;
        signalDisplay(SIGSTOP);
        QElapsedTimer time;
        time.start();
        QCOMPARE(placement(application->id()), none);
        os().BroadcastTerminationMessage();
        os().Play(nullptr);
        const qint64 passed = time.elapsed();
        signalDisplay(SIGCONT);
        QVERIFY2(passed < limitMs, qPrintable(QString::number(passed)));
        QTRY_VERIFY(placement(application->id()) != none);

        m_display.terminate();
        QVERIFY(m_display.waitForFinished(limitMs));
        QTRY_VERIFY(!listener.isListening());
        QCOMPARE(placement(application->id()), none);
    }
#endif
};

int main(int argc, char* argv[])
{
    if (argc > 2 && std::strcmp(argv[1], "application") == 0)
        return runApplication(argc, argv);
    QCoreApplication app(argc, argv);
    TestWindows test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_windows.moc"
