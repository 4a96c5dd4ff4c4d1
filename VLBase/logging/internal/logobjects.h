#pragma once

#include <mutex>
#include <string>

namespace vlbase::logging {

// The names are part of the contract with programs of other makers, but for the last four,
// which only this library uses.
inline constexpr char bufferObject[] = "vlcoreShareBuffer1";
inline constexpr char mutexObject[] = "vlcoreMutex";
inline constexpr char reserveObject[] = "vlcoreReserve1";
inline constexpr char openingObject[] = "vlcoreOpening";
inline constexpr char ownerObject[] = "vlcoreOwner";
inline constexpr char viewerObject[] = "vlcoreViewer";

/// Which log this process takes part in; empty for the user's common one.
std::string instanceName();

/// The caller holds `attachmentMutex`.
void setInstanceName(const std::string& name);

/// The name of an object of the log that this process takes part in.
std::string objectName(const char* object);

/// Guards which log that is, and the process's attachment to it.
std::mutex& attachmentMutex();

} // namespace vlbase::logging
