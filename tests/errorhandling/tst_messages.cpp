#include <VLBase/errorhandling/message.h>
#include <VLBase/errorhandling/messagelist.h>

#include <QtTest>

namespace {

std::shared_ptr<Message> numbered(int number)
{
    return std::make_shared<Message>(QString::number(number), QTime(12, 0), 255);
}

QStringList textsOf(const MessageList& list)
{
    QStringList texts;
    for (const auto& message : list.GetList())
        texts += message ? message->GetText() : QStringLiteral("-");
    return texts;
}

} // namespace

class MessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalityAndOrderLookAtDifferentThings();
    void listKeepsTheNewest();
    void listWithoutRoomGrows();
    void maximumCutsAndStretches();
    void cursorHasEightBits();
};

void MessagesTest::equalityAndOrderLookAtDifferentThings()
{
    const QTime noon(12, 0);
    const Message message(QStringLiteral("a"), noon, 1);
    const Message otherText(QStringLiteral("b"), noon, 1);
    const Message otherLevel(QStringLiteral("a"), noon, 2);
    const Message later(QStringLiteral("a"), noon.addMSecs(1), 1);
    const Message timeless(QStringLiteral("z"), QTime(), 1);
    const Message midnight(QStringLiteral("a"), QTime(0, 0), 1);

    for (const Message& same : {otherText, otherLevel}) {
        QVERIFY(message != same && !(message == same));
        QVERIFY(!(message < same) && !(message > same));
        QVERIFY(message <= same && message >= same);
    }
    QVERIFY(message == Message(message) && !(message != Message(message)));
    QVERIFY(message != later && message < later && message <= later);
    QVERIFY(later > message && later >= message && !(later <= message) && !(message >= later));
    QVERIFY(timeless < midnight && timeless <= midnight && midnight > timeless);

    Message assigned;
    QCOMPARE(assigned.GetWarningLevel(), static_cast<unsigned char>(255));
    QVERIFY(assigned.GetText().isEmpty() && assigned.GetTimeStamp().isValid());
    assigned = later;
    QVERIFY(assigned == later);
}

void MessagesTest::listKeepsTheNewest()
{
    MessageList list;
    QCOMPARE(list.GetMaxNumber(), 100U);
    for (int number = 1; number <= 101; ++number)
        QCOMPARE(list.AddMessage(numbered(number)), MsgAdded);

    QCOMPARE(list.GetList().size(), std::size_t(100));
    QCOMPARE(list.GetList().front()->GetText(), QStringLiteral("101"));
    QCOMPARE(list.GetList().back()->GetText(), QStringLiteral("2"));

    list.SetCurrentPosition(7);
    QVERIFY(list.DeleteMessageList());
    QVERIFY(list.GetList().empty());
    QCOMPARE(list.GetCurrentPosition(), static_cast<unsigned char>(7));
    QVERIFY(!list.GetCurrentMessage());
}

void MessagesTest::listWithoutRoomGrows()
{
    MessageList list(0);
    for (int number = 0; number < 300; ++number)
        list.AddMessage(numbered(number));
    QCOMPARE(list.GetList().size(), std::size_t(300));
}

void MessagesTest::maximumCutsAndStretches()
{
    MessageList list(5);
    for (int number = 1; number <= 5; ++number)
        list.AddMessage(numbered(number));

    list.SetMaxNumber(3);
    QCOMPARE(textsOf(list).join(u' '), QStringLiteral("5 4 3"));
    list.SetMaxNumber(8);
    QCOMPARE(textsOf(list).join(u' '), QStringLiteral("5 4 3 - - - - -"));
    list.AddMessage(numbered(6));
    QCOMPARE(textsOf(list).join(u' '), QStringLiteral("6 5 4 3 - - - -"));
}

void MessagesTest::cursorHasEightBits()
{
    MessageList list(300);
    for (int number = 0; number < 300; ++number)
        list.AddMessage(numbered(number));
    list.SetCurrentPosition(255);
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("44"));
    list.SetCurrentPosition(static_cast<unsigned char>(list.GetCurrentPosition() + 1));
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("299"));
}

QTEST_GUILESS_MAIN(MessagesTest)
#include "tst_messages.moc"
