#include <VLBase/utilities/lrustringlist.h>

#include <QtTest>

namespace {

class List : public LruStringList
{
public:
    using LruStringList::ItAt;
    using LruStringList::LruStringList;

    QString all() const
    {
        QString entries;
        for (int i = 0; i < GetCount(); ++i)
            entries += At(i);
        return entries;
    }
};

List filled(int limit, const QString& letters)
{
    List list(limit);
    for (const QChar letter : letters)
        list.Select(QString(letter));
    return list;
}

} // namespace

class LruStringListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectingAText();
    void selectingAnIndex();
    void pushingBack();
    void erasing();
    void smallLimits();
    void copiesAreTheirOwn();
};

void LruStringListTest::selectingAText()
{
    List list = filled(3, u"abcd"_qs);
    QCOMPARE(list.all(), u"dcb"_qs);
    QCOMPARE(list.Select(u"c"_qs), u"c"_qs);
    QCOMPARE(list.all(), u"cdb"_qs);
    QCOMPARE(list.Select(u"C"_qs), u"C"_qs);
    QCOMPARE(list.all(), u"Ccd"_qs);
    QCOMPARE(list.GetLimit(), 3);
}

void LruStringListTest::selectingAnIndex()
{
    List list = filled(5, u"abc"_qs);
    QVERIFY(list.Select(3).isNull());
    QCOMPARE(list.Select(-1), u"c"_qs);
    QCOMPARE(list.all(), u"cba"_qs);
    QCOMPARE(list.Select(2), u"a"_qs);
    QCOMPARE(list.all(), u"acb"_qs);
    QCOMPARE(list.At(-7), u"a"_qs);
    QVERIFY(list.At(3).isNull());
    QCOMPARE(*list.ItAt(1), u"c"_qs);
    QCOMPARE(list.ItAt(3) - list.ItAt(0), 3);
    QVERIFY(List(2).Select(0).isNull());
}

void LruStringListTest::pushingBack()
{
    List list = filled(3, u"a"_qs);
    list.PushBack(u"b"_qs);
    list.PushBack(u"b"_qs);
    list.PushBack(u"x"_qs);
    QCOMPARE(list.all(), u"abb"_qs);
    list.Select(u"b"_qs);
    QCOMPARE(list.all(), u"bab"_qs);
}

void LruStringListTest::erasing()
{
    List list = filled(5, u"abc"_qs);
    list.PushBack(u"c"_qs);
    list.Erase(u"c"_qs);
    QCOMPARE(list.all(), u"bac"_qs);
    list.Erase(u"x"_qs);
    list.Erase(3);
    QCOMPARE(list.all(), u"bac"_qs);
    list.Erase(1);
    list.Erase(-1);
    QCOMPARE(list.all(), u"c"_qs);
}

void LruStringListTest::smallLimits()
{
    for (int limit : {1, 0, -5}) {
        List list = filled(limit, u"ab"_qs);
        list.PushBack(u"c"_qs);
        QCOMPARE(list.all(), u"b"_qs);
        QCOMPARE(list.GetLimit(), 1);
    }
}

void LruStringListTest::copiesAreTheirOwn()
{
    List list = filled(3, u"ab"_qs);
    List copy = list;
    copy.Select(u"c"_qs);
    QCOMPARE(list.all(), u"ba"_qs);
    list = copy;
    QCOMPARE(list.all(), u"cba"_qs);
}

QTEST_APPLESS_MAIN(LruStringListTest)
#include "tst_lrustringlist.moc"
