#include "simulator/program/simulatoroptions.h"

#include "simulator/instruments/aisworld.h"
#include "simulator/line/linespeed.h"
#include "simulator/line/portlink.h"
#include "simulator/router/routerconfig.h"
#include "simulator/router/routersimulator.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cmath>

namespace tk7sim {

namespace {

constexpr double maxSeed = 4294967295.0;
constexpr double maxSilence = 86400; // seconds
constexpr double maxHandover = 3600; // seconds
constexpr double maxReboot = 3600;   // seconds
constexpr double maxBank = 255;
constexpr int maxVersion = 255;
constexpr int maxModeLength = 16;
constexpr double millisecondsPerSecond = 1000;

QString tr(const char *text)
{
    return QString::fromLatin1(text);
}

void addOptions(QCommandLineParser *parser)
{
    const auto add = [parser](const char *name, const char *text, const char *value,
                              const char *defaultValue) {
        parser->addOption(QCommandLineOption(tr(name), tr(text), tr(value), tr(defaultValue)));
    };
    add("name",
        "Publish the terminal under this name, as it then stands in the tool's list of "
        "ports. An empty name publishes nothing.",
        "NAME", "tk7-sim");
    add("speed",
        "Speed of the line before a tool is found, whatever speed its port has in the rules: 2400, 4800, 9600, 19200, 38400, 57600 "
        "or 115200.",
        "BAUD", "4800");
    add("port", "Number of the port to which the tool is wired, 0 to 11.", "PORT", "0");
    add("firmware", "Firmware version that the router reports; it can do the same with any.", "MAJOR.MINOR", "3.5");
    add("mode", "Mode that the router reports; letters and digits.", "TEXT", "NORMAL");
    add("bank", "Flash bank that the router reports.", "BANK", "0");
    add("eeprom", "Keep the EEPROM in this file from one run to the next.", "FILE", "");
    add("rate",
        "So many times the usual number of lines of every instrument, 0 to 1000.",
        "N", "1");
    add("vessels", "Number of vessels around the ship that the AIS stations hear, 0 to 20000.", "N", "40");
    add("ais-replay",
        "Let this input port (0 to 11) hear the VDM, VDO and ALR sentences of a file, over and "
        "over. May be given several times, for other ports.",
        "PORT:FILE", "");
    add("silence",
        "Seconds without a word from the tool after which it is taken to have gone; 0: "
        "never.",
        "SECONDS", "10");
    add("handover",
        "Seconds of silence of a channel's main input after which its reserve input takes over.",
        "SECONDS", "3");
    add("reboot", "Seconds of silence in which the router starts with a new firmware.", "SECONDS",
        "3");
    add("fault",
        "A fault of the router or its cable. May be given several times; --list-faults "
        "shows them all.",
        "NAME[=VALUE]", "");
    add("seed", "Seed of everything random.", "NUMBER", "1");
    parser->addOption({tr("keep-speed"),
                       tr("Stay at 115200 baud when a connection ends, instead of going back to "
                          "the start speed.")});
    parser->addOption({tr("list-faults"), tr("Show the faults and end.")});
    parser->addOption({tr("quiet"), tr("Print the names of the port, and nothing else.")});
    parser->addOption({tr("verbose"),
                       tr("Print every sentence, with <- for what came from the "
                          "tool and -> for what goes to it.")});
}

bool isModeText(const QString &text)
{
    const auto isAllowed = [](QChar c) {
        return c.unicode() < 128 && c.isLetterOrNumber(); // the router's alphabet is ASCII
    };
    return !text.isEmpty() && text.size() <= maxModeLength
        && std::all_of(text.cbegin(), text.cend(), isAllowed);
}

} // namespace

SimulatorOptions::Outcome SimulatorOptions::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("A simulated TK-7 router on a pseudo-terminal.\n\nIt prints the name under which the "
           "tool finds it, and runs until it is interrupted."));
    const QCommandLineOption help({tr("h"), tr("help")}, tr("Show this text and end."));
    parser.addOption(help);
    addOptions(&parser);
    if (!parser.parse(arguments)) {
        fail(parser.errorText());
        return Outcome::Error;
    }
    if (parser.isSet(help)) {
        m_text = parser.helpText();
        return Outcome::Help;
    }
    if (parser.isSet(tr("list-faults"))) {
        m_text = faultList();
        return Outcome::Help;
    }
    if (!parser.positionalArguments().isEmpty()) {
        fail(tr("unexpected argument: %1").arg(parser.positionalArguments().constFirst()));
        return Outcome::Error;
    }
    return read(parser);
}

SimulatorOptions::Outcome SimulatorOptions::read(const QCommandLineParser &parser)
{
    m_name = parser.value(tr("name"));
    m_mode = parser.value(tr("mode"));
    m_eepromFile = parser.value(tr("eeprom"));
    m_keepSpeed = parser.isSet(tr("keep-speed"));
    m_quiet = parser.isSet(tr("quiet"));
    m_verbose = parser.isSet(tr("verbose"));
    if (!m_name.isEmpty() && !PortLink::isValidName(m_name)) {
        fail(tr("\"%1\" can't be the name of a port").arg(m_name));
        return Outcome::Error;
    }
    m_speed = parser.value(tr("speed")).toInt();
    if (!isLineSpeed(m_speed)) {
        fail(tr("no such speed: %1").arg(parser.value(tr("speed"))));
        return Outcome::Error;
    }
    if (!isModeText(m_mode)) {
        fail(tr("a mode is made of 1 to %1 letters and digits").arg(maxModeLength));
        return Outcome::Error;
    }
    if (!readVersion(parser.value(tr("firmware")))
        || !readNumber(parser, tr("port"), portCount - 1, &m_port)
        || !readNumber(parser, tr("bank"), maxBank, &m_bank)
        || !readNumber(parser, tr("rate"), RouterSimulator::maxTrafficRate, &m_rate)
        || !readNumber(parser, tr("vessels"), AisWorldSettings::maxVessels, &m_vessels)
        || !readNumber(parser, tr("seed"), maxSeed, &m_seed)
        || !readNumber(parser, tr("silence"), maxSilence, &m_silence)
        || !readNumber(parser, tr("handover"), maxHandover, &m_handover)
        || !readNumber(parser, tr("reboot"), maxReboot, &m_reboot)) {
        return Outcome::Error;
    }
    const QStringList replays =
        parser.isSet(tr("ais-replay")) ? parser.values(tr("ais-replay")) : QStringList();
    for (const QString &replay : replays) {
        if (!readAisReplay(replay)) {
            return Outcome::Error;
        }
    }
    const QStringList faults = parser.values(tr("fault"));
    for (const QString &fault : faults) {
        if (parser.isSet(tr("fault")) && !readFault(fault)) {
            return Outcome::Error;
        }
    }
    return Outcome::Run;
}

bool SimulatorOptions::readFault(const QString &text)
{
    const QString name = text.section(QLatin1Char('='), 0, 0);
    const auto fault = faultFromName(name);
    if (!fault) {
        return fail(tr("no such fault: %1; --list-faults shows them all").arg(name));
    }
    const FaultInfo &info = faultInfo(*fault);
    double value = info.defaultValue;
    if (text.contains(QLatin1Char('='))) {
        bool ok = false;
        value = text.section(QLatin1Char('='), 1).toDouble(&ok);
        const bool isInRange = ok && value >= 0 && value <= info.maximum;
        if (!isInRange || !info.valueName || (info.isWhole && value != std::floor(value))) {
            return fail(tr("a wrong value: --fault %1").arg(text));
        }
    }
    m_faults.append({*fault, value});
    return true;
}

bool SimulatorOptions::readAisReplay(const QString &text)
{
    const auto colon = text.indexOf(QLatin1Char(':'));
    bool ok = false;
    const int port = text.left(colon).toInt(&ok);
    const QString file = text.mid(colon + 1);
    if (colon < 0 || !ok || !isPort(port) || file.isEmpty()) {
        return fail(tr("not a port from 0 to 11 and a file: --ais-replay %1").arg(text));
    }
    m_aisReplays.append({port, file});
    return true;
}

bool SimulatorOptions::readVersion(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    bool majorOk = false;
    bool minorOk = false;
    if (parts.size() == 2) {
        m_versionMajor = parts.at(0).toInt(&majorOk);
        m_versionMinor = parts.at(1).toInt(&minorOk);
    }
    const auto isInRange = [](int number) { return number >= 0 && number <= maxVersion; };
    if (!majorOk || !minorOk || !isInRange(m_versionMajor) || !isInRange(m_versionMinor)) {
        return fail(tr("not a firmware version: %1").arg(text));
    }
    return true;
}

bool SimulatorOptions::readNumber(const QCommandLineParser &parser, const QString &option,
                                  double maximum, double *result)
{
    bool ok = false;
    *result = parser.value(option).toDouble(&ok);
    if (!ok || *result < 0 || *result > maximum) {
        return fail(tr("--%1 takes a number from 0 to %2").arg(option).arg(maximum, 0, 'f', 0));
    }
    return true;
}

bool SimulatorOptions::fail(const QString &text)
{
    m_text = tr("tk7-router-sim: %1\n").arg(text);
    return false;
}

void SimulatorOptions::applyTo(RouterSimulator *simulator) const
{
    simulator->setPublishedName(m_name);
    simulator->setStartSpeed(m_speed);
    simulator->setReturnsToStartSpeed(!m_keepSpeed);
    simulator->setSilenceLimit(static_cast<int>(m_silence * millisecondsPerSecond));
    simulator->setHandoverTime(static_cast<int>(m_handover * millisecondsPerSecond));
    simulator->setRebootDuration(static_cast<int>(m_reboot * millisecondsPerSecond));
    simulator->setControlPort(static_cast<int>(m_port));
    simulator->setVersion(m_versionMajor, m_versionMinor);
    simulator->setMode(m_mode.toLatin1());
    simulator->setFlashBank(static_cast<int>(m_bank));
    simulator->setTrafficRate(m_rate);
    simulator->setAisVessels(static_cast<int>(m_vessels));
    simulator->setSeed(static_cast<quint32>(m_seed));
    for (const auto &[fault, value] : m_faults) {
        simulator->setFault(fault, value);
    }
}

QString SimulatorOptions::faultList()
{
    constexpr int column = 28;
    QString result;
    for (const FaultInfo &info : faultTable()) {
        QString name = faultName(info.fault);
        if (info.valueName) {
            name += tr("[=%1]").arg(tr(info.valueName));
        }
        result += tr("  %1 %2").arg(name, -column).arg(tr(info.text));
        if (info.valueName) {
            result += tr(" (%1)").arg(info.defaultValue);
        }
        result += QLatin1Char('\n');
    }
    return result;
}

} // namespace tk7sim
