#include <VLBase/errorhandling/vlexception.h>

#include <QtTest>

namespace {

VLException sample()
{
    VLException exception(QStringLiteral("re@son"), QStringLiteral("a/b"), QStringLiteral("C"),
                          QStringLiteral("m"), 42, 7);
    exception.SetErrorTime(QTime(9, 5, 7, 999));
    return exception;
}

} // namespace

class VLExceptionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rendersEveryFormatAndLevel_data();
    void rendersEveryFormatAndLevel();
    void beginsWithDefaults();
    void readsEightBitTextAsUtf8();
    void comparesEveryField();
    void neverTellsItsTextThroughWhat();
    void argumentListIsInert();
};

void VLExceptionTest::rendersEveryFormatAndLevel_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("text");

    const auto full = [](const char* header) {
        return QLatin1String(header) +
               QStringLiteral(
                   ":\t09:05:07:\tre@son in file a/b in class C in method m in line 42\n");
    };
    const QString record = QStringLiteral("@re@son@a/b@42@C@m@09:05:07");

    QTest::newRow("reason") << 1 << 1 << QStringLiteral("re@son");
    QTest::newRow("record, error") << 2 << 1 << u'!' + record;
    QTest::newRow("record, information") << 2 << 255 << record;
    QTest::newRow("record, level 0") << 2 << 0 << u'0' + record;
    QTest::newRow("record, level 254") << 2 << 254 << QStringLiteral("254") + record;
    QTest::newRow("full, error") << 3 << 1 << full("Error:");
    QTest::newRow("full, information") << 3 << 255 << full("Info:");
    QTest::newRow("full, level 0") << 3 << 0 << full("Warning (Level 0)");
    QTest::newRow("full, level 3") << 3 << 3 << full("Warning (Level 3)");
    for (const int format : {0, 4, -1})
        QTest::addRow("format %d", format)
            << format << 1 << QStringLiteral("Unknown FormatMode Selected");
}

void VLExceptionTest::rendersEveryFormatAndLevel()
{
    QFETCH(int, format);
    QFETCH(int, level);
    QFETCH(QString, text);
    const auto formatMode = static_cast<VLExceptionTextFormat>(format);
    const auto messageLevel = static_cast<unsigned char>(level);

    QCOMPARE(sample().GetExceptionWideText(formatMode, messageLevel), text);
    QCOMPARE(sample().GetExceptionAsciiText(formatMode, messageLevel), text.toStdString());
}

void VLExceptionTest::beginsWithDefaults()
{
    const QTime before = QTime::currentTime();
    VLException exception;
    if (before > QTime::currentTime())
        QSKIP("midnight");
    QVERIFY(before <= exception.GetErrorTime());
    QVERIFY(exception.GetErrorTime() <= QTime::currentTime());

    exception.SetErrorTime(QTime(0, 0));
    QCOMPARE(exception.GetExceptionWideText(ExceptionTextFull, 1),
             QStringLiteral("Error::\t00:00:00:\tNO REASON in file NO FILENAME in class "
                            "NO CLASSNAME in method NO METHODNAME in line 0\n"));
    QCOMPARE(exception.GetErrorId(), 0U);
}

void VLExceptionTest::readsEightBitTextAsUtf8()
{
    const VLException exception(std::string("gr\xC3\xB6\xC3\x9F"
                                            "er"),
                                "\xE2\x82\xAC", nullptr, "m", 0xFFFFFFFFU, VLException::NoErrorId);
    QCOMPARE(exception.GetErrorReason(), QStringLiteral(u"gr\u00F6\u00DFer"));
    QCOMPARE(exception.GetFileName(), QStringLiteral(u"\u20AC"));
    QVERIFY(exception.ClassName().isEmpty());
    QCOMPARE(exception.GetMethodName(), QStringLiteral("m"));
    QCOMPARE(exception.GetLineNumber(), 4294967295U);
    QCOMPARE(exception.GetErrorId(), 4294967295U);
    QCOMPARE(exception.GetExceptionAsciiText(ExceptionTextReason, 1),
             std::string("gr\xC3\xB6\xC3\x9F"
                         "er"));
}

void VLExceptionTest::comparesEveryField()
{
    const VLException original = sample();
    QVERIFY(original == VLException(original));

    using Change = void (*)(VLException&);
    const Change changes[] = {
        [](VLException& e) { e.SetErrorTime(QTime(9, 5, 7, 998)); },
        [](VLException& e) { e.SetErrorReason(QString()); },
        [](VLException& e) { e.SetFileName(QString()); },
        [](VLException& e) { e.SetClassName(QString()); },
        [](VLException& e) { e.SetMethodName(QString()); },
        [](VLException& e) { e.SetLineNumber(43); },
        [](VLException& e) { e.SetErrorId(8); },
    };
    for (const Change change : changes) {
        VLException changed = original;
        change(changed);
        QVERIFY(changed != original);
        QVERIFY(!(changed == original));

        VLException target;
        target = changed;
        QVERIFY(target == changed);
    }
}

void VLExceptionTest::neverTellsItsTextThroughWhat()
{
    try {
        throw sample();
    } catch (const std::exception& caught) {
        QCOMPARE(QLatin1String(caught.what()), QLatin1String("Unknown exception"));
    }
    QCOMPARE(QLatin1String(VLArgumentListException().what()), QLatin1String("Unknown exception"));
}

void VLExceptionTest::argumentListIsInert()
{
    VLArgumentListException exception(QStringLiteral("r"), QStringLiteral("f"), QStringLiteral("c"),
                                      QStringLiteral("m"), 1, {QStringLiteral("argument")}, 2UL,
                                      QStringLiteral("text"));
    QCOMPARE(exception.GetErrorReason(), QStringLiteral("NO REASON"));
    QCOMPARE(exception.GetLineNumber(), 0U);
    QCOMPARE(exception.GetErrorId(), 0U);
    QVERIFY(!(exception == exception));
    QVERIFY(!(exception != exception));

    exception.SetErrorReason(QStringLiteral("changed"));
    const VLArgumentListException copy(exception);
    QCOMPARE(copy.GetErrorReason(), QStringLiteral("NO REASON"));

    VLArgumentListException assigned;
    assigned = exception;
    QCOMPARE(assigned.GetErrorReason(), QStringLiteral("changed"));

    const VLException& base = assigned;
    for (const auto format : {ExceptionTextReason, ExceptionTextRecord, ExceptionTextFull}) {
        QCOMPARE(base.GetExceptionWideText(format, 1), QString());
        QCOMPARE(base.GetExceptionAsciiText(format, 1), std::string());
    }
}

QTEST_GUILESS_MAIN(VLExceptionTest)
#include "tst_vlexception.moc"
