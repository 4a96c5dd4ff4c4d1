#include "qtslot2interfaceconverter.h"

#include <QMetaMethod>

namespace {

/// The number of a signal by its text, or -1.
int signalNumber(const QObject* sender, const char* signal)
{
    constexpr char signalCode = '0' + QSIGNAL_CODE;
    if (!sender || !signal || *signal != signalCode)
        return -1;
    const QByteArray signature = QMetaObject::normalizedSignature(signal + 1);
    return sender->metaObject()->indexOfSignal(signature);
}

QList<QMetaType> typesOf(const QMetaMethod& method)
{
    QList<QMetaType> types;
    for (int i = 0; i < method.parameterCount(); ++i)
        types << method.parameterMetaType(i);
    return types;
}

QVariant valueOf(QMetaType type, const void* argument)
{
    if (type == QMetaType::fromType<QVariant>())
        return *static_cast<const QVariant*>(argument);
    return type.isValid() ? QVariant(type, argument) : QVariant();
}

} // namespace

IQTSlot2InterfaceListener::IQTSlot2InterfaceListener()
    : m_self(std::make_shared<IQTSlot2InterfaceListener*>(this))
{
}

IQTSlot2InterfaceListener::IQTSlot2InterfaceListener(const IQTSlot2InterfaceListener&)
    : IQTSlot2InterfaceListener()
{
}

IQTSlot2InterfaceListener& IQTSlot2InterfaceListener::operator=(const IQTSlot2InterfaceListener&)
{
    return *this;
}

IQTSlot2InterfaceListener::~IQTSlot2InterfaceListener()
{
    *m_self = nullptr;
}

QTSlot2InterfaceConverter::QTSlot2InterfaceConverter(IQTSlot2InterfaceListener* listener,
                                                     QObject* parent)
    : QObject(parent)
{
    setListener(listener);
}

QTSlot2InterfaceConverter::~QTSlot2InterfaceConverter() = default;

void QTSlot2InterfaceConverter::setListener(IQTSlot2InterfaceListener* listener)
{
    m_listener = listener ? listener->m_self : nullptr;
}

bool QTSlot2InterfaceConverter::connectSignal(QObject* sender, const char* signal, int id,
                                              Qt::ConnectionType type)
{
    const int number = signalNumber(sender, signal);
    if (number < 0) {
        qWarning("QTSlot2InterfaceConverter: No such signal %s::%s",
                 sender ? sender->metaObject()->className() : "(nullptr)",
                 signal && *signal ? signal + 1 : "(nullptr)");
        return false;
    }
    // Each connection has a slot of its own, so Qt does not see that two are alike.
    const bool isUnique = (type & Qt::UniqueConnection) != 0;
    if (isUnique && isConnected(sender, number))
        return false;

    const int slot = m_nextSlot++;
    const int plainType = type & ~Qt::UniqueConnection;
    if (!QMetaObject::connect(sender, number, this, QObject::staticMetaObject.methodCount() + slot,
                              plainType))
        return false;
    m_connected[slot] = {sender, number, id, typesOf(sender->metaObject()->method(number))};
    // Behind the signals of the sender that are under way.
    connect(
        sender, &QObject::destroyed, this, [this, slot] { forget(slot); }, Qt::QueuedConnection);
    return true;
}

bool QTSlot2InterfaceConverter::disconnectSignal(QObject* sender, const char* signal)
{
    const int number = signalNumber(sender, signal);
    bool wasConnected = false;
    for (auto it = m_connected.begin(); it != m_connected.end();) {
        if (number < 0 || it->second.sender != sender || it->second.signal != number) {
            ++it;
            continue;
        }
        QMetaObject::disconnect(sender, number, this,
                                QObject::staticMetaObject.methodCount() + it->first);
        it = m_connected.erase(it);
        wasConnected = true;
    }
    return wasConnected;
}

bool QTSlot2InterfaceConverter::isConnected(const QObject* sender, int signal) const
{
    for (const auto& [slot, connected] : m_connected) {
        if (connected.sender == sender && connected.signal == signal)
            return true;
    }
    return false;
}

void QTSlot2InterfaceConverter::forget(int slot)
{
    m_connected.erase(slot);
}

// The slots that Qt calls here are in no meta object: they are counted on behind those of QObject.
int QTSlot2InterfaceConverter::qt_metacall(QMetaObject::Call call, int id, void** arguments)
{
    const int slot = QObject::qt_metacall(call, id, arguments);
    if (slot < 0 || call != QMetaObject::InvokeMetaMethod)
        return slot;
    tell(slot, arguments);
    return -1;
}

void QTSlot2InterfaceConverter::tell(int slot, void** arguments)
{
    const auto found = m_connected.find(slot);
    if (found == m_connected.end() || !m_listener || !*m_listener)
        return;
    const Connected& connected = found->second;
    const int id = connected.id;
    QVariantList values;
    for (qsizetype i = 0; i < connected.types.size(); ++i)
        values << valueOf(connected.types[i], arguments[i + 1]);
    // It may end everything, this object included.
    (*m_listener)->OnSlot(id, values);
}
