#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

namespace Vela {

/// Reads a number at the start of a text, written with either decimal separator, or a mixed
/// fraction: "1.5", "1,5", "-2e3", "0x1F", "inf", "2_1/4" (2.25). Blanks before it are skipped,
/// what follows it is ignored, and locales play no part.
///
/// The fraction is added to a negative whole too: "-1_1/2" gives -0.5.
/// \param ok may be null; false only for a fraction with the denominator 0.
/// \return 0.0 when nothing could be read, and when `*ok` is false.
VLBASE_EXPORT double toDoubleEx(const QString& text, bool* ok = nullptr);

} // namespace Vela
