#include <VLBase/utilities/xmlformat.h>

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

namespace {

// What comes out of it does not come again.
class Pipe : public QIODevice
{
public:
    explicit Pipe(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
        open(ReadOnly);
    }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 size) override
    {
        const qsizetype taken = std::min<qsizetype>(size, m_bytes.size());
        std::copy_n(m_bytes.cbegin(), taken, data);
        m_bytes.remove(0, taken);
        return taken;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
};

QByteArray indentedBytes(const QByteArray& document)
{
    QByteArray bytes = document;
    QBuffer from(&bytes), to;
    from.open(QBuffer::ReadOnly);
    to.open(QBuffer::WriteOnly);
    XmlFormat::Error error;
    return XmlFormat().indent(from, to, &error) ? to.data() : error.reason.toUtf8();
}

QByteArray encoded(QStringConverter::Encoding encoding, const QString& text)
{
    return QStringEncoder(encoding, QStringConverter::Flag::WriteBom)(text);
}

QByteArray canonical(const QString& file)
{
    QProcess xmllint;
    xmllint.start(
        QStringLiteral("xmllint"),
        {QStringLiteral("--nonet"), QStringLiteral("--noblanks"), QStringLiteral("--c14n"), file});
    return xmllint.waitForFinished() ? xmllint.readAllStandardOutput() : QByteArray();
}

} // namespace

class TestXmlFormat : public QObject
{
    Q_OBJECT

private slots:
    void shapes_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("indented");
        const std::tuple<const char*, const char*, const char*> rows[] = {
            {"levels", "<a><b/>\n\n<c><d/></c ></a>",
             "<a>\n  <b/>\n  <c>\n    <d/>\n  </c>\n</a>\n"},
            {"mixed, told at its end", "<a><b> <c/> </b><d/>x</a>", "<a><b> <c/> </b><d/>x</a>\n"},
            {"CDATA is text", "<a> <b/> <![CDATA[]]></a>", "<a> <b/> <![CDATA[]]></a>\n"},
            {"an entity is text", "<a> <b/>&#32;</a>", "<a> <b/>&#32;</a>\n"},
            {"space alone is text", "<a><b> </b></a>", "<a>\n  <b> </b>\n</a>\n"},
            {"preserved", "<a><b xml:space='preserve'> <c xml:space=\"default\"><d/> </c> </b></a>",
             "<a>\n  <b xml:space='preserve'> <c xml:space=\"default\">\n      <d/>\n    </c> "
             "</b>\n</a>\n"},
            {"prolog",
             "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e \"]>\"><!--'>--><?p ]>?>]> "
             "<!-- > --><a/><?q r?>",
             "<?xml version='1.0'?>\n<!DOCTYPE a [<!ENTITY e \"]>\"><!--'>--><?p ]>?>]>\n"
             "<!-- > -->\n<a/>\n<?q r?>\n"},
            {"attributes", "<a  b = '>\"'\n c=\"/>\" ><d e=''/></a>",
             "<a b='>\"' c=\"/>\">\n  <d e=''/>\n</a>\n"},
            {"wrapped", "<a><b one='12345678901' two='1234' three=''/></a>",
             "<a>\n  <b one='12345678901'\n      two='1234' three=''/>\n</a>\n"},
        };
        for (const auto& [name, xml, indented] : rows)
            QTest::newRow(name) << QString::fromUtf8(xml) << QString::fromUtf8(indented);
    }

    void shapes()
    {
        QFETCH(QString, xml);
        QFETCH(QString, indented);
        XmlFormat format;
        format.setLineWidth(31);
        XmlFormat::Error error;
        QCOMPARE(format.indented(xml, &error), indented);
        QVERIFY(error.reason.isEmpty());
        QCOMPARE(format.indented(indented), indented);
        const QString compact = format.compacted(xml);
        QCOMPARE(format.compacted(indented), compact);
        QCOMPARE(format.indented(compact), indented);
    }

    // Wherever the end of what is read at once falls.
    void piecesMeet()
    {
        const QByteArray tail =
            "<!--x--><?p q?><!DOCTYPE a [<!--]-->]><a><![CDATA[]]]]><b c='>'>\xc3\xa4</b></a>";
        for (qsizetype cut = 0; cut <= tail.size(); ++cut) {
            const QByteArray head = "<!--" + QByteArray(65536 - 7 - cut, 'x') + "-->";
            QVERIFY(head.size() + cut == 65536);
            QCOMPARE(indentedBytes(head + tail),
                     head + "\n<!--x-->\n<?p q?>\n<!DOCTYPE a [<!--]-->]>\n" +
                         tail.mid(tail.indexOf("<a>")) + '\n');
        }
    }

    void encodingsStay()
    {
        const QString xml = QStringLiteral("<a>\n  <b>\u00e4\u20ac</b>\n</a>\n");
        for (const auto encoding : {QStringConverter::Utf8, QStringConverter::Utf16LE,
                                    QStringConverter::Utf16BE, QStringConverter::Utf32LE})
            QCOMPARE(indentedBytes(encoded(encoding, xml)), encoded(encoding, xml));
        const QByteArray latin = "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xe4</a>\n";
        QCOMPARE(indentedBytes(latin), latin);
        QCOMPARE(indentedBytes("<?xml version='1.0' encoding='x-none'?><a/>"),
                 "The encoding 'x-none' is not known.");
        for (const char* broken : {"<a>\xe4</a>", "<a/>\xc3"})
            QCOMPARE(indentedBytes(broken), "This is no text of the document's encoding.");
    }

    void faultsHaveAPlace()
    {
        const std::tuple<const char*, int, int> faults[] = {
            {"", 1, 1},         {"<a>", 1, 4},        {"<a>\n <b></a>", 2, 9},  {"<a/>x", 1, 6},
            {"<a b=1/>", 1, 7}, {"<a>&b;</a>", 1, 7}, {"<a>\n\n\x01</a>", 3, 2}};
        for (const auto& [text, line, column] : faults) {
            const QString xml = QString::fromUtf8(text);
            XmlFormat::Error error;
            QCOMPARE(XmlFormat().indented(xml, &error), xml);
            QVERIFY(!error.reason.isEmpty());
            QCOMPARE(std::make_pair(error.line, error.column),
                     std::make_pair(qint64(line), qint64(column)));
            XmlFormat::Error fromDevice;
            QBuffer from, to;
            from.setData(text);
            from.open(QBuffer::ReadOnly);
            to.open(QBuffer::WriteOnly);
            QVERIFY(!XmlFormat().compact(from, to, &fromDevice));
            QCOMPARE(fromDevice.reason, error.reason);
            QCOMPARE(fromDevice.column, error.column);
            QVERIFY(to.data().isEmpty());
        }
    }

    void devices()
    {
        QByteArray bytes = "skipped<a> <b/> </a>";
        Pipe from(bytes);
        from.read(7);
        QBuffer to;
        to.open(QBuffer::WriteOnly);
        XmlFormat::Error error;
        QVERIFY(XmlFormat().compact(from, to, &error));
        QCOMPARE(to.data(), "<a><b/></a>");
        from.close();
        QVERIFY(!XmlFormat().compact(from, to, &error));
        QVERIFY(!error.reason.isEmpty() && error.line == 0);

        QFile full(QStringLiteral("/dev/full"));
        if (full.open(QFile::WriteOnly | QFile::Unbuffered)) {
            QBuffer document(&bytes);
            document.open(QBuffer::ReadOnly);
            document.seek(7);
            QVERIFY(!XmlFormat().indent(document, full, &error));
        }
    }

    // A million levels are not a million times a million blanks.
    void deep()
    {
        const int levels = 20000;
        const QString xml =
            QStringLiteral("<a>").repeated(levels) + QStringLiteral("</a>").repeated(levels);
        const QString indented = XmlFormat().indented(xml);
        QVERIFY(indented.size() < 500 * levels);
        QCOMPARE(XmlFormat().compacted(indented), xml);
    }

    // Documents of other people, by their canonical form.
    void meaningStays()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("xmllint")).isEmpty())
            QSKIP("there is no xmllint here");
        const QTemporaryDir folder;
        const auto inFolder = [&](const char* name) {
            return folder.filePath(QLatin1String(name));
        };
        int count = 0;
        for (const char* place : {"/usr/share/X11/xkb/rules", "/usr/share/fontconfig/conf.avail",
                                  "/usr/share/dbus-1", "/usr/share/mime/packages"}) {
            QDirIterator files(QLatin1String(place),
                               {QStringLiteral("*.xml"), QStringLiteral("*.conf")}, QDir::Files);
            for (; files.hasNext(); ++count) {
                // Away from the document types beside it, which would fill in attributes.
                QFile::remove(inFolder("as-it-was"));
                QVERIFY(QFile::copy(files.next(), inFolder("as-it-was")));
                const QByteArray expected = canonical(inFolder("as-it-was"));
                QVERIFY2(!expected.isEmpty(), qPrintable(files.filePath()));
                for (const bool isIndented : {true, false}) {
                    QFile from(files.filePath()), to(inFolder("shaped"));
                    QVERIFY(from.open(QFile::ReadOnly) && to.open(QFile::WriteOnly));
                    const XmlFormat format;
                    QVERIFY(isIndented ? format.indent(from, to) : format.compact(from, to));
                    to.close();
                    QVERIFY2(canonical(inFolder("shaped")) == expected,
                             qPrintable(files.filePath()));
                }
            }
        }
        QVERIFY(count > 0);
    }
};

QTEST_GUILESS_MAIN(TestXmlFormat)

#include "tst_xmlformat.moc"
