#include "observable.h"

#include <VLBase/errorhandling/vlexception.h>

#include <QScopeGuard>

#include <algorithm>
#include <typeinfo>

namespace {

constexpr unsigned int makeFirstLine = 142; // what logs have always named for this failure

} // namespace

IObserver::~IObserver() = default;

/// The length of a notification, which an exception of an observer ends too.
class Observable::Pass
{
public:
    explicit Pass(Observable& observable)
        : m_Observable(observable)
    {
        m_Observable.m_bNotifying = true;
    }
    ~Pass()
    {
        m_Observable.m_ExcludedObserver = nullptr;
        m_Observable.m_bNotifying = false;
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

private:
    Observable& m_Observable;
};

Observable::Observable(const Observable& other)
    : m_Observers(other.m_Observers)
    , m_FirstObserver(other.m_FirstObserver)
{
}

Observable& Observable::operator=(const Observable& other)
{
    if (this == &other)
        return *this;
    m_Observers = other.m_Observers;
    m_FirstObserver = other.m_FirstObserver;
    m_ObserverTypeNames.clear();
    m_ExcludedObserver = nullptr;
    m_bNotifying = false;
    ++m_nRevision;
    return *this;
}

Observable::~Observable() = default;

bool Observable::operator==(const Observable& other) const
{
    return m_Observers == other.m_Observers && m_FirstObserver == other.m_FirstObserver;
}

bool Observable::AddObserver(IObserver* observer)
{
    if (!observer || isObserver(observer))
        return false;
    m_ObserverTypeNames[observer] = typeid(*observer).name();
    m_Observers.push_back(observer);
    ++m_nRevision;
    return true;
}

void Observable::DeleteObserver(IObserver* observer)
{
    // Whoever is removed may be about to end, and is told nothing any more.
    if (observer == m_ExcludedObserver)
        m_ExcludedObserver = nullptr;
    if (observer == m_FirstObserver) {
        m_FirstObserver = nullptr;
        return;
    }
    const auto position = std::find(m_Observers.begin(), m_Observers.end(), observer);
    if (position == m_Observers.end())
        return;
    m_Observers.erase(position);
    m_ObserverTypeNames.erase(observer);
    ++m_nRevision;
}

void Observable::DeleteObservers()
{
    m_FirstObserver = nullptr;
    m_ExcludedObserver = nullptr;
    m_Observers.clear();
    m_ObserverTypeNames.clear();
    ++m_nRevision;
}

void Observable::MakeFirstObserver(IObserver* observer)
{
    if (!observer && m_FirstObserver) {
        AddObserver(m_FirstObserver);
        m_FirstObserver = nullptr;
        return;
    }
    if (observer == m_FirstObserver)
        return;
    if (m_FirstObserver) {
        throw VLException(std::string("MakeFirstObserver called while there was one set before!"),
                          "observableobserver/observable", "Observable", "MakeFirstObserver",
                          makeFirstLine, 0);
    }
    DeleteObserver(observer);
    m_FirstObserver = observer;
}

IObserver* Observable::GetFirstObserver() const
{
    return m_FirstObserver;
}

void Observable::NotifyObservers(TChangeCode code, IObserver* source)
{
    if (source && source == m_FirstObserver && m_bNotifying) {
        // The first observer wants whoever started the pass to be told after all.
        if (m_ExcludedObserver && m_ExcludedObserver != source) {
            const auto told = qScopeGuard([this] { m_ExcludedObserver = nullptr; });
            m_ExcludedObserver->Update(this, code);
        }
        return;
    }
    const Pass pass(*this);
    const std::vector<IObserver*> observers = m_Observers;
    const auto revision = m_nRevision;
    tellFirst(code, source);
    for (IObserver* observer : observers) {
        // Searched for only when something was added or removed since the copy was made.
        const bool stillThere = m_nRevision == revision || isObserver(observer);
        if (stillThere && observer != source)
            observer->Update(this, code);
    }
}

void Observable::tellFirst(TChangeCode code, IObserver* source)
{
    if (!m_FirstObserver || m_FirstObserver == source)
        return;
    m_ExcludedObserver = source;
    m_FirstObserver->Update(this, code);
    m_ExcludedObserver = nullptr;
}

bool Observable::isObserver(const IObserver* observer) const
{
    return std::find(m_Observers.begin(), m_Observers.end(), observer) != m_Observers.end();
}
