#include "command.h"
#include "tools/vlbase/platform/standardstreams.h"

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    vlbase::tool::platform::prepareStandardStreams();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vlbase"));
    QCoreApplication::setOrganizationName(QStringLiteral("VLBase"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VLBASE_VERSION));
    return vlbase::tool::runProgram(QCoreApplication::arguments().sliced(1));
}
