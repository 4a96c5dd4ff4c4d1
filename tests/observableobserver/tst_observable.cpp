#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/observableobserver/observable.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

constexpr auto code = static_cast<TChangeCode>(7);

class Subject : public Observable
{
public:
    using Observable::NotifyObservers;
};

class Observer : public IObserver
{
public:
    Observer(QString name, QString& log, std::function<void()> answer = {})
        : m_name(std::move(name))
        , m_log(log)
        , m_answer(std::move(answer))
    {
    }
    void Update(Observable* source, TChangeCode change) override
    {
        m_log += m_name;
        m_source = source;
        m_change = change;
        // The answer may end this object.
        if (const auto answer = m_answer)
            answer();
    }
    void setAnswer(std::function<void()> answer) { m_answer = std::move(answer); }

    Observable* m_source = nullptr;
    TChangeCode m_change{};

private:
    QString m_name;
    QString& m_log;
    std::function<void()> m_answer;
};

} // namespace

class ObservableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.clear(); }
    void tellsInOrderAndNotTheSource();
    void observersAreUnique();
    void firstObserverIsToldFirst();
    void onlyOneIsFirst();
    void firstObserverLetsTheSourceHear();
    void changesDuringAPass();
    void observersMayEndDuringAPass();
    void endedSourceIsNotTold();
    void exceptionEndsThePass();
    void copiesShareObserversOnly();

private:
    QString m_log;
};

void ObservableTest::tellsInOrderAndNotTheSource()
{
    Subject subject;
    Observer a(u"a"_qs, m_log), b(u"b"_qs, m_log), c(u"c"_qs, m_log);
    for (Observer* observer : {&a, &b, &c})
        QVERIFY(subject.AddObserver(observer));
    subject.NotifyObservers(code, &b);
    QCOMPARE(m_log, u"ac"_qs);
    QCOMPARE(a.m_source, static_cast<Observable*>(&subject));
    QCOMPARE(a.m_change, code);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"acabc"_qs);
}

void ObservableTest::observersAreUnique()
{
    Subject subject;
    Observer a(u"a"_qs, m_log), b(u"b"_qs, m_log), stranger(u"x"_qs, m_log);
    QVERIFY(!subject.AddObserver(nullptr));
    QVERIFY(subject.AddObserver(&a));
    QVERIFY(subject.AddObserver(&b));
    QVERIFY(!subject.AddObserver(&a));
    subject.DeleteObserver(&stranger);
    subject.DeleteObserver(nullptr);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ab"_qs);
    subject.DeleteObserver(&a);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"abb"_qs);
    subject.MakeFirstObserver(&a);
    subject.DeleteObservers();
    QCOMPARE(subject.GetFirstObserver(), nullptr);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"abb"_qs);
}

void ObservableTest::firstObserverIsToldFirst()
{
    Subject subject;
    Observer a(u"a"_qs, m_log), b(u"b"_qs, m_log);
    subject.AddObserver(&a);
    subject.AddObserver(&b);
    subject.MakeFirstObserver(&b);
    QCOMPARE(subject.GetFirstObserver(), &b);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ba"_qs);
    // Added as well, it is told in both places; removing it ends the first one only.
    QVERIFY(subject.AddObserver(&b));
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"babab"_qs);
    subject.DeleteObserver(&b);
    QCOMPARE(subject.GetFirstObserver(), nullptr);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"bababab"_qs);
}

void ObservableTest::onlyOneIsFirst()
{
    Subject subject;
    Observer a(u"a"_qs, m_log), b(u"b"_qs, m_log);
    subject.MakeFirstObserver(nullptr);
    subject.MakeFirstObserver(&a);
    subject.MakeFirstObserver(&a);
    try {
        subject.MakeFirstObserver(&b);
        QFAIL("a second first observer");
    } catch (const VLException& exception) {
        QCOMPARE(exception.GetErrorReason(),
                 u"MakeFirstObserver called while there was one set before!"_qs);
        QCOMPARE(exception.ClassName(), u"Observable"_qs);
        QCOMPARE(exception.GetMethodName(), u"MakeFirstObserver"_qs);
        QCOMPARE(exception.GetFileName(), u"observableobserver/observable"_qs);
        QCOMPARE(exception.GetLineNumber(), 142U);
    }
    QCOMPARE(subject.GetFirstObserver(), &a);
    subject.MakeFirstObserver(nullptr);
    subject.MakeFirstObserver(&b);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ba"_qs);
}

void ObservableTest::firstObserverLetsTheSourceHear()
{
    Subject subject;
    Observer first(u"F"_qs, m_log), source(u"s"_qs, m_log), other(u"o"_qs, m_log);
    subject.MakeFirstObserver(&first);
    subject.AddObserver(&source);
    subject.AddObserver(&other);
    first.setAnswer([&] { subject.NotifyObservers(code, &first); });
    subject.NotifyObservers(code, &source);
    QCOMPARE(m_log, u"Fso"_qs);

    // Twice asked for, once heard.
    m_log.clear();
    first.setAnswer([&] {
        subject.NotifyObservers(code, &first);
        subject.NotifyObservers(code, &first);
    });
    subject.NotifyObservers(code, &source);
    QCOMPARE(m_log, u"Fso"_qs);

    // Nobody to be told, and a pass of the first observer's own.
    m_log.clear();
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"Fso"_qs);
    m_log.clear();
    subject.NotifyObservers(code, &first);
    QCOMPARE(m_log, u"so"_qs);
}

void ObservableTest::changesDuringAPass()
{
    Subject subject;
    Observer a(u"a"_qs, m_log), b(u"b"_qs, m_log), c(u"c"_qs, m_log), late(u"l"_qs, m_log);
    for (Observer* observer : {&a, &b, &c})
        subject.AddObserver(observer);
    a.setAnswer([&] {
        subject.AddObserver(&late);
        subject.DeleteObserver(&b);
    });
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ac"_qs);
    m_log.clear();
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"acl"_qs);
    m_log.clear();
    a.setAnswer([&] { subject.DeleteObservers(); });
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"a"_qs);
}

void ObservableTest::observersMayEndDuringAPass()
{
    Subject subject;
    auto a = std::make_unique<Observer>(u"a"_qs, m_log);
    auto b = std::make_unique<Observer>(u"b"_qs, m_log);
    auto c = std::make_unique<Observer>(u"c"_qs, m_log);
    const auto end = [&subject](std::unique_ptr<Observer>& observer) {
        subject.DeleteObserver(observer.get());
        observer.reset();
    };
    for (const auto* observer : {&a, &b, &c})
        subject.AddObserver(observer->get());
    b->setAnswer([&] {
        end(a);
        end(c);
        end(b);
    });
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ab"_qs);
    subject.NotifyObservers(code, nullptr);
    QCOMPARE(m_log, u"ab"_qs);
}

void ObservableTest::endedSourceIsNotTold()
{
    Subject subject;
    Observer first(u"F"_qs, m_log);
    auto source = std::make_unique<Observer>(u"s"_qs, m_log);
    subject.MakeFirstObserver(&first);
    subject.AddObserver(source.get());
    first.setAnswer([&] {
        subject.DeleteObserver(source.get());
        source.reset();
        subject.NotifyObservers(code, &first);
    });
    subject.NotifyObservers(code, source.get());
    QCOMPARE(m_log, u"F"_qs);
}

void ObservableTest::exceptionEndsThePass()
{
    Subject subject;
    Observer first(u"F"_qs, m_log), other(u"o"_qs, m_log);
    subject.MakeFirstObserver(&first);
    subject.AddObserver(&other);
    first.setAnswer([] { throw std::runtime_error("no"); });
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, subject.NotifyObservers(code, &other));
    // A pass of its own, not the wish that the other be told after all.
    subject.NotifyObservers(code, &first);
    QCOMPARE(m_log, u"Fo"_qs);
}

void ObservableTest::copiesShareObserversOnly()
{
    Subject subject;
    Observer first(u"F"_qs, m_log), a(u"a"_qs, m_log);
    subject.MakeFirstObserver(&first);
    subject.AddObserver(&a);
    std::unique_ptr<Subject> copy;
    first.setAnswer([&] { copy = std::make_unique<Subject>(subject); });
    subject.NotifyObservers(code, &a);
    first.setAnswer({});
    QVERIFY(*copy == subject);
    m_log.clear();
    // The copy was made during a pass, but is in none.
    copy->NotifyObservers(code, &first);
    QCOMPARE(m_log, u"a"_qs);
    copy->DeleteObserver(&first);
    QVERIFY(*copy != subject);
    *copy = subject;
    QVERIFY(*copy == subject);
    copy->DeleteObserver(&a);
    QVERIFY(*copy != subject);
}

QTEST_APPLESS_MAIN(ObservableTest)
#include "tst_observable.moc"
