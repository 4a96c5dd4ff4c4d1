// The verb that shows stored window geometries, as a program.

#include "tests/support/program.h"

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

const QString recordHex =
    QStringLiteral("01d9d0cb0001000200000060000000380000"
                   "02e7000002330000006400000050000002e30000022f000000010100");

/// What the verb writes, with its exit status before it: errors for people, else the output.
QString run(const QStringList& arguments)
{
    QProcess process;
    startVlbase(process, QStringList(QStringLiteral("geometry")) + arguments);
    if (!awaitEnd(process))
        return QStringLiteral("does not end");
    const QByteArray output = process.readAllStandardOutput();
    const QByteArray errors = process.readAllStandardError();
    return QStringLiteral("%1 ").arg(process.exitCode()) +
           QString::fromUtf8(output + errors).remove(u'\r');
}

QJsonObject jsonOf(const QString& hex)
{
    const QString outcome = run({QStringLiteral("--json"), hex});
    return QJsonDocument::fromJson(outcome.mid(2).toUtf8()).array().at(0).toObject();
}

} // namespace

class GeometryVerbTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsDigits()
    {
        const QString all = QStringLiteral("0 version      1.2\n"
                                           "with frame   left 96, top 56, 648 x 508\n"
                                           "normal       left 100, top 80, 640 x 480\n"
                                           "screen       1\n"
                                           "maximized    yes\n"
                                           "full screen  no\n");
        const QString cut =
            QStringLiteral("0 version      1.2\n"
                           "with frame   left -2147483648, top 0, 4294967296 x 1\n"
                           "normal       left 0, top 0, 1 x 1\n"
                           "screen       0\n"
                           "maximized    no\n"
                           "full screen  no\n"
                           "length       20 of 46 bytes; what is missing reads as 0\n");
        const QString later =
            QStringLiteral("0 version      3.0, a later major version than 1, the one that is "
                           "read\n");
        const std::pair<QString, QString> cases[] = {
            {recordHex, all},
            {recordHex.left(8) + u' ' + recordHex.mid(8, 5) + u' ' + recordHex.mid(13).toUpper(),
             all},
            {recordHex + u"abcd"_qs, all + u"length       2 bytes more than known\n"_qs},
            {recordHex.left(16) + u"80000000000000007fffffff"_qs, cut},
            {u"01d9d0cb00030000ffff"_qs, later},
            {u"01d9d0cb"_qs, u"0 version      0.0, which is no version of a geometry\n"_qs},
        };
        for (const auto& [digits, shown] : cases)
            QCOMPARE(run(digits.split(u' ')), shown);
    }

    void showsSettings()
    {
        const QString fileName = m_dir.filePath(QStringLiteral("receiver.ini"));
        {
            QMainWindow window;
            QSettings settings(fileName, QSettings::IniFormat);
            settings.setValue(QStringLiteral("Main/geometry"),
                              QByteArray::fromHex(recordHex.toLatin1()));
            settings.setValue(QStringLiteral("Main/state"), window.saveState());
            settings.setValue(QStringLiteral("Today/geometry"), window.saveGeometry());
            settings.setValue(QStringLiteral("asText"), recordHex);
            settings.setValue(QStringLiteral("frequency"), 100);
        }
        const QString shown = run({fileName});
        QCOMPARE(shown.count(QStringLiteral("normal       left 100, top 80")), 2);
        QCOMPARE(shown.count(QStringLiteral("version  ")), 3);
        QVERIFY(shown.contains(fileName + u": Main/geometry\n"_qs));
        QVERIFY(shown.contains(fileName + u": Today/geometry\nversion      3.0, a later"_qs));
    }

    void showsOtherFiles()
    {
        const QByteArray hex = recordHex.toLatin1();
        const QByteArray lines = hex.left(20) + "\r\n" + hex.mid(20) + "\n";
        for (const QByteArray& content : {QByteArray::fromHex(hex), hex, lines}) {
            const QString fileName = write("stored", content);
            QVERIFY2(run({fileName}).startsWith(u"0 "_qs + fileName + u"\nversion      1.2\n"_qs),
                     content.constData());
        }
    }

    void showsJson()
    {
        const QJsonObject object = jsonOf(recordHex);
        QVERIFY(object[u"valid"].toBool() && object[u"maximized"].toBool());
        QCOMPARE(QJsonDocument(object[u"normal"].toObject()).toJson(QJsonDocument::Compact),
                 QByteArray(R"({"height":480,"left":100,"top":80,"width":640})"));
        const QJsonObject later = jsonOf(QStringLiteral("01d9d0cb00030000"));
        QCOMPARE(later[u"majorVersion"], QJsonValue(3));
        QVERIFY(!later.contains(u"normal"));
    }

    void tellsWhatIsNone()
    {
        const std::tuple<QStringList, char, QString> cases[] = {
            {{}, '2', u"neither digits nor a file"_qs},
            {{u"0102"_qs}, '1', u"begins with 01d9d0cb"_qs},
            {{m_dir.filePath(u"gone"_qs)}, '1', u"cannot read"_qs},
            {{m_dir.path()}, '1', u"cannot read"_qs},
            {{write("none.ini", "[a]\nb=@ByteArray(\\x1\\x2)\n")},
             '1',
             u"no window geometry in"_qs},
            {{write("long", QByteArray((16 << 20) + 1, '0'))}, '1', u"longer than any"_qs},
        };
        for (const auto& [arguments, status, told] : cases) {
            const QString outcome = run(arguments);
            QVERIFY2(outcome.startsWith(QLatin1Char(status)) && outcome.contains(told),
                     qPrintable(outcome));
        }
    }

private:
    QString write(const char* name, const QByteArray& content)
    {
        QFile file(m_dir.filePath(QLatin1String(name)));
        return file.open(QIODevice::WriteOnly) && file.write(content) >= 0 ? file.fileName()
                                                                           : QString();
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(GeometryVerbTest)
#include "tst_geometryverb.moc"
