#include "simulator/program/passwordmask.h"
#include "simulator/program/simulatoroptions.h"
#include "simulator/program/stopsignals.h"
#include "simulator/router/routersimulator.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

using namespace tk7sim;

namespace {

enum ExitCode { Success, WrongUse, NoTerminal };

void print(std::FILE *file, const QString &text)
{
    QTextStream(file) << text;
    std::fflush(file);
}

void complain(const QString &text)
{
    print(stderr, QStringLiteral("tk7-router-sim: %1\n").arg(text));
}

// One line of ASCII, whatever came over the line.
QString readable(const QByteArray &line)
{
    constexpr char firstPrintable = ' ';
    constexpr char lastPrintable = '~';
    QString text;
    for (const char c : line) {
        if (c >= firstPrintable && c <= lastPrintable) {
            text += QLatin1Char(c);
        } else if (c != '\r' && c != '\n') {
            text += QStringLiteral("\\x%1").arg(static_cast<quint8>(c), 2, 16, QLatin1Char('0'));
        }
    }
    return text;
}

// The first four lines are read by scripts: the key, a colon, a blank, the value.
void printNames(const RouterSimulator &simulator)
{
    print(stdout,
          QStringLiteral("port: %1\nlink: %2\ndevice: %3\nspeed: %4\n")
              .arg(simulator.portName().isEmpty() ? simulator.deviceName() : simulator.portName(),
                   simulator.linkPath(), simulator.deviceName())
              .arg(simulator.speed()));
}

void watchService(RouterSimulator *simulator)
{
    QObject::connect(simulator, &RouterSimulator::modeChanged, simulator,
                     [](const QByteArray &mode) {
                         print(stdout, QStringLiteral("mode: %1\n").arg(readable(mode)));
                     });
    QObject::connect(simulator, &RouterSimulator::firmwareReceived, simulator,
                     [](const QByteArray &image) {
                         print(stdout, QStringLiteral("firmware: %1 bytes\n").arg(image.size()));
                     });
    QObject::connect(simulator, &RouterSimulator::rebooting, simulator,
                     [] { print(stdout, QStringLiteral("rebooting\n")); });
    QObject::connect(simulator, &RouterSimulator::rebooted, simulator, [simulator] {
        print(stdout, QStringLiteral("version: %1\n").arg(readable(simulator->version())));
    });
}

void watch(RouterSimulator *simulator, const SimulatorOptions &options)
{
    QObject::connect(simulator, &RouterSimulator::message, simulator, complain);
    QObject::connect(simulator, &RouterSimulator::pluggedChanged, simulator, [=](bool plugged) {
        if (plugged) {
            printNames(*simulator);
        } else {
            print(stdout, QStringLiteral("unplugged\n"));
        }
    });
    if (options.isQuiet()) {
        return;
    }
    QObject::connect(simulator, &RouterSimulator::connectedChanged, simulator, [](bool connected) {
        print(stdout, connected ? QStringLiteral("connected\n") : QStringLiteral("disconnected\n"));
    });
    QObject::connect(simulator, &RouterSimulator::aisTestChanged, simulator, [](bool on) {
        print(stdout, on ? QStringLiteral("AIS test on\n") : QStringLiteral("AIS test off\n"));
    });
    QObject::connect(simulator, &RouterSimulator::saved, simulator, [](bool ok) {
        print(stdout, ok ? QStringLiteral("saved\n") : QStringLiteral("save refused\n"));
    });
    watchService(simulator);
    if (!options.isVerbose()) {
        return;
    }
    QObject::connect(simulator, &RouterSimulator::speedChanged, simulator,
                     [](int baud) { print(stdout, QStringLiteral("speed: %1\n").arg(baud)); });
    QObject::connect(
        simulator, &RouterSimulator::lineReceived, simulator, [](const QByteArray &line) {
            print(stdout, QStringLiteral("<- %1\n").arg(readable(withoutPassword(line, false))));
        });
    QObject::connect(simulator, &RouterSimulator::lineSent, simulator, [](const QByteArray &line) {
        print(stdout, QStringLiteral("-> %1\n").arg(readable(withoutPassword(line, true))));
    });
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    SimulatorOptions options;
    const auto outcome = options.parse(QCoreApplication::arguments());
    if (outcome != SimulatorOptions::Outcome::Run) {
        const bool isError = outcome == SimulatorOptions::Outcome::Error;
        print(isError ? stderr : stdout, options.text());
        return isError ? WrongUse : Success;
    }

    RouterSimulator simulator;
    StopSignals stop;
    QObject::connect(&stop, &StopSignals::stopped, &application, &QCoreApplication::quit);
    options.applyTo(&simulator);
    watch(&simulator, options);
    if (!options.eepromFile().isEmpty() && !simulator.setEepromFile(options.eepromFile())) {
        complain(
            QStringLiteral("%1; going on with the factory set-up").arg(simulator.errorString()));
    }
    for (const auto &[port, file] : options.aisReplays()) {
        if (!simulator.setAisReplay(port, file)) {
            complain(QStringLiteral("can't replay %1").arg(simulator.errorString()));
            return WrongUse;
        }
    }
    if (!simulator.open()) {
        complain(QStringLiteral("no pseudo-terminal: %1").arg(simulator.errorString()));
        return NoTerminal;
    }
    return QCoreApplication::exec();
}
