#pragma once

#include <QStringList>

namespace vlbase::tool {

/// The one of the words that was probably meant, or an empty text when none is near: at most
/// one slip (a letter more, less, other, or two swapped) for each three letters typed.
QString nearestWord(const QString& typed, const QStringList& words);

/// " Did you mean 'tail'?" for the nearest word, empty when none is near.
QString didYouMean(const QString& typed, const QStringList& words);

} // namespace vlbase::tool
