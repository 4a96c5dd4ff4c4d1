#include "signalhandler.h"

namespace QObjectHelpers {

SignalHandler::SignalHandler(QObject* parent)
    : QObject(parent)
    , m_handlers(std::make_shared<Handlers>())
{
}

SignalHandler* SignalHandler::connected(const QObject* sender, const char* signal,
                                        SignalHandler* handler, const QObject* owner,
                                        const char* slot, Qt::ConnectionType type)
{
    // A parent of another thread is refused by QObject, which would leave the handler to nobody.
    if (handler->parent() == owner && QObject::connect(sender, signal, handler, slot, type))
        return handler;
    delete handler;
    return nullptr;
}

template <typename Signature, typename... Arguments>
void SignalHandler::call(Arguments&&... arguments)
{
    // Shared for the length of the call: the function may delete the sender, and with it this
    // object. A copy of the function would not do, because functions may have a state.
    const std::shared_ptr<Handlers> handlers = m_handlers;
    if (const auto& handler = std::get<std::function<Signature>>(*handlers))
        handler(std::forward<Arguments>(arguments)...);
}

void SignalHandler::onSignal()
{
    call<void()>();
}

void SignalHandler::onSignal(bool value)
{
    call<void(bool)>(value);
}

void SignalHandler::onSignal(int value)
{
    call<void(int)>(value);
}

void SignalHandler::onSignal(long value)
{
    call<void(long)>(value);
}

void SignalHandler::onSignal(double value)
{
    call<void(double)>(value);
}

void SignalHandler::onSignal(const QString& value)
{
    call<void(const QString&)>(value);
}

void SignalHandler::onSignal(QAction* value)
{
    call<void(QAction*)>(value);
}

void SignalHandler::onSignal(QObject* value)
{
    call<void(QObject*)>(value);
}

void SignalHandler::onSignal(const QModelIndex& first, const QModelIndex& second)
{
    call<void(const QModelIndex&, const QModelIndex&)>(first, second);
}

} // namespace QObjectHelpers
