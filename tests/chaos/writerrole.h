#pragma once

#include <QString>
#include <QStringList>

/// The processes that the conductor starts: its own program with a role as first argument.
namespace roles {

/// The text of a line, which its place in a writer's sequence determines, so that one byte out of
/// place is seen. Its length varies from 0 to 300 characters.
QString payload(int slot, quint64 sequence);

/// "writer INSTANCE TALLYFILE SLOT LINES WAITMS": sends LINES lines (0: until the tally says
/// stop) of which each call is counted before and after.
int runWriter(const QStringList& arguments);

/// "holder INSTANCE": takes the log's lock, says "held" and keeps it until its input ends.
int runHolder(const QStringList& arguments);

} // namespace roles
