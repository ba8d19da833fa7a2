#include "campaign.h"

#include "platform/keyboard.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

// A soak and fault campaign: see campaign.h. Ends with 0 if nothing was found.

namespace {

int numberOf(const QCommandLineParser &parser, const char *name)
{
    bool isNumber = false;
    const int number = parser.value(QString::fromLatin1(name)).toInt(&isNumber);
    if (!isNumber || number < 0) {
        std::fprintf(stderr, "--%s needs a number\n", name);
        std::exit(EXIT_FAILURE);
    }
    return number;
}

Campaign::Options readOptions(const QApplication &application)
{
    const Campaign::Options usual;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A random user against a random router in the real program."));
    parser.addHelpOption();
    const auto add = [&parser](const char *name, const char *text, double value) {
        parser.addOption({QString::fromLatin1(name), QString::fromLatin1(text),
                          QStringLiteral("NUMBER"), QString::number(value)});
    };
    add("seed", "seed of all chance", usual.seed);
    add("steps", "steps of the user", usual.steps);
    add("pace", "milliseconds between two steps", usual.pace);
    add("rest", "steps between two measurements", usual.restInterval);
    add("pause", "milliseconds for which the event loop may be busy", usual.pauseLimit);
    add("hang", "seconds behind which the event loop hangs", usual.stepLimit);
    add("memory", "megabytes that the heap may grow", usual.memoryLimit);
    parser.addOption({QStringLiteral("verbose"), QStringLiteral("prints every step")});
    parser.process(application);

    Campaign::Options options;
    options.seed = quint32(numberOf(parser, "seed"));
    options.steps = numberOf(parser, "steps");
    options.pace = numberOf(parser, "pace");
    options.restInterval = numberOf(parser, "rest");
    options.pauseLimit = numberOf(parser, "pause");
    options.stepLimit = numberOf(parser, "hang");
    options.memoryLimit = numberOf(parser, "memory");
    options.isVerbose = parser.isSet(QStringLiteral("verbose"));
    options.portName = QStringLiteral("campaign");
    return options;
}

} // namespace

int main(int argc, char *argv[])
{
    // A runtime folder of its own: the list of ports holds this router and no other one. And a
    // folder of settings: programs that share one wait for each other, 100 ms at a time, when a
    // file dialog keeps its size there.
    const QTemporaryDir folder;
    for (const char *variable : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
        qputenv(variable, QFile::encodeName(folder.path()));
    // The one platform without a display that plays a drag.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "minimal");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tk7-control.png")));
    QApplication::setQuitOnLastWindowClosed(false);
    // No system answers for the keyboard here.
    platform::setLeftControlSource([] { return true; });
    Campaign campaign(readOptions(application));
    campaign.run();
    return EXIT_SUCCESS;
}
