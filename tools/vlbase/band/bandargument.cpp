#include "bandargument.h"

#include "plan.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/suggestion.h"

#include <algorithm>

namespace vlbase::tool::band {

std::optional<unsigned> bandArgument(CommandLine& line, const QString& name)
{
    const std::optional<unsigned> index = findBand(name);
    if (!index) {
        QStringList names = bandNames();
        std::transform(names.begin(), names.end(), names.begin(),
                       [](const QString& each) { return each.toLower(); });
        line.addFault(QStringLiteral("there is no band '%1'.%2 'vlbase band list' shows them all.")
                          .arg(name, didYouMean(name.toLower(), names)));
    }
    return index;
}

} // namespace vlbase::tool::band
