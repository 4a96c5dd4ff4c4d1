#pragma once

#include <VLBase/vlbase_export.h>

#include <QModelIndex>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <tuple>

class QAction;

namespace QObjectHelpers {

namespace detail {

/// The slot text of a supported signature; a signature that is not supported has none.
template <typename Signature> struct HandlerSlot;

template <> struct HandlerSlot<void()>
{
    static constexpr const char* text = "1onSignal()";
};
template <> struct HandlerSlot<void(bool)>
{
    static constexpr const char* text = "1onSignal(bool)";
};
template <> struct HandlerSlot<void(int)>
{
    static constexpr const char* text = "1onSignal(int)";
};
template <> struct HandlerSlot<void(long)>
{
    static constexpr const char* text = "1onSignal(long)";
};
template <> struct HandlerSlot<void(double)>
{
    static constexpr const char* text = "1onSignal(double)";
};
template <> struct HandlerSlot<void(const QString&)>
{
    static constexpr const char* text = "1onSignal(const QString&)";
};
template <> struct HandlerSlot<void(QAction*)>
{
    static constexpr const char* text = "1onSignal(QAction*)";
};
template <> struct HandlerSlot<void(QObject*)>
{
    static constexpr const char* text = "1onSignal(QObject*)";
};
template <> struct HandlerSlot<void(const QModelIndex&, const QModelIndex&)>
{
    static constexpr const char* text = "1onSignal(const QModelIndex&, const QModelIndex&)";
};

} // namespace detail

/// Binds a signal, named by its text, to a function object.
///
/// The supported signatures are those of the `onSignal` slots. A handler belongs to its Qt
/// parent and stays connected until that is deleted. The function may end the sender, the
/// parent or the handler itself while it runs: it is kept until it returns.
///
///     SignalHandler::connectHandler<void(int)>(slider, SIGNAL(valueChanged(int)),
///                                              [](int value) { tune(value); });
///
/// Belongs to the thread that creates it, as every `QObject`.
class VLBASE_EXPORT SignalHandler : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE(<QAction>)

public:
    /// A new handler, child of `parent`, which runs `handler` when its slot of that signature is
    /// called. The caller connects it, and owns it when `parent` is null.
    template <typename Signature>
    static SignalHandler* createHandler(const std::function<Signature>& handler, QObject* parent)
    {
        auto* created = new SignalHandler(parent);
        std::get<std::function<Signature>>(*created->m_handlers) = handler;
        return created;
    }

    /// Runs `handler` whenever `sender` emits `signal`, a text as `SIGNAL` makes it.
    /// \param parent owns the handler; null stands for the sender.
    /// \return the handler, or null when `sender` or `signal` is null, the signal does not exist
    ///         or does not fit, or the parent lives in another thread. Nothing is left behind then.
    template <typename Signature>
    static SignalHandler* connectHandler(const QObject* sender, const char* signal,
                                         const std::function<Signature>& handler,
                                         QObject* parent = nullptr,
                                         Qt::ConnectionType type = Qt::AutoConnection)
    {
        if (!sender || !signal)
            return nullptr;
        QObject* owner = parent ? parent : const_cast<QObject*>(sender);
        return connected(sender, signal, createHandler(handler, owner), owner,
                         detail::HandlerSlot<Signature>::text, type);
    }

public Q_SLOTS:
    void onSignal();
    void onSignal(bool value);
    void onSignal(int value);
    void onSignal(long value);
    void onSignal(double value);
    void onSignal(const QString& value);
    void onSignal(QAction* value);
    void onSignal(QObject* value);
    void onSignal(const QModelIndex& first, const QModelIndex& second);

protected:
    explicit SignalHandler(QObject* parent);

private:
    using Handlers = std::tuple<std::function<void()>, std::function<void(bool)>,
                                std::function<void(int)>, std::function<void(long)>,
                                std::function<void(double)>, std::function<void(const QString&)>,
                                std::function<void(QAction*)>, std::function<void(QObject*)>,
                                std::function<void(const QModelIndex&, const QModelIndex&)>>;

    static SignalHandler* connected(const QObject* sender, const char* signal,
                                    SignalHandler* handler, const QObject* owner, const char* slot,
                                    Qt::ConnectionType type);

    template <typename Signature, typename... Arguments> void call(Arguments&&... arguments);

    std::shared_ptr<Handlers> m_handlers;
};

} // namespace QObjectHelpers
