#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/logging/logtracer.h>

int main()
{
    ErrorHandler::SetLogTracer(std::make_unique<CLogTracer>());
    try {
        throw VLException(std::string("antenna not connected"), __FILE__, "Receiver", "tune",
                          __LINE__, 0);
    } catch (const VLException& failure) {
        ErrorHandler::Interface()->ProtocolException(failure);
    }
}
