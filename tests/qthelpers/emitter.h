#pragma once

#include <QAction>
#include <QModelIndex>
#include <QObject>
#include <QString>

/// One signal of each signature that the helpers know.
class Emitter : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void plain();
    void boolean(bool value);
    void integer(int value);
    void longInteger(long value);
    void real(double value);
    void text(const QString& value);
    void action(QAction* value);
    void object(QObject* value);
    void indexes(const QModelIndex& first, const QModelIndex& second);
};
