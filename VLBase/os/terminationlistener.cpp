#include "terminationlistener.h"

#include <VLBase/platform/quitbroadcast.h>

#include <QPointer>
#include <QSocketNotifier>

TerminationListener::TerminationListener(QObject* parent)
    : QObject(parent)
    , m_listener(
          std::make_unique<vlbase::platform::QuitListener>([this] { emit terminationRequested(); }))
{
    if (m_listener->descriptor() < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_listener->descriptor(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationListener::read);
}

TerminationListener::~TerminationListener() = default;

bool TerminationListener::isListening() const
{
    return m_listener->isListening();
}

void TerminationListener::read()
{
    const QPointer<TerminationListener> self(this); // which a slot may delete
    m_listener->read();
    if (self && !m_listener->isListening())
        m_notifier->setEnabled(false);
}
