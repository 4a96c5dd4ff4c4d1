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
    void byteCounts()
    {
        const std::pair<const char*, qint64> texts[] = {
            {"0", 0},
            {"65536", 65536},
            {"12B", 12},
            {"64 kb", 65536},
            {"1MiB", 1048576},
            {"2g", 2147483648},
            {"4294967295G", 4611686017353646080},
            {"4294967296G", -1},
            {"99999999999999999999", -1},
            {"", -1},
            {"K", -1},
            {"-1", -1},
            {"1.5M", -1},
            {"1T", -1},
            {"1KiBs", -1},
            {"1i", -1},
        };
        for (const auto& [text, bytes] : texts)
            QCOMPARE(qint64{parseByteCount(QString::fromLatin1(text)).value_or(-1)}, bytes);
        const std::pair<qint64, const char*> shown[] = {
            {1, "1 byte"},
            {1023, "1023 bytes"},
            {1536, "1.5 KiB"},
            {qint64{5} << 40, "5120 GiB"},
        };
        for (const auto& [bytes, text] : shown)
            QCOMPARE(byteCountText(bytes), QLatin1String(text));
    }

    void nearWords()
    {
        const QStringList words = {u"own"_qs, u"tail"_qs, u"send"_qs, u"status"_qs};
        const std::pair<const char*, const char*> typed[] = {
            {"tial", "tail"}, {"TAIL", "tail"}, {"stat", ""},    {"statsu", "status"},
            {"sned", "send"}, {"owner", ""},    {"own1", "own"}, {"frobnicate", ""},
        };
        for (const auto& [word, nearest] : typed)
            QCOMPARE(nearestWord(QLatin1String(word), words), QLatin1String(nearest));
    }

    void helpTellsEveryOption()
    {
        for (const Command& command : allCommands()) {
            const QString help = helpText(command);
            QVERIFY(help.startsWith(QStringLiteral("Usage: %1 ").arg(command.fullName())));
            for (const Option& option : command.options) {
                const char* dashes = option.name.size() > 1 ? "--" : "-";
                QVERIFY2(help.contains(
                             QStringLiteral("  %1%2 ").arg(QLatin1String(dashes), option.name)),
                         qPrintable(option.name));
            }
            QVERIFY(!command.examples.empty());
            for (const QString& line : help.split(u'\n'))
                QVERIFY2(line.size() <= 92, qPrintable(line));
        }
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)

#include "tst_commandline.moc"
