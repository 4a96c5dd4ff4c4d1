#pragma once

namespace vlbase::platform {

/// A process whose standard streams are closed gets their numbers for what it opens next, and
/// whatever it then writes to such a stream goes there: a message to standard error would be put
/// over the begin of a shared log.
/// \return the same open file under a number behind those of the standard streams, close-on-exec;
///         the given number is closed then. -1 with errno set when it is -1 or none is left.
int behindStandardStreams(int descriptor);

} // namespace vlbase::platform
