// The verb that shows what the operating-system service sees, as a program.

#include "tests/support/program.h"

#include <QDateTime>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

class OsVerbTest : public QObject
{
    Q_OBJECT

private:
    static QByteArray outputOf(const QStringList& arguments)
    {
        QProcess process;
        startVlbase(process, QStringList(QStringLiteral("os")) + arguments);
        awaitEnd(process);
        return QByteArray::number(process.exitCode()) + '\n' +
               process.readAllStandardOutput().replace('\r', "");
    }

private Q_SLOTS:
    void showsWhatIsKnown()
    {
        qputenv("TZ", "XXX+9:30"); // only Linux follows it
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        const QJsonObject object =
            QJsonDocument::fromJson(outputOf({QStringLiteral("--json")}).mid(2)).object();
        const auto text = [&object](const char* key) {
            return object[QLatin1String(key)].toString();
        };
        const qint64 stamp = text("stamp").toLongLong() / 1000;
        QVERIFY(before <= stamp && stamp <= QDateTime::currentMSecsSinceEpoch());
        QCOMPARE(text("computer").toLower(), QSysInfo::machineHostName().toLower());
        QCOMPARE(QDir(text("userDirectory")), QDir::home());
        QCOMPARE(object[QStringLiteral("thread")], object[QStringLiteral("appThread")]);

        const QByteArray lines = outputOf({});
        QVERIFY(lines.contains("\nuser SID               " + text("userSid").toUtf8() + '\n'));
#ifndef Q_OS_WIN
        QCOMPARE(object[QStringLiteral("utcOffset")].toDouble(), -34200e6);
        QVERIFY(lines.contains("\nUTC offset now         -09:30\n"));
#endif
        QCOMPARE(outputOf({QStringLiteral("all")}), "2\n");
    }
};

QTEST_GUILESS_MAIN(OsVerbTest)
#include "tst_osverb.moc"
