#include "linkrig.h"
#include "support/checkedline.h"

#include <QtTest>

#include <sys/resource.h>

/*! The cable is pulled out: the tool waits at rest, ends by its own times, and connects again. */
class tst_NmeaSerialPortCable : public QObject
{
    Q_OBJECT

private slots:
    void pulledInTheSearch();
    void pulledInTheConnection();
    void pulledWithAQueue();
    void pulledWhileSuspended();
};

namespace {

constexpr int searchTime = 3500;
constexpr int watchTime = 4000;
constexpr int late = 900;
constexpr int early = 60;
constexpr double idleShare = 0.05;
const QString timedOut = QStringLiteral("VRTimeOutConnect()");

// The share of one core that this process uses while the object lives.
class CpuShare
{
public:
    CpuShare() : m_usedBefore(usedMicros()) { m_clock.start(); }

    double value() const
    {
        return double(usedMicros() - m_usedBefore) / (double(m_clock.nsecsElapsed()) / 1000);
    }

private:
    static qint64 usedMicros()
    {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        const auto micros = [](const timeval &time) {
            return qint64(time.tv_sec) * 1000000 + time.tv_usec;
        };
        return micros(usage.ru_utime) + micros(usage.ru_stime);
    }

    qint64 m_usedBefore;
    QElapsedTimer m_clock;
};

// QTRY_ macros look every few milliseconds; this one sleeps until the signal comes.
bool waitForTimeOut(QSignalSpy &spy)
{
    return spy.count() > 0 || spy.wait(2 * watchTime);
}

QString percent(double share)
{
    return QStringLiteral("%1 % of a core").arg(100 * share, 0, 'f', 2);
}

void connectsAgain()
{
    LinkRig fresh(LinkRig::routerAt(19200));
    QVERIFY(fresh.openAndConnect());
    QCOMPARE(fresh.pty().speed(), 115200);
}

} // namespace

void tst_NmeaSerialPortCable::pulledInTheSearch()
{
    LinkRig rig;
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    rig.open();
    const qint64 opened = rig.journal().elapsed();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    const CpuShare share;
    rig.pty().hangUp();
    QVERIFY(waitForTimeOut(end));
    const double used = share.value();
    const qint64 took = rig.journal().timeOf(timedOut) - opened;
    QVERIFY2(took >= searchTime - early && took <= searchTime + late,
             qPrintable(QString::number(took)));
    QVERIFY2(used < idleShare, qPrintable(percent(used)));
    QCOMPARE(rig.journal().texts(),
             (QStringList{"-> $VRCNT @4800", "VRConnectionProgress(15)", "VRConnectionProgress(30)",
                          "VRConnectionProgress(45)", "VRConnectionProgress(60)",
                          "VRConnectionProgress(75)", "VRConnectionProgress(90)",
                          "VRConnectionProgress(100)", timedOut}));
    connectsAgain();
}

void tst_NmeaSerialPortCable::pulledInTheConnection()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    QSignalSpy heard(rig.link(), &NmeaSerialPort::signalVRVersion);
    QVERIFY(rig.pty().write(checkedLine("$VRVER,3.4")));
    QVERIFY(heard.wait());
    const qint64 lastHeard = rig.journal().timeOf("VRVersion(3, 4)");
    const CpuShare share;
    rig.pty().hangUp();
    QVERIFY(waitForTimeOut(end));
    const double used = share.value();
    const qint64 took = rig.journal().timeOf(timedOut) - lastHeard;
    QVERIFY2(took >= watchTime - early && took <= watchTime + late,
             qPrintable(QString::number(took)));
    QVERIFY2(used < idleShare, qPrintable(percent(used)));
    QCOMPARE(rig.journal().texts().last(), timedOut);
    QCOMPARE(end.count(), 1);
    connectsAgain();
}

// A save in the router: sentences wait in the queue when the cable goes.
void tst_NmeaSerialPortCable::pulledWithAQueue()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    for (int i = 0; i < 80; ++i)
        QVERIFY(rig.link()->sendSentence(QStringLiteral("$VRQ%1\r\n").arg(i)));
    QTRY_VERIFY(rig.journal().contains("-> $VRQ9 @115200"));
    const qint64 connectedAt = rig.journal().timeOf("VRConnect(3)");
    const CpuShare share;
    rig.pty().hangUp();
    QVERIFY(waitForTimeOut(end));
    const double used = share.value();
    const qint64 took = rig.journal().timeOf(timedOut) - connectedAt;
    QVERIFY2(took >= watchTime - early && took <= watchTime + late,
             qPrintable(QString::number(took)));
    QVERIFY2(used < idleShare, qPrintable(percent(used)));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
    connectsAgain();
}

// The watch is off while the router restarts: nothing ends the connection, and nothing spins.
void tst_NmeaSerialPortCable::pulledWhileSuspended()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.link()->suspendConfirm();
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    const CpuShare share;
    rig.pty().hangUp();
    QVERIFY(!end.wait(watchTime / 4));
    const double used = share.value();
    QVERIFY2(used < idleShare, qPrintable(percent(used)));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortCable)
#include "tst_nmeaserialport_cable.moc"
