#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/observableobserver/observable.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

constexpr auto code = static_cast<TChangeCode>(7);

QString told; // the names of those told, in order

class Observer : public IObserver
{
public:
    explicit Observer(char name)
        : m_name(QLatin1Char(name))
    {
    }
    void Update(Observable* source, TChangeCode change) override
    {
        told += m_name;
        m_known = source != nullptr && change == code;
        // The answer may end this object.
        if (const auto answer = m_answer)
            answer();
    }

    std::function<void()> m_answer;
    bool m_known = false;

private:
    QChar m_name;
};

class Subject : public Observable
{
public:
    using Observable::NotifyObservers;

    /// Who is told of a change.
    QString pass(IObserver* source = nullptr)
    {
        told.clear();
        NotifyObservers(code, source);
        return told;
    }
};

} // namespace

class ObservableTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Observer> a, b, c;
    std::unique_ptr<Subject> subject;

    void end(std::unique_ptr<Observer>& observer)
    {
        subject->DeleteObserver(observer.get());
        observer.reset();
    }

private Q_SLOTS:
    void init()
    {
        a = std::make_unique<Observer>('a');
        b = std::make_unique<Observer>('b');
        c = std::make_unique<Observer>('c');
        subject = std::make_unique<Subject>();
        for (const auto* observer : {&a, &b, &c})
            QVERIFY(subject->AddObserver(observer->get()));
    }

    void everyoneOnceAndNotTheSource()
    {
        QVERIFY(!subject->AddObserver(nullptr) && !subject->AddObserver(a.get()));
        QCOMPARE(subject->pass(), u"abc"_qs);
        QVERIFY(c->m_known);
        QCOMPARE(subject->pass(b.get()), u"ac"_qs);
        Observer stranger('x');
        subject->DeleteObserver(&stranger);
        subject->DeleteObserver(a.get());
        QCOMPARE(subject->pass(), u"bc"_qs);
        subject->MakeFirstObserver(b.get());
        subject->DeleteObservers();
        QCOMPARE(subject->GetFirstObserver(), nullptr);
        QCOMPARE(subject->pass(), QString());
    }

    void theFirstObserver()
    {
        subject->MakeFirstObserver(nullptr);
        subject->MakeFirstObserver(b.get());
        subject->MakeFirstObserver(b.get());
        QCOMPARE(subject->pass(), u"bac"_qs);
        // Added as well, it is told in both places; removing it ends the first one only.
        QVERIFY(subject->AddObserver(b.get()));
        QCOMPARE(subject->pass(), u"bacb"_qs);
        subject->DeleteObserver(b.get());
        QCOMPARE(subject->pass(), u"acb"_qs);

        subject->MakeFirstObserver(c.get());
        try {
            subject->MakeFirstObserver(a.get());
            QFAIL("a second first observer");
        } catch (const VLException& e) {
            QCOMPARE(e.GetErrorReason(),
                     u"MakeFirstObserver called while there was one set before!"_qs);
            QCOMPARE(e.ClassName() + u"::"_qs + e.GetMethodName(),
                     u"Observable::MakeFirstObserver"_qs);
            QCOMPARE(e.GetFileName(), u"observableobserver/observable"_qs);
            QCOMPARE(e.GetLineNumber(), 142U);
        }
        QCOMPARE(subject->pass(), u"cab"_qs);
        subject->MakeFirstObserver(nullptr);
        subject->MakeFirstObserver(b.get());
        QCOMPARE(subject->pass(), u"bac"_qs);
    }

    void theFirstLetsTheSourceHear()
    {
        subject->MakeFirstObserver(a.get());
        for (const int times : {1, 2}) { // twice asked for, once heard
            a->m_answer = [this, times] {
                for (int i = 0; i < times; ++i)
                    subject->NotifyObservers(code, a.get());
            };
            QCOMPARE(subject->pass(b.get()), u"abc"_qs);
            QCOMPARE(subject->pass(), u"abc"_qs);
            QCOMPARE(subject->pass(a.get()), u"bc"_qs);
        }
        // A source that has ended meanwhile is not told.
        a->m_answer = [this] {
            end(b);
            subject->NotifyObservers(code, a.get());
        };
        QCOMPARE(subject->pass(b.get()), u"ac"_qs);
        // After an exception it is a pass of its own again.
        a->m_answer = [] { throw std::runtime_error("no"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, subject->pass(c.get()));
        QCOMPARE(subject->pass(a.get()), u"c"_qs);
    }

    void changesDuringAPass()
    {
        Observer late('l');
        a->m_answer = [&] {
            subject->AddObserver(&late);
            subject->DeleteObserver(b.get());
        };
        QCOMPARE(subject->pass(), u"ac"_qs);
        QCOMPARE(subject->pass(), u"acl"_qs);
        c->m_answer = [&] { // the objects themselves end, the one that is told last
            end(a);
            subject->DeleteObserver(&late);
            end(c);
        };
        QCOMPARE(subject->pass(), u"ac"_qs);
        QCOMPARE(subject->pass(), QString());
    }

    void copiesShareObserversOnly()
    {
        subject->MakeFirstObserver(a.get());
        Subject copy;
        std::unique_ptr<Subject> made; // during a pass, but itself in none
        a->m_answer = [&] { made = std::make_unique<Subject>(*subject); };
        subject->pass(b.get());
        a->m_answer = {};
        QVERIFY(*made == *subject && copy != *subject);
        QCOMPARE(made->pass(a.get()), u"bc"_qs);
        for (const auto* gone : {&a, &b}) {
            copy = *subject;
            QVERIFY(copy == *subject);
            copy.DeleteObserver(gone->get());
            QVERIFY(copy != *subject);
        }
        QCOMPARE(subject->pass(), u"abc"_qs);
    }
};

QTEST_APPLESS_MAIN(ObservableTest)
#include "tst_observable.moc"
