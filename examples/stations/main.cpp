// One station of a monitoring network: it measures channel after channel and reports what goes
// wrong, on the road that every failure of the family takes. Several of them, an owner and a
// viewer make a network.

#include "countingtracer.h"
#include "station.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/logging/loginstance.h>
#include <VLBase/os/terminationlistener.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>

namespace {

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int)
{
    stopRequested = 1;
}

struct Options
{
    QString name;
    int intervalMs = 100;
    unsigned steps = 0; ///< 0 is without end
};

Options parse(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A station that measures channels and reports into the shared log."));
    parser.addHelpOption();
    const QCommandLineOption name(QStringLiteral("name"), QStringLiteral("Name of the station."),
                                  QStringLiteral("name"), QStringLiteral("Station"));
    const QCommandLineOption interval(QStringLiteral("interval"),
                                      QStringLiteral("Milliseconds between two channels (100)."),
                                      QStringLiteral("ms"), QStringLiteral("100"));
    const QCommandLineOption steps(QStringLiteral("steps"),
                                   QStringLiteral("End after so many channels; 0 is never (0)."),
                                   QStringLiteral("count"), QStringLiteral("0"));
    const QCommandLineOption instance(QStringLiteral("instance"),
                                      QStringLiteral("Take part in the log of this name."),
                                      QStringLiteral("name"));
    parser.addOptions({name, interval, steps, instance});
    parser.process(application);

    bool intervalOk = false;
    bool stepsOk = false;
    Options options{parser.value(name), parser.value(interval).toInt(&intervalOk),
                    parser.value(steps).toUInt(&stepsOk)};
    if (!intervalOk || options.intervalMs < 0 || !stepsOk) {
        std::fputs("stations: --interval and --steps take whole numbers from 0\n", stderr);
        std::exit(2);
    }
    if (parser.isSet(instance) && !setLogInstance(parser.value(instance))) {
        std::fputs("stations: --instance takes letters, digits, '-' and '_'\n", stderr);
        std::exit(2);
    }
    return options;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const Options options = parse(application);
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);

    const TerminationListener termination;
    QObject::connect(&termination, &TerminationListener::terminationRequested, &application,
                     &QCoreApplication::quit);

    static std::atomic<unsigned> lines{0};
    ErrorHandler::SetLogTracer(std::make_unique<CountingTracer>(options.name, lines));

    Station station(options.name);
    unsigned stepsDone = 0;
    QTimer pace;
    QObject::connect(&pace, &QTimer::timeout, &application, [&] {
        if (stopRequested || (options.steps > 0 && stepsDone == options.steps)) {
            QCoreApplication::quit();
            return;
        }
        station.measureNextChannel();
        ++stepsDone;
    });
    pace.start(options.intervalMs);
    QCoreApplication::exec();

    QCoreApplication::processEvents(); // Reports that still wait for the handler's thread.
    std::printf("%u\n", lines.load());
    return 0;
}
