#pragma once

#include <VLBase/vlbase_export.h>

#include <QAbstractSocket>
#include <QString>

namespace QAbstractSocketHelpers {

/// What a socket error means, as a sentence for the user. Translated in the context
/// "QAbstractSocketHelpers".
VLBASE_EXPORT QString errorString(QAbstractSocket::SocketError error);

} // namespace QAbstractSocketHelpers
