#include "terminationwatch.h"

#include "tools/vlbase/platform/stopsignal.h"

#include <VLBase/os/terminationlistener.h>

namespace vlbase::tool::log {

void TerminationWatch::run()
{
    const TerminationListener listener;
    connect(&listener, &TerminationListener::terminationRequested, &listener,
            [] { platform::StopSignal::request(); });
    exec();
}

} // namespace vlbase::tool::log
