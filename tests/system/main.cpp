#include "stepfailure.h"
#include "story.h"
#include "tour.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);

    const QString besideUs =
        QCoreApplication::applicationDirPath() + QStringLiteral("/tk7-control");
    const QCommandLineOption tool(QStringLiteral("tool"),
                                  QStringLiteral("The tool; by default the one beside the tour."),
                                  QStringLiteral("program"), besideUs);
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Where the pictures go, one a step."),
                                    QStringLiteral("folder"), QStringLiteral("tour"));
    const QCommandLineOption wine(
        QStringLiteral("wine"),
        QStringLiteral("What runs the tool, a program for Windows. Its ports %1 and %2 must lead "
                       "to the published terminals of these names.")
            .arg(Story::windowsPorts.sparePort, Story::windowsPorts.port),
        QStringLiteral("loader"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Drives the tool with the mouse and the keyboard of the display, against a simulated "
        "router, and checks every step. Run it on a display of its own."));
    parser.addHelpOption();
    parser.addOptions({tool, output, wine});
    parser.process(application);

    try {
        Tour tour({parser.value(tool), parser.value(output), parser.value(wine)});
        return tour.run() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const StepFailure &failure) {
        std::fprintf(stderr, "tk7-tour: %s\n", qPrintable(failure.text));
        return EXIT_FAILURE;
    }
}
