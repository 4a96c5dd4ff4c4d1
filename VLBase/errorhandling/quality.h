#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

// Contract checks that failed, and traces. Every function reports through the error handler and
// returns: none throws, none ends the process. They may be called from any thread and run one
// after the other under the handler's quality mutex.
//
// A contract function records at once, in the calling thread, and posts a dialog where one is
// installed. A trace is recorded later, in the thread of the error handler, as a warning of
// level 3.
//
// `file` names the source unit: directory and file name without extension. A null pointer counts
// as an empty text.

/// Reports "REQUIREMENT FAILED": the caller did not keep its side of the contract.
VLBASE_EXPORT void _Q_require(const wchar_t* file, unsigned short line);

/// Reports "ENSURE FAILED": the callee did not deliver what it promises.
VLBASE_EXPORT void _Q_ensure(const wchar_t* file, unsigned short line);

/// Reports "ASSERTION FAILED " followed by the text of the expression.
VLBASE_EXPORT void _Q_assert(const wchar_t* expression, const wchar_t* file, unsigned short line);

/// Traces the first 400 characters of a text.
VLBASE_EXPORT void _Q_Trace(const QString& text, const QString& fileName, unsigned short line);

/// Traces a text made as by the wide `printf` of the Windows runtime, cut after 399 characters,
/// without a file name.
///
/// The same on every platform: "%s" and "%c" take wide text, "%S", "%C", "%hs" and "%hc" 8-bit
/// text (UTF-8), "%I64d" a 64-bit integer. "%n" writes nothing, and a conversion that does not
/// exist is shown as it stands.
///
///     _Q_TraceOld(QStringLiteral("%s: %d lines"), L"report", 12);
VLBASE_EXPORT void _Q_TraceOld(QString format, ...);
