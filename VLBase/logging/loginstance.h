#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// Selects which log of this user the process takes part in.
///
/// Every user has one common log, and a program that never calls this function uses it. Tests
/// and experiments that must not meet the common log give theirs a name; programs that chose the
/// same name share it.
///
/// \param name 1 to 64 letters, digits, '-' and '_' of ASCII; empty for the common log
/// \return whether the name was taken over. False for any other name, and while an object of
///     this process is attached to a log: the choice is then unchanged. Thread-safe.
VLBASE_EXPORT bool setLogInstance(const QString& name);

/// The name that is in force; empty for the common log. Thread-safe.
VLBASE_EXPORT QString logInstance();
