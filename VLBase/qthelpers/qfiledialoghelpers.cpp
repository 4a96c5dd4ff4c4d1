#include "qfiledialoghelpers.h"

#include <VLBase/qthelpers/internal/lastowner.h>
#include <VLBase/qthelpers/signalhandler.h>

#include <QScopeGuard>
#include <QTimer>
#include <QUrl>

namespace QFileDialogHelpers {

using QObjectHelpers::SignalHandler;

AsyncGetExistingDirectory::AsyncGetExistingDirectory(QWidget* parent, const QString& caption,
                                                     const QString& directory,
                                                     QFileDialog::Options options)
    : QObject(parent)
    , m_parent(parent)
    , m_caption(caption)
    , m_directory(directory)
    , m_options(options)
{
}

AsyncGetExistingDirectory::~AsyncGetExistingDirectory() = default;

void AsyncGetExistingDirectory::asyncGetExistingDirectory(
    const std::function<void(const QString&)>& onSelected, QWidget* parent, const QString& caption,
    const QString& directory, QFileDialog::Options options)
{
    auto* chooser = new AsyncGetExistingDirectory(parent, caption, directory, options);
    if (!parent)
        vlbase::qthelpers::deleteWithEventLoop(chooser);
    chooser->m_handler.reset(
        SignalHandler::createHandler<void(const QString&)>(onSelected, nullptr));
    connect(chooser, SIGNAL(fileSelected(QString)), chooser->m_handler.get(),
            SLOT(onSignal(QString)));
    QTimer::singleShot(0, chooser, SLOT(onStart()));
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the chooser deletes itself

void AsyncGetExistingDirectory::onStart()
{
    // The dialog runs an event loop, in which the parent may end, and with it this object and the
    // dialog. QFileDialog's own function for the question keeps its dialog on the stack, where a
    // parent must not delete it.
    const QPointer<AsyncGetExistingDirectory> self(this);
    const auto ended = qScopeGuard([self] { // also when the answer's receiver throws
        if (self)
            self->deleteLater();
    });
    const QPointer<QFileDialog> dialog = new QFileDialog(m_parent, m_caption, m_directory);
    dialog->setOptions(m_options);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setSupportedSchemes({QStringLiteral("file")});
    const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
    const QString directory = accepted ? dialog->selectedUrls().value(0).toLocalFile() : QString();
    delete dialog;
    if (self)
        Q_EMIT fileSelected(directory);
}

} // namespace QFileDialogHelpers
