#pragma once

#include <VLBase/vlbase_export.h>

#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

namespace QObjectHelpers {
class SignalHandler;
}

namespace QFileDialogHelpers {

/// Asks the user for an existing directory without blocking the caller.
class VLBASE_EXPORT AsyncGetExistingDirectory : public QObject
{
    Q_OBJECT

public:
    /// Opens the dialog when control returns to the event loop; the call itself returns at once.
    /// \param onSelected gets the directory, or an empty text when the user cancels. It is not
    ///                   called when `parent` ends before the user has chosen.
    /// \param parent     owner of the question and of the dialog's window; may be null.
    static void asyncGetExistingDirectory(const std::function<void(const QString&)>& onSelected,
                                          QWidget* parent = nullptr,
                                          const QString& caption = QString(),
                                          const QString& directory = QString(),
                                          QFileDialog::Options options = QFileDialog::ShowDirsOnly);

    ~AsyncGetExistingDirectory() override;

Q_SIGNALS:
    void fileSelected(const QString& directory);

private Q_SLOTS:
    void onStart();

private:
    AsyncGetExistingDirectory(QWidget* parent, const QString& caption, const QString& directory,
                              QFileDialog::Options options);

    QPointer<QWidget> m_parent;
    QString m_caption;
    QString m_directory;
    QFileDialog::Options m_options;
    std::unique_ptr<QObjectHelpers::SignalHandler> m_handler;
};

} // namespace QFileDialogHelpers
