#pragma once

#include <VLBase/observableobserver/iobserver.h>
#include <VLBase/vlbase_export.h>

#include <map>
#include <string>
#include <vector>

/// Base of objects that tell observers about their changes.
///
/// The ordinary observers are told in the order of their registration. One observer may be the
/// first: it is told before all others. An observer that causes a change and names itself as its
/// source is not told of it, unless the first observer decides so: by notifying with itself as
/// source while it handles the change. A source that is removed before that is not told, whoever
/// decides so: it may have ended.
///
/// Observers are not owned: one that ends must have been removed. They may add and remove
/// observers while they are told, themselves included; who is added during a pass is told from
/// the next one on. One that throws ends the pass. Used from one thread.
class VLBASE_EXPORT Observable
{
public:
    Observable() = default;
    /// Copies the observers, but not the state of a running notification.
    Observable(const Observable& other);
    Observable& operator=(const Observable& other);
    virtual ~Observable();

    /// Whether both have the same observers in the same order, and the same first one.
    bool operator==(const Observable& other) const;
    bool operator!=(const Observable& other) const { return !(*this == other); }

    /// Appends an ordinary observer.
    /// \return false for a null pointer or an ordinary observer that is there already.
    virtual bool AddObserver(IObserver* observer);

    /// Removes the first observer or else an ordinary one. The first observer, if it is an
    /// ordinary one too, stays that.
    virtual void DeleteObserver(IObserver* observer);

    /// Removes all observers, the first one included.
    virtual void DeleteObservers();

    /// Makes an observer the first one, and no ordinary one any more. With a null pointer the
    /// first observer becomes an ordinary one.
    /// \throw VLException when another first observer is set.
    virtual void MakeFirstObserver(IObserver* observer);

    IObserver* GetFirstObserver() const;

protected:
    /// Tells all observers but the source.
    /// \param source the observer that causes the change, or null.
    virtual void NotifyObservers(TChangeCode code, IObserver* source);

private:
    class Pass;

    bool isObserver(const IObserver* observer) const;
    void tellFirst(TChangeCode code, IObserver* source);

    std::vector<IObserver*> m_Observers;
    IObserver* m_FirstObserver = nullptr;
    std::map<IObserver*, std::string> m_ObserverTypeNames; // for whoever looks with a debugger
    IObserver* m_ExcludedObserver = nullptr;
    bool m_bNotifying = false;
    // Counts what happens to m_Observers, so that a pass need not search it for nothing.
    unsigned long long m_nRevision = 0;
};
