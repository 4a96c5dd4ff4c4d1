#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>
#include <utility>
#include <vector>

namespace vlbase::tool::time {

/// The time stamp of digits alone, or of a date with or without a time, fraction and zone in any of
/// the forms of `stampTexts`. Local time where no zone is named. None for what is no such text, and
/// for an instant without a stamp.
std::optional<quint64> parseStamp(const QString& text);

/// A stamp in all its forms: what each is called, and its text.
std::vector<std::pair<QString, QString>> stampTexts(quint64 stamp);

} // namespace vlbase::tool::time
