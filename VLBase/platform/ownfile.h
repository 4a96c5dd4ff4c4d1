#pragma once

class QFile;

namespace vlbase::platform {

/// Opens a file for reading and writing, without a buffer, and makes it when it is missing.
///
/// On Linux, where users share the temporary directory, links are not followed, and what stands
/// there is taken only when it belongs to this user and goes by one name. Otherwise the user's
/// number goes before the extension of the name, and \a file gets that name.
bool openOwnFile(QFile& file);

} // namespace vlbase::platform
