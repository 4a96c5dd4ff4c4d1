#pragma once

#include <QString>

/// The part of the helper process: obeys one command a line from standard input, and answers
/// each with a line, until the input ends.
int runHelper(const QString& instance);
