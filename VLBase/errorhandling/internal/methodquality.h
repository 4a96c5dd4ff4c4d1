#pragma once

// The contract functions of single methods, for use inside the library only.

/// Reports "PREMETHOD FAILED" for a class.
void _Q_premethod(const wchar_t* className, const wchar_t* file, unsigned short line);

/// Reports "POSTMETHOD FAILED" for a class.
void _Q_postmethod(const wchar_t* className, const wchar_t* file, unsigned short line);
