#include "trouble.h"

#include "routerthread.h"
#include "steplog.h"

#include "simulator/line/sentence.h"

#include <algorithm>
#include <iterator>
#include <numeric>

using namespace tk7sim;

namespace {

constexpr int speeds[] = {2400, 4800, 9600, 19200, 38400, 57600, 115200};

// With these the tool can't connect, or loses the connection.
constexpr Fault deadlyFaults[] = {Fault::Silent,    Fault::Busy,           Fault::SilentAfter,
                                  Fault::BusyAfter, Fault::NoSecondAnswer, Fault::WrongChecksums,
                                  Fault::Noise,     Fault::Unplugged};

QByteArray decimal(int number)
{
    return QByteArray::number(number);
}

} // namespace

const Trouble::Row Trouble::rows[] = {
    {"clear faults", 30, &Trouble::clearFaults},
    {"fault", 40, &Trouble::setFault},
    {"unplug", 3, &Trouble::unplug},
    {"plug", 12, &Trouble::plug},
    {"restart", 2, &Trouble::restart},
    {"start speed", 3, &Trouble::changeSpeed},
    {"traffic", 10, &Trouble::flood},
    {"out of range", 15, &Trouble::sayOutOfRange},
    {"garbage", 6, &Trouble::sayAnything},
    {"foreign configuration", 2, &Trouble::sayForeignConfig},
    {"unasked status", 8, &Trouble::sayOwnStatus},
    {"version", 3, &Trouble::changeVersion},
    {"lock", 5, &Trouble::changeLock},
    {"configuration", 6, &Trouble::newConfiguration},
    {"counters", 3, &Trouble::countErrors},
};

Trouble::Trouble(RouterThread &router, Dice &dice, StepLog &log)
    : m_router(router), m_dice(dice), m_log(log)
{
}

bool Trouble::isDeadly(Fault fault)
{
    return std::find(std::begin(deadlyFaults), std::end(deadlyFaults), fault)
        != std::end(deadlyFaults);
}

bool Trouble::isDeadly() const
{
    return std::any_of(m_faults.begin(), m_faults.end(),
                       [](Fault fault) { return isDeadly(fault); });
}

void Trouble::step(bool isPlugged)
{
    // A router that nobody can connect to is soon dull.
    constexpr int recovery = 70;
    if (isDeadly() && m_dice.chance(recovery)) {
        m_log.note(QStringLiteral("router"), QStringLiteral("clear faults"), clearFaults());
        return;
    }
    if (!isPlugged && m_dice.chance(recovery)) {
        m_log.note(QStringLiteral("router"), QStringLiteral("plug"), plug());
        return;
    }
    const int sum = std::accumulate(std::begin(rows), std::end(rows), 0,
                                    [](int all, const Row &row) { return all + row.weight; });
    int place = m_dice.below(sum);
    const Row *row = std::begin(rows);
    while (place >= row->weight)
        place -= (row++)->weight;
    const QString text = (this->*row->run)();
    m_log.note(QStringLiteral("router"), QString::fromLatin1(row->name), text);
}

void Trouble::heal()
{
    m_faults.clear();
    m_router.run([](RouterHost &host) {
        host.router.clearFaults();
        host.router.plug();
        host.router.setTrafficRate(1);
        host.router.setStartSpeed(RouterSimulator::defaultStartSpeed);
    });
}

void Trouble::answerSave()
{
    m_router.run([](RouterHost &host) { host.router.sendLine("$VRSRO\r\n"); });
}

// Small values: what comes late in a session of seconds never comes.
double Trouble::valueFor(const FaultInfo &info)
{
    switch (info.fault) {
    case Fault::SilentAfter:
    case Fault::BusyAfter:
    case Fault::Unplugged:
    case Fault::Replug:
        return m_dice.between(1, 20) / 10.0;
    case Fault::Slow:
    case Fault::FwLate:
        return m_dice.between(20, 800);
    case Fault::Noise:
    case Fault::InputErrors:
    case Fault::InputDamage:
        return m_dice.between(1, 60);
    case Fault::FwWrongNumber:
    case Fault::FwRepeat:
    case Fault::FwEarly:
    case Fault::FwSilentAt:
    case Fault::FwErrorAt:
        return m_dice.between(1, 12);
    default:
        return info.maximum > 0 ? m_dice.below(int(info.maximum) + 1) : 0;
    }
}

QString Trouble::setFault()
{
    // Every fault has its turn, those that end the connection half as often.
    const auto roll = [this] { return faultTable().at(m_dice.below(int(faultTable().size()))); };
    FaultInfo info = roll();
    if (isDeadly(info.fault) && m_dice.chance(50))
        info = roll();
    const double value = valueFor(info);
    m_faults.push_back(info.fault);
    m_router.run([&](RouterHost &host) { host.setFault(info.fault, value); });
    m_log.count(QStringLiteral("fault"), faultName(info.fault));
    return QStringLiteral("%1 %2").arg(faultName(info.fault)).arg(value);
}

QString Trouble::clearFaults()
{
    m_faults.clear();
    m_router.run([](RouterHost &host) { host.router.clearFaults(); });
    return QString();
}

QString Trouble::unplug()
{
    m_router.run([](RouterHost &host) { host.router.unplug(); });
    return QString();
}

QString Trouble::plug()
{
    m_router.run([](RouterHost &host) { host.router.plug(); });
    return QString();
}

QString Trouble::restart()
{
    m_router.run([](RouterHost &host) { host.router.restart(); });
    return QString();
}

QString Trouble::changeSpeed()
{
    // Every step of a search takes half a second, so mostly the first ones.
    constexpr int anySpeed = 20;
    const int baud = m_dice.chance(anySpeed) ? m_dice.pick(speeds) : speeds[m_dice.between(1, 2)];
    m_router.run([baud](RouterHost &host) { host.router.setStartSpeed(baud); });
    return QString::number(baud);
}

QString Trouble::flood()
{
    constexpr double rates[] = {0, 1, 1, 10, 200, RouterSimulator::maxTrafficRate};
    const double rate = m_dice.pick(rates);
    m_router.run([rate](RouterHost &host) { host.router.setTrafficRate(rate); });
    return QString::number(rate);
}

// Whole sentences with a right checksum, and a number in them that no router has. It is a byte: of
// a greater one the tool takes the low byte, which can be a good number.
QByteArray Trouble::outOfRangeBody()
{
    constexpr int greatestByte = 255;
    constexpr int lastSlotRow = 248; // the first of eight slots
    const QByteArray bad = decimal(m_dice.between(portCount, greatestByte));
    switch (m_dice.below(9)) {
    case 0:
        return "$VRSPD," + bad + ",9600";
    case 1:
        return "$VRSPD," + decimal(m_dice.below(portCount)) + ",9601";
    case 2:
        return "$VRRUL," + bad + ",W," + QByteArray(48, '0');
    case 3:
        return "$VRFLT," + bad + ",W,0," + QByteArray(48, 'F');
    case 4:
        return "$VRFLT," + decimal(m_dice.below(portCount)) + ",W," + bad + ','
            + QByteArray(48, 'F');
    case 5:
        return "$VRFLS," + decimal(m_dice.between(filterSlotCount, lastSlotRow))
            + ",AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH";
    case 6:
        return "$VRPNM,O," + decimal(m_dice.between(1, 5)) + ",a,b,c,d,e,f";
    case 7:
        return "$VRHDC," + bad + ",W" + QByteArray(",XX").repeated(12);
    default:
        return "$VRSTA," + bad + ",1,2,3,4,5";
    }
}

QString Trouble::sayOutOfRange()
{
    const QByteArray body = outOfRangeBody();
    m_router.run([&body](RouterHost &host) { host.router.sendChecked(body); });
    return QString::fromLatin1(body);
}

QString Trouble::sayAnything()
{
    QByteArray bytes;
    switch (m_dice.below(5)) {
    case 0:
        bytes = m_dice.bytes(m_dice.between(1, 400));
        break;
    case 1: // a line that never ends
        bytes = "$VRRUL,0,W," + QByteArray(m_dice.between(80, 600), 'F');
        break;
    case 2: // torn sentences
        bytes = withChecksum("$VRERR,0001,00").left(m_dice.between(1, 15)) + "\r\n";
        break;
    case 3:
        bytes = QByteArray("$VR\r\n$\r\n!\n$VRXYZ,1*00\r\n").repeated(m_dice.between(1, 10));
        break;
    default: // all kinds of heads with nothing behind them
        for (const char *code : {"SPD", "RUL", "FLT", "PNM", "HDC", "FLS", "VER", "VVW", "STA",
                                 "SER", "PWS", "PWV", "FBK", "AIM", "AIP"})
            bytes += withChecksum(QByteArray("$VR") + code + ',');
        break;
    }
    m_router.run([&bytes](RouterHost &host) { host.router.sendLine(bytes); });
    return QStringLiteral("%1 bytes").arg(bytes.size());
}

// Sentences that are valid, and that nobody asked for: the tool takes them, the router has them
// not.
QString Trouble::sayForeignConfig()
{
    const RouterConfig config = randomConfig(m_dice);
    const Output &output = config.outputs[0];
    QByteArray body = "$VRRUL," + decimal(m_dice.below(portCount)) + ",W,";
    // Sometimes of inputs that no router has.
    const bool isOdd = m_dice.chance(20);
    for (const Channel &channel : output.channels)
        body +=
            isOdd ? QByteArray("DEDE") : hex(channel.rulesByte(), 2) + hex(channel.flagsByte(), 2);
    const bool endsDownload = m_dice.chance(20);
    m_router.run([&](RouterHost &host) {
        host.router.sendChecked(body);
        if (endsDownload)
            host.router.sendLine("$VRWBL\r\n");
        host.countLoss();
    });
    return endsDownload ? QStringLiteral("with an end mark") : QString();
}

QString Trouble::sayOwnStatus()
{
    static const char *const bodies[] = {"$VRERR,0003,02",
                                         "$VRFBK,1",
                                         "$VRFBK,2",
                                         "$VRMOD,AB",
                                         "$VRMOD,",
                                         "$VRVER,3.9",
                                         "$VRSTA,3,1,2,3,4,4294967295",
                                         "$VRPWS,OK",
                                         "$VRPWS,ERROR",
                                         "$VRLCK,1,0",
                                         "$VRLCK,1,5",
                                         "$VRLCK,0,0",
                                         "$VRPWV,Secret1",
                                         "$VRFWP,3",
                                         "$VRFWE,9",
                                         "$VRCNU,4"};
    static const char *const lines[] = {"$VRSRO\r\n",    "$VRSRE\r\n",     "$VRFWR\r\n",
                                        "$VRVVW,37\r\n", "$VRVVW,255\r\n", "$VRVVW,222\r\n"};
    if (m_dice.chance(70)) {
        const QByteArray body = m_dice.pick(bodies);
        // In a connection that stands the answer to a query sets the tool's search going again.
        const bool isEnd = body.startsWith("$VRCNU");
        m_router.run([&](RouterHost &host) {
            host.router.sendChecked(body);
            if (isEnd)
                host.countLoss();
        });
        return QString::fromLatin1(body);
    }
    const QByteArray line = m_dice.pick(lines);
    m_router.run([&line](RouterHost &host) { host.router.sendLine(line); });
    return QString::fromLatin1(line.trimmed());
}

QString Trouble::changeVersion()
{
    constexpr int versions[][2] = {{4, 0}, {4, 0}, {4, 0}, {3, 5}, {3, 3}, {2, 9}};
    const auto &version = versions[m_dice.below(int(std::size(versions)))];
    m_router.run([&](RouterHost &host) { host.router.setVersion(version[0], version[1]); });
    return QStringLiteral("%1.%2").arg(version[0]).arg(version[1]);
}

QString Trouble::changeLock()
{
    const bool hasPassword = m_dice.chance(60);
    m_router.run([&](RouterHost &host) {
        host.router.setLockPassword(hasPassword ? QByteArray("Harbour1") : QByteArray());
    });
    return hasPassword ? QStringLiteral("by a password") : QStringLiteral("taken away");
}

RouterConfig Trouble::randomConfig(Dice &dice)
{
    const auto input = [&dice] {
        const int port = dice.below(2 * portCount);
        return quint8(port < portCount ? port : noPort);
    };
    RouterConfig config;
    for (Output &output : config.outputs) {
        for (Channel &channel : output.channels) {
            channel.mainInput = input();
            channel.reserveInput = input();
            channel.filterEnabled = dice.chance(30);
            channel.filterMask = dice.number();
            channel.filterType = dice.chance(50) ? FilterType::Black : FilterType::White;
            channel.crsEnabled = dice.chance(50);
            channel.hdrEnabled = dice.chance(30);
            channel.hdr = channel.hdrEnabled || dice.chance(30)
                ? dice.capitals(headerLength).toLatin1()
                : QByteArray();
            channel.smart = quint8(dice.below(8));
        }
    }
    for (quint32 &speed : config.speeds)
        speed = quint32(dice.pick(speeds));
    for (auto *names : {&config.inputNames, &config.outputNames}) {
        for (QByteArray &name : *names)
            name = dice.capitals(dice.below(maxNameLength + 1)).toLatin1();
    }
    for (QByteArray &formatter : config.filterList)
        formatter = dice.chance(50) ? dice.capitals(formatterLength).toLatin1() : QByteArray();
    return config;
}

// Somebody else has set the router up while the tool was away.
QString Trouble::newConfiguration()
{
    const RouterConfig config = m_dice.chance(30) ? RouterConfig::factory() : randomConfig(m_dice);
    bool isDone = false;
    m_router.run([&](RouterHost &host) {
        if (host.router.isConnected())
            return;
        host.router.setEeprom(config);
        host.router.setWorking(config);
        isDone = true;
    });
    return isDone ? QString() : QStringLiteral("(not while connected)");
}

QString Trouble::countErrors()
{
    const int port = m_dice.below(portCount);
    PortCounters counters;
    counters.print = m_dice.number();
    counters.crs = m_dice.number();
    counters.broken = quint32(m_dice.below(100));
    m_router.run([&](RouterHost &host) { host.router.setPortCounters(port, counters); });
    return QStringLiteral("of port %1").arg(port);
}
