#pragma once

class QObject;

namespace vlbase::qthelpers {

/// Deletes an object without parent at the latest when the event loop that it waits for is gone
/// for good: with the application in the application's thread, with the thread elsewhere.
void deleteWithEventLoop(QObject* object);

} // namespace vlbase::qthelpers
