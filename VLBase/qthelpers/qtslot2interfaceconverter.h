#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <map>
#include <memory>

/// Hears signals without being a `QObject`, by way of a `QTSlot2InterfaceConverter`.
///
/// A copy hears nothing by itself: converters stay with the listener that they were given.
class VLBASE_EXPORT IQTSlot2InterfaceListener
{
public:
    IQTSlot2InterfaceListener();
    IQTSlot2InterfaceListener(const IQTSlot2InterfaceListener&);
    IQTSlot2InterfaceListener& operator=(const IQTSlot2InterfaceListener&);

    /// Lets go of its converters, which go on without a listener.
    virtual ~IQTSlot2InterfaceListener();

    /// A signal came that is connected under this number.
    /// \param arguments in their order; one whose type has no meta type is an invalid one here
    virtual void OnSlot(int id, const QVariantList& arguments) = 0;

private:
    friend class QTSlot2InterfaceConverter;
    std::shared_ptr<IQTSlot2InterfaceListener*> m_self; ///< null inside once the listener is gone
};

/// Connects any number of signals, each under a number of the caller's choice, to one listener.
///
///     class Counter : public IQTSlot2InterfaceListener
///     {
///         void OnSlot(int id, const QVariantList& arguments) override { m_sum +=
///         arguments[0].toInt(); }
///         ...
///     };
///     QTSlot2InterfaceConverter converter(&counter);
///     converter.connectSignal(slider, SIGNAL(valueChanged(int)), 1);
///
/// Senders, listener and converter may end in any order, also while `OnSlot` runs. The converter
/// belongs to the thread that creates it; its listener is to live there, too. Signals of other
/// threads reach it through that thread's event loop, unless the connection is a direct one.
class VLBASE_EXPORT QTSlot2InterfaceConverter : public QObject
{
public:
    explicit QTSlot2InterfaceConverter(IQTSlot2InterfaceListener* listener,
                                       QObject* parent = nullptr);
    ~QTSlot2InterfaceConverter() override;

    /// Who hears the signals from now on, those that are under way as well. Null: nobody.
    void setListener(IQTSlot2InterfaceListener* listener);

    /// Connects a signal, a text as `SIGNAL` makes it. Connected twice, it is heard twice, unless
    /// `type` says `Qt::UniqueConnection`.
    /// \return false for null, for a signal that does not exist (Qt's warning says which), and for
    ///     a second unique connection
    bool connectSignal(QObject* sender, const char* signal, int id,
                       Qt::ConnectionType type = Qt::AutoConnection);

    /// Ends all connections of a sender's signal; what is under way from it is not heard any more.
    /// \return whether there was one
    bool disconnectSignal(QObject* sender, const char* signal);

    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override;

private:
    struct Connected
    {
        QPointer<QObject> sender;
        int signal;
        int id;
        QList<QMetaType> types;
    };

    bool isConnected(const QObject* sender, int signal) const;
    void forget(int slot);
    void tell(int slot, void** arguments);

    std::shared_ptr<IQTSlot2InterfaceListener*> m_listener;
    std::map<int, Connected> m_connected; ///< by numbers that are never given out again
    int m_nextSlot = 0;
};
