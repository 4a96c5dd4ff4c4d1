// The verb that shows stored window geometries, as a program.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMainWindow>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QByteArray recordHex("01d9d0cb0001000200000060000000380000"
                           "02e7000002330000006400000050000002e30000022f000000010100");

struct Outcome
{
    int status = -1;
    QString output;
    QString errors;
};

Outcome runVerb(const QStringList& arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"),
                  QStringList(QStringLiteral("geometry")) + arguments);
    if (!process.waitForFinished())
        return {};
    const auto text = [](const QByteArray& bytes) {
        return QString::fromUtf8(bytes).remove(QLatin1Char('\r'));
    };
    return {process.exitCode(), text(process.readAllStandardOutput()),
            text(process.readAllStandardError())};
}

} // namespace

class GeometryVerbTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsDigits_data();
    void showsDigits();
    void showsSettings();
    void showsOtherFiles();
    void showsJson();
    void tellsWhatIsNone_data();
    void tellsWhatIsNone();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(m_dir.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) >= 0 ? file.fileName()
                                                                           : QString();
    }

    QTemporaryDir m_dir;
};

void GeometryVerbTest::showsDigits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("shown");

    const QString hex = QString::fromLatin1(recordHex);
    const QString all = QStringLiteral("version      1.2\n"
                                       "with frame   left 96, top 56, 648 x 508\n"
                                       "normal       left 100, top 80, 640 x 480\n"
                                       "screen       1\n"
                                       "maximized    yes\n"
                                       "full screen  no\n");
    QTest::newRow("plain") << QStringList(hex) << all;
    QTest::newRow("in pieces") << QStringList({hex.left(8), hex.mid(8, 5), hex.mid(13).toUpper()})
                               << all;
    QTest::newRow("longer") << QStringList(hex + QStringLiteral("abcd"))
                            << all + QStringLiteral("length       2 bytes more than known\n");
    QTest::newRow("shorter") << QStringList(hex.left(16))
                             << QStringLiteral(
                                    "version      1.2\n"
                                    "with frame   left 0, top 0, 1 x 1\n"
                                    "normal       left 0, top 0, 1 x 1\n"
                                    "screen       0\n"
                                    "maximized    no\n"
                                    "full screen  no\n"
                                    "length       8 of 46 bytes; what is missing reads as 0\n");
    QTest::newRow("later") << QStringList(QStringLiteral("01d9d0cb00030000ffff"))
                           << QStringLiteral("version      3.0, a later major version than 1, the "
                                             "one that is read\n");
    QTest::newRow("version 0") << QStringList(QStringLiteral("01d9d0cb"))
                               << QStringLiteral(
                                      "version      0.0, which is no version of a geometry\n");
}

void GeometryVerbTest::showsDigits()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runVerb(arguments);
    QTEST(outcome.output, "shown");
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.status, 0);
}

void GeometryVerbTest::showsSettings()
{
    const QString fileName = m_dir.filePath(QStringLiteral("receiver.ini"));
    {
        QMainWindow window;
        QSettings settings(fileName, QSettings::IniFormat);
        settings.setValue(QStringLiteral("Main/geometry"), QByteArray::fromHex(recordHex));
        settings.setValue(QStringLiteral("Main/state"), window.saveState());
        settings.setValue(QStringLiteral("Today/geometry"), window.saveGeometry());
        settings.setValue(QStringLiteral("asText"), QString::fromLatin1(recordHex));
        settings.setValue(QStringLiteral("frequency"), 100);
    }
    const Outcome outcome = runVerb({fileName});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.output.count(QStringLiteral("normal       left 100, top 80")), 2);
    QCOMPARE(outcome.output.count(QStringLiteral("version  ")), 3);
    QVERIFY(outcome.output.contains(fileName + QStringLiteral(": Main/geometry\n")));
    QVERIFY(outcome.output.contains(fileName +
                                    QStringLiteral(": Today/geometry\nversion      3.0, a later")));
}

void GeometryVerbTest::showsOtherFiles()
{
    const QByteArray record = QByteArray::fromHex(recordHex);
    const QByteArray lines = recordHex.left(20) + "\r\n" + recordHex.mid(20) + "\n";
    for (const QByteArray& content : {record, recordHex, lines}) {
        const QString fileName = write(QStringLiteral("stored"), content);
        const Outcome outcome = runVerb({fileName});
        QVERIFY2(outcome.output.startsWith(fileName + QStringLiteral("\nversion      1.2\n")),
                 qPrintable(outcome.output + outcome.errors));
    }
}

void GeometryVerbTest::showsJson()
{
    const Outcome outcome = runVerb({QStringLiteral("--json"), QString::fromLatin1(recordHex)});
    const QJsonObject object =
        QJsonDocument::fromJson(outcome.output.toUtf8()).array().at(0).toObject();
    QCOMPARE(object[QStringLiteral("valid")], QJsonValue(true));
    QCOMPARE(object[QStringLiteral("maximized")], QJsonValue(true));
    QCOMPARE(object[QStringLiteral("normal")].toObject(),
             (QJsonObject{{QStringLiteral("left"), 100},
                          {QStringLiteral("top"), 80},
                          {QStringLiteral("width"), 640},
                          {QStringLiteral("height"), 480}}));
    const Outcome later = runVerb({QStringLiteral("--json"), QStringLiteral("01d9d0cb00030000")});
    const QJsonObject laterObject =
        QJsonDocument::fromJson(later.output.toUtf8()).array().at(0).toObject();
    QCOMPARE(laterObject[QStringLiteral("majorVersion")], QJsonValue(3));
    QVERIFY(!laterObject.contains(QStringLiteral("normal")));
}

void GeometryVerbTest::tellsWhatIsNone_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("told");

    const QString settings = write(QStringLiteral("none.ini"), "[a]\nb=@ByteArray(\\x1\\x2)\n");
    QTest::newRow("nothing") << QStringList() << 2 << QStringLiteral("neither digits nor a file");
    QTest::newRow("digits") << QStringList(QStringLiteral("0102")) << 1
                            << QStringLiteral("begins with 01d9d0cb");
    QTest::newRow("no such file") << QStringList(m_dir.filePath(QStringLiteral("gone"))) << 1
                                  << QStringLiteral("cannot read");
    QTest::newRow("no geometry") << QStringList(settings) << 1
                                 << QStringLiteral("no window geometry in");
    QTest::newRow("a folder") << QStringList(m_dir.path()) << 1 << QStringLiteral("cannot read");
}

void GeometryVerbTest::tellsWhatIsNone()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, told);
    const Outcome outcome = runVerb(arguments);
    QTEST(outcome.status, "status");
    QVERIFY2(outcome.errors.contains(told), qPrintable(outcome.errors));
    QCOMPARE(outcome.output, QString());
}

QTEST_MAIN(GeometryVerbTest)
#include "tst_geometryverb.moc"
