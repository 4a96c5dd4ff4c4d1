#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/observableobserver/observable.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

constexpr auto code = static_cast<TChangeCode>(7);

class Observer : public IObserver
{
public:
    Observer(char name, QString& told)
        : m_name(QLatin1Char(name))
        , m_told(told)
    {
    }
    void Update(Observable* source, TChangeCode change) override
    {
        m_told += source && change == code ? m_name : QChar(u'?');
        // The answer may end this object.
        if (const auto answer = m_answer)
            answer();
    }

    std::function<void()> m_answer;

private:
    QChar m_name;
    QString& m_told;
};

class Subject : public Observable
{
public:
    using Observable::NotifyObservers;
};

} // namespace

class ObservableTest : public QObject
{
    Q_OBJECT

private:
    QString told; // the names of those told, in order
    std::unique_ptr<Observer> a, b, c;
    std::unique_ptr<Subject> subject;

    void end(std::unique_ptr<Observer>& observer)
    {
        subject->DeleteObserver(observer.get());
        observer.reset();
    }

    /// Who is told of a change.
    QString pass(Subject& of, IObserver* source = nullptr)
    {
        told.clear();
        of.NotifyObservers(code, source);
        return told;
    }
    QString pass(const std::unique_ptr<Observer>& source) { return pass(*subject, source.get()); }
    QString pass() { return pass(*subject); }

private Q_SLOTS:
    void init()
    {
        subject = std::make_unique<Subject>();
        char name = 'a';
        for (auto* observer : {&a, &b, &c}) {
            *observer = std::make_unique<Observer>(name++, told);
            QVERIFY(subject->AddObserver(observer->get()));
        }
    }

    void everyoneOnceAndNotTheSource()
    {
        QVERIFY(!subject->AddObserver(nullptr) && !subject->AddObserver(a.get()));
        QCOMPARE(pass(), u"abc"_qs);
        QCOMPARE(pass(b), u"ac"_qs);
        Observer stranger('x', told);
        subject->DeleteObserver(&stranger);
        subject->DeleteObserver(a.get());
        QCOMPARE(pass(), u"bc"_qs);
        subject->MakeFirstObserver(b.get());
        subject->DeleteObservers();
        QVERIFY(!subject->GetFirstObserver() && pass().isEmpty());
    }

    void theFirstObserver()
    {
        for (IObserver* first : {static_cast<Observer*>(nullptr), b.get(), b.get()})
            subject->MakeFirstObserver(first);
        QCOMPARE(pass(), u"bac"_qs);
        // Added as well, it is told in both places; removing it ends the first one only.
        QVERIFY(subject->AddObserver(b.get()));
        QCOMPARE(pass(), u"bacb"_qs);
        subject->DeleteObserver(b.get());
        QCOMPARE(pass(), u"acb"_qs);

        subject->MakeFirstObserver(c.get());
        try {
            subject->MakeFirstObserver(a.get());
            QFAIL("a second first observer");
        } catch (const VLException& e) {
            QVERIFY(e.GetExceptionWideText(ExceptionTextRecord, 1)
                        .startsWith(u"!@MakeFirstObserver called while there was one set before!@"
                                    "observableobserver/observable@142@Observable@"
                                    "MakeFirstObserver@"_qs));
        }
        QCOMPARE(pass(), u"cab"_qs);
        subject->MakeFirstObserver(nullptr);
        subject->MakeFirstObserver(b.get());
        QCOMPARE(pass(), u"bac"_qs);
    }

    void theFirstLetsTheSourceHear()
    {
        subject->MakeFirstObserver(a.get());
        a->m_answer = [this] { // twice asked for, once heard
            subject->NotifyObservers(code, a.get());
            subject->NotifyObservers(code, a.get());
        };
        QCOMPARE(pass(b), u"abc"_qs);
        QCOMPARE(pass(), u"abc"_qs);
        QCOMPARE(pass(a), u"bc"_qs);
        // After an exception it is a pass of its own again.
        a->m_answer = [] { throw std::runtime_error("no"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, pass(c));
        QCOMPARE(pass(a), u"bc"_qs);
        // The source has heard of the change though it threw.
        b->m_answer = [] { throw std::runtime_error("no"); };
        a->m_answer = [this] {
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, subject->NotifyObservers(code, a.get()));
            subject->NotifyObservers(code, a.get());
        };
        QCOMPARE(pass(b), u"abc"_qs);
        // A source that has ended meanwhile is not told.
        a->m_answer = [this] {
            end(b);
            subject->NotifyObservers(code, a.get());
        };
        QCOMPARE(pass(b), u"ac"_qs);
    }

    void changesDuringAPass()
    {
        Observer late('l', told);
        a->m_answer = [&] {
            subject->AddObserver(&late);
            subject->DeleteObserver(b.get());
        };
        QCOMPARE(pass(), u"ac"_qs);
        QCOMPARE(pass(), u"acl"_qs);
        c->m_answer = [&] { // the objects themselves end, the one that is told last
            end(a);
            subject->DeleteObserver(&late);
            end(c);
        };
        QCOMPARE(pass(), u"ac"_qs);
        QCOMPARE(pass(), QString());
    }

    void copiesShareObserversOnly()
    {
        subject->MakeFirstObserver(a.get());
        std::unique_ptr<Subject> made; // during a pass, but itself in none
        a->m_answer = [&] { made = std::make_unique<Subject>(*subject); };
        pass(b);
        a->m_answer = {};
        QCOMPARE(pass(*made, a.get()), u"bc"_qs);
        for (const auto* gone : {&a, &b}) {
            Subject copy;
            QVERIFY(copy != *subject);
            copy = *subject;
            QVERIFY(copy == *subject);
            copy.DeleteObserver(gone->get());
            QVERIFY(copy != *subject);
        }
        QCOMPARE(pass(), u"abc"_qs);
    }
};

QTEST_APPLESS_MAIN(ObservableTest)
#include "tst_observable.moc"
