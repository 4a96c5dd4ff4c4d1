#include <VLBase/utilities/lrustringlist.h>

#include <QtTest>

namespace {

class List : public LruStringList
{
public:
    using LruStringList::ItAt;
    using LruStringList::LruStringList;

    List(int limit, const QString& letters)
        : LruStringList(limit)
    {
        for (const QChar letter : letters)
            PushBack(QString(letter));
    }
    QString all() const
    {
        QString entries;
        for (int i = 0; i < GetCount(); ++i)
            entries += At(i);
        return entries;
    }
};

} // namespace

class LruStringListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectingTexts()
    {
        List list(3);
        for (const auto& [text, all] :
             {std::pair("a", "a"), std::pair("b", "ba"), std::pair("c", "cba"),
              std::pair("d", "dcb"), std::pair("c", "cdb"), std::pair("C", "Ccd")}) {
            QCOMPARE(list.Select(QLatin1String(text)), QLatin1String(text));
            QCOMPARE(list.all(), QLatin1String(all));
        }
        List twins(3, u"abbx"_qs); // full before the x; one of two equal entries moves
        twins.Select(u"b"_qs);
        QCOMPARE(twins.all(), u"bab"_qs);
        twins.Erase(u"b"_qs);
        QCOMPARE(twins.all(), u"ab"_qs);
    }

    // A negative index is the first entry, one past the end none.
    void indices()
    {
        const std::tuple<int, const char*, const char*, const char*> cases[] = {
            {-7, "a", "abc", "bc"}, {1, "b", "bac", "ac"}, {2, "c", "cab", "ab"},
            {3, "", "abc", "abc"},  {9, "", "abc", "abc"},
        };
        for (const auto& [index, entry, selected, erased] : cases) {
            List list(5, u"abc"_qs);
            QCOMPARE(list.At(index), QLatin1String(entry));
            QCOMPARE(list.At(index).isNull(), index > 2);
            QCOMPARE(list.ItAt(index) - list.ItAt(0), qBound(0, index, 3));
            List rest = list; // a copy is its own
            rest.Erase(index);
            QCOMPARE(rest.all(), QLatin1String(erased));
            list.Erase(QLatin1String(entry) + u'?');
            QCOMPARE(list.Select(index), QLatin1String(entry));
            QCOMPARE(list.all(), QLatin1String(selected));
        }
        QVERIFY(List(2).Select(0).isNull());
        for (const int limit : {1, 0, -5}) {
            List list(limit, u"ab"_qs);
            list.Select(u"c"_qs);
            QCOMPARE(list.all(), u"c"_qs);
            QCOMPARE(list.GetLimit(), 1);
        }
    }
};

QTEST_APPLESS_MAIN(LruStringListTest)
#include "tst_lrustringlist.moc"
