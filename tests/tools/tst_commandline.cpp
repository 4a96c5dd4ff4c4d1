// What every verb has in common: numbers, near words, help, and calls that are wrong.

#include "tools/vlbase/bytecount.h"
#include "tools/vlbase/command.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/suggestion.h"
#include "tools/vlbase/textoutput.h"

#include <QTest>

using namespace vlbase::tool;

class CommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void byteCounts_data();
    void byteCounts();
    void byteCountsShown();
    void nearWords_data();
    void nearWords();
    void helpTellsEveryOption();
};

void CommandLineTest::byteCounts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("bytes"); // -1: none
    const auto row = [](const char* text, qint64 bytes) {
        QTest::newRow(*text ? text : "empty") << QString::fromLatin1(text) << bytes;
    };
    row("0", 0);
    row("65536", 65536);
    row("12B", 12);
    row("64K", 65536);
    row("64 kb", 65536);
    row("1MiB", 1048576);
    row("2g", 2147483648);
    row("4294967295G", 4611686017353646080);
    row("4294967296G", -1);
    row("99999999999999999999", -1);
    row("", -1);
    row("K", -1);
    row("-1", -1);
    row("1.5M", -1);
    row("1T", -1);
    row("1KiBs", -1);
    row("1i", -1);
}

void CommandLineTest::byteCounts()
{
    QFETCH(QString, text);
    QTEST(qint64{parseByteCount(text).value_or(-1)}, "bytes");
}

void CommandLineTest::byteCountsShown()
{
    QCOMPARE(byteCountText(1), QStringLiteral("1 byte"));
    QCOMPARE(byteCountText(1023), QStringLiteral("1023 bytes"));
    QCOMPARE(byteCountText(1536), QStringLiteral("1.5 KiB"));
    QCOMPARE(byteCountText(qint64{5} << 40), QStringLiteral("5120 GiB"));
}

void CommandLineTest::nearWords_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("nearest");
    const auto row = [](const char* typed, const char* nearest) {
        QTest::newRow(typed) << QString::fromLatin1(typed) << QString::fromLatin1(nearest);
    };
    row("tial", "tail");
    row("TAIL", "tail");
    row("stat", "");
    row("statsu", "status");
    row("sned", "send");
    row("owner", "");
    row("own1", "own");
    row("frobnicate", "");
}

void CommandLineTest::nearWords()
{
    QFETCH(QString, typed);
    const QStringList words = {QStringLiteral("own"), QStringLiteral("tail"),
                               QStringLiteral("send"), QStringLiteral("status")};
    QTEST(nearestWord(typed, words), "nearest");
}

void CommandLineTest::helpTellsEveryOption()
{
    for (const Command& command : allCommands()) {
        const QString help = helpText(command);
        QVERIFY(help.startsWith(QStringLiteral("Usage: %1 ").arg(command.fullName())));
        for (const Option& option : command.options) {
            const char* dashes = option.name.size() > 1 ? "--" : "-";
            QVERIFY2(
                help.contains(QStringLiteral("  %1%2 ").arg(QLatin1String(dashes), option.name)),
                qPrintable(option.name));
        }
        QVERIFY(!command.examples.empty());
        for (const QString& line : help.split(u'\n'))
            QVERIFY2(line.size() <= 92, qPrintable(line));
    }
}

QTEST_GUILESS_MAIN(CommandLineTest)

#include "tst_commandline.moc"
