#pragma once

#include <QDir>
#include <QTemporaryDir>

/// A temporary directory for this process alone, so that no test touches the log of a user or of
/// another test. Make it before the first report.
class PrivateTemp
{
public:
    PrivateTemp() { use(m_dir.path()); }

    /// Makes the library believe that temporary files belong into `path`.
    static void use(const QString& path)
    {
        for (const char* variable : {"TMPDIR", "TMP", "TEMP"})
            qputenv(variable, QDir::toNativeSeparators(path).toLocal8Bit());
    }

    QString path() const { return m_dir.path(); }
    QString filePath(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};
