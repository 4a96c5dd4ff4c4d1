// The verb that shows what the operating-system service sees, as a program.

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

class OsVerbTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QByteArray outputOf(const QStringList& arguments, int status)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
            environment.insert(QLatin1String(variable), QDir::toNativeSeparators(m_folder.path()));
        environment.insert(QStringLiteral("TZ"), QStringLiteral("XXX+9:30")); // only for Linux
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"),
                      QStringList(QStringLiteral("os")) + arguments);
        const bool isEnded = process.waitForFinished() && process.exitCode() == status;
        return isEnded ? process.readAllStandardOutput().replace('\r', "") : QByteArray("failed");
    }

private Q_SLOTS:
    void showsTheSameInBothForms()
    {
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        const QJsonObject object =
            QJsonDocument::fromJson(outputOf({QStringLiteral("--json")}, 0)).object();
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        const auto text = [&object](const char* key) {
            return object[QLatin1String(key)].toString();
        };
        QCOMPARE(text("computer").toLower(), QSysInfo::machineHostName().toLower());
        QCOMPARE(QDir(text("temporaryDirectory")).canonicalPath(),
                 QDir(m_folder.path()).canonicalPath());
        QCOMPARE(QDir(text("userDirectory")), QDir::home());
        QVERIFY(!text("user").isEmpty() && text("userSid").startsWith(u"S-1-"));
        for (const qint64 stamp :
             {text("seconds").toLongLong() * 1000 + 999, text("milliseconds").toLongLong(),
              text("stamp").toLongLong() / 1000})
            QVERIFY(before <= stamp && stamp <= after + 999);
#ifndef Q_OS_WIN
        QCOMPARE(object[QStringLiteral("utcOffset")].toDouble(), -34200e6);
#endif
        QVERIFY(object[QStringLiteral("thread")].toInt() != 0);
        QCOMPARE(object[QStringLiteral("thread")], object[QStringLiteral("appThread")]);

        // A line for each, or for each of several, and the texts in one column.
        const QList<QByteArray> lines = outputOf({}, 0).trimmed().split('\n');
        qsizetype count = object.size();
        for (const char* list : {"addresses", "adapters"})
            count += qMax(object[QLatin1String(list)].toArray().size(), qsizetype{1}) - 1;
        QCOMPARE(lines.size(), count);
        const qsizetype column = lines[0].indexOf(text("computer").toUtf8());
        for (const QByteArray& line : lines)
            QVERIFY2(line[column - 1] == ' ' && line[column] != ' ', line);
        QVERIFY(lines.contains(QByteArray("user SID").leftJustified(column) +
                               text("userSid").toUtf8()));
#ifndef Q_OS_WIN
        QVERIFY(lines.contains(QByteArray("UTC offset now").leftJustified(column) + "-09:30"));
#endif
    }

    void takesNoArgument()
    {
        QCOMPARE(outputOf({QStringLiteral("all")}, 2), "");
    }
};

QTEST_GUILESS_MAIN(OsVerbTest)
#include "tst_osverb.moc"
