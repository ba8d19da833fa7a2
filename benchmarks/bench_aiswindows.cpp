#include "aisdialogs/aistestdlg.h"
#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "platform/keyboard.h"
#include "simulator/router/routersimulator.h"
#include "support/aistestuser.h"
#include "support/boxanswer.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPushButton>
#include <QSemaphore>
#include <QTableWidget>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>

/*!
 * What the windows of an AIS test cost on a saturated line, and how long they keep the event loop
 * waiting. The real window runs the test on a pseudo-terminal; the router and its world run in a
 * thread of their own, which isn't counted.
 */

namespace {

constexpr double msecsPerSecond = 1000;
constexpr double nsecsPerMsec = 1e6;
constexpr int lookInterval = 20; // ms

// The columns of the test's table.
constexpr int targetsColumn = 3;
constexpr int listColumn = 4;

// Milliseconds of the processor that this thread has had.
double threadMsecs()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * msecsPerSecond + double(time.tv_nsec) / nsecsPerMsec;
}

// Goes on in the event loop; QTest's waits sleep in between, and would be measured, too.
bool waitFor(const std::function<bool()> &isDone, int milliseconds)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isDone())
            loop.quit();
    });
    look.start(lookInterval);
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    return isDone();
}

void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// The router in its thread.
class RouterThread : public QThread
{
public:
    RouterThread(int vessels, const QVector<int> &ports) : m_vessels(vessels), m_ports(ports)
    {
        start();
        m_isOpen.acquire();
    }

    ~RouterThread() override
    {
        quit();
        wait();
    }

    QString deviceName() const { return m_deviceName; }

protected:
    void run() override
    {
        tk7sim::RouterSimulator router;
        router.setTrafficRate(tk7sim::RouterSimulator::maxTrafficRate);
        router.setAisVessels(m_vessels);
        router.setAisPorts(m_ports);
        if (!router.open())
            qFatal("no pseudo-terminal: %s", qPrintable(router.errorString()));
        m_deviceName = router.deviceName();
        m_isOpen.release();
        exec();
    }

private:
    int m_vessels;
    QVector<int> m_ports;
    QString m_deviceName;
    QSemaphore m_isOpen;
};

// How long this thread has worked at a stretch: from one look of its event loop at what has come
// to the next, in processor time. Nothing is added to what it does.
class Stretch : public QObject
{
public:
    Stretch() : m_begin(threadMsecs())
    {
        auto *loop = QAbstractEventDispatcher::instance();
        connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            const double now = threadMsecs();
            m_longest = qMax(m_longest, now - m_begin);
            m_begin = now;
        });
    }

    double longest() const { return m_longest; } //!< ms

private:
    double m_begin;
    double m_longest = 0;
};

struct Load
{
    const char *name;
    int vessels;
    QVector<int> ports; // empty: all
    int shareAim;       // per cent of a core
    int workAim;        // ms at a stretch
};

// A run of the AIS test under one load: its phases, a line of the table for each.
class Run
{
public:
    Run(const Load &load, int seconds) : m_load(load), m_seconds(seconds) { }

    bool isMet() const { return m_isMet; }

    /*! False if the test has not come through. */
    bool go()
    {
        const RouterThread router(m_load.vessels, m_load.ports);
        MainWindow window;
        window.show();
        auto boxes = std::make_unique<BoxAnswer>();
        boxes->expect({QStringLiteral("TK-7 Router"),
                       QStringLiteral("NMEA Router TK-7 connected\n   Download rules complete"),
                       QMessageBox::Information});
        auto *device = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
        device->addItem(router.deviceName());
        device->setCurrentText(router.deviceName());
        click(window, "pushButton_connect", true);
        constexpr int longestDownload = 20000; // ms
        if (!waitFor([&] { return boxes->isDone() && window.isConnected(); }, longestDownload))
            return false;
        boxes.reset();       // it looks for boxes all the time
        wait(longestAnswer); // the version is told behind the download
        QObject::connect(window.currentLink(), &NmeaSerialPort::signalVRAISMessage, &window,
                         [this] { ++m_sentences; });

        QTimer::singleShot(0, &window, [&] {
            if (auto *service = QApplication::activeModalWidget())
                click(*service, "pushButton_AisTest");
        });
        const AisTestUser user([this](aistestdlg &dialog) { measure(dialog); });
        click(window, "pushButton_Service");
        return user.hasCome() && m_hasMeasured;
    }

private:
    static constexpr int longestAnswer = 1000; // ms
    static constexpr int longestFill = 120000; // ms

    static void click(const QWidget &window, const char *name, bool enable = false)
    {
        auto *button = window.findChild<QPushButton *>(QString::fromLatin1(name));
        if (enable)
            button->setEnabled(true);
        button->click();
    }

    void measure(aistestdlg &dialog)
    {
        m_table = dialog.findChild<QTableWidget *>(QStringLiteral("ais_table"));
        const int enough = m_load.vessels * 9 / 10;
        phase("no list, vessels arriving",
              [&] { waitFor([&] { return targetCount() >= enough; }, longestFill); });
        phase("no list");
        phase(
            "opening a list", [&] { open(0); }, 1);
        phase("one list");
        for (int row = 1; row < m_table->rowCount(); ++row)
            open(row);
        wait(longestAnswer);
        phase("all lists");
        m_hasMeasured = true;
    }

    void open(int row)
    {
        m_table->cellWidget(row, listColumn)->findChild<QPushButton *>()->click();
        wait(lookInterval);
    }

    int targetCount() const
    {
        int count = 0;
        for (int row = 0; row < m_table->rowCount(); ++row)
            count += m_table->item(row, targetsColumn)->text().toInt();
        return count;
    }

    void phase(const char *name)
    {
        phase(name, [this] { wait(m_seconds * 1000); });
    }

    void phase(const char *name, const std::function<void()> &use, int leastSeconds = 0)
    {
        const qint64 sentencesBefore = m_sentences;
        QElapsedTimer clock;
        clock.start();
        const double before = threadMsecs();
        const Stretch stretch;
        use();
        wait(leastSeconds * 1000);
        const double used = threadMsecs() - before;
        const auto elapsed = double(clock.nsecsElapsed()) / nsecsPerMsec;
        const double share = 100 * used / elapsed;
        std::printf("%-22s %-26s %5d %8d %11.0f %8.1f %% %9.1f\n", m_load.name, name,
                    m_table->rowCount(), targetCount(),
                    double(m_sentences - sentencesBefore) * msecsPerSecond / elapsed, share,
                    stretch.longest());
        std::fflush(stdout);
        m_isMet = m_isMet && share < m_load.shareAim && stretch.longest() < m_load.workAim;
    }

    Load m_load;
    int m_seconds;
    QTableWidget *m_table = nullptr;
    qint64 m_sentences = 0;
    bool m_hasMeasured = false;
    bool m_isMet = true;
};

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("seconds"), QStringLiteral("Length of a phase."),
                      QStringLiteral("n"), QStringLiteral("10")});
    parser.addOption({QStringLiteral("load"),
                      QStringLiteral("Only the load of this number, from 1."), QStringLiteral("n"),
                      QStringLiteral("0")});
    parser.process(app);
    const int seconds = parser.value(QStringLiteral("seconds")).toInt();
    const int only = parser.value(QStringLiteral("load")).toInt();
    platform::setLeftControlSource([] { return true; });

    // Some vessels are heard at several ports, so 5,000 make 500 on each of twelve.
    const Load loads[] = {
        {"10 on each port", 100, {}, 10, 20},
        {"500 on each port", 5000, {}, 5, 20},
        {"3,000 on one port", 3000, {3}, 25, 250},
    };
    std::printf("AIS test on a saturated line of 115200 baud\n\n");
    std::printf("%-22s %-26s %5s %8s %11s %10s %9s\n", "load", "windows", "ports", "targets",
                "sentences/s", "core", "busy, ms");
    bool isMet = true;
    for (const Load &load : loads) {
        if (only > 0 && &load != &loads[only - 1])
            continue;
        Run run(load, seconds);
        if (!run.go()) {
            std::printf("The test did not come through.\n");
            return 1;
        }
        std::printf("Under %d %% of a core and %d ms of work at a stretch: %s\n\n", load.shareAim,
                    load.workAim, run.isMet() ? "met" : "missed");
        isMet = isMet && run.isMet();
    }
    return isMet ? 0 : 1;
}
