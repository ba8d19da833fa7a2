#include "monitoredtool.h"

#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "support/boxanswer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QSocketNotifier>
#include <QTest>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr int downloadLimit = 15000; // ms
constexpr int ticksPerSecond = 5;    // of the monitor

template <typename Widget> Widget *find(const MainWindow *window, const char *name)
{
    auto *widget = window->findChild<Widget *>(QString::fromLatin1(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

} // namespace

int MonitoredTool::run(int argc, char *argv[], const QString &device)
{
    QApplication application(argc, argv);
    MainWindow window;
    window.show();
    MonitoredTool tool(&window);
    if (!tool.connectTo(device))
        return 1;
    tool.watchPort();

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    connect(&input, &QSocketNotifier::activated, &tool, [&] {
        char order[64];
        const ssize_t size = ::read(STDIN_FILENO, order, sizeof order);
        if (size <= 0)
            QApplication::quit();
        else
            tool.obey(QByteArray(order, int(size)).trimmed());
    });
    return QApplication::exec();
}

MonitoredTool::MonitoredTool(MainWindow *window)
    : m_window(window), m_list(find<QListWidget>(window, "listWidget"))
{
    connect(&m_flood, &QTimer::timeout, this, &MonitoredTool::floodOneTick);
    m_list->viewport()->installEventFilter(this);
}

bool MonitoredTool::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint)
        ++m_paints;
    return QObject::eventFilter(watched, event);
}

bool MonitoredTool::connectTo(const QString &device)
{
    auto *ports = find<QComboBox>(m_window, "comboBox_connect_port");
    ports->addItem(device);
    ports->setCurrentText(device);
    auto *button = find<QAbstractButton>(m_window, "pushButton_connect");
    button->setEnabled(true);

    // Ends with the download: it looks for boxes all the time, which would be measured.
    BoxAnswer boxes;
    boxes.expect({QStringLiteral("TK-7 Router"),
                  QStringLiteral("NMEA Router TK-7 connected\n   Download rules complete"),
                  QMessageBox::Information});
    button->click();
    return QTest::qWaitFor([&] { return boxes.answered() > 0; }, downloadLimit)
        && m_window->isConnected();
}

void MonitoredTool::watchPort()
{
    connect(m_window->currentLink(), &NmeaSerialPort::signalNMEA_receive, this,
            [this](const QString &line) { m_bytes += line.size(); });
    find<QAbstractButton>(m_window, "pushButton_output_port_0")->click();
}

void MonitoredTool::obey(const QByteArray &order)
{
    if (order == countOrder) {
        tellCount();
        return;
    }
    const QList<QByteArray> words = order.split(' ');
    if (words.size() != 3 || words[0] != floodOrder)
        return;
    m_partsLeft = words[1].toInt();
    m_floodBytes = words[2].toLongLong() * lineBytesPerSecond;
    m_floodLeft = m_floodBytes;
    m_flood.start();
}

void MonitoredTool::tellCount()
{
    std::printf("%lld %lld %d\n", static_cast<long long>(m_bytes), static_cast<long long>(m_paints),
                m_list->count());
    std::fflush(stdout);
}

// What comes between two ticks of the monitor, and the tick. The event loop runs in between, so the
// window is painted as often as if the traffic took its time.
void MonitoredTool::floodOneTick()
{
    QByteArray bytes;
    while (bytes.size() < lineBytesPerSecond / ticksPerSecond)
        bytes += m_stream.nextLine();
    m_floodLeft -= bytes.size();
    if (NmeaSerialPort *link = m_window->currentLink())
        link->receiveBytes(bytes.constData(), int(bytes.size()));
    m_window->slotStringTimer();
    if (m_floodLeft > 0)
        return;
    tellCount();
    m_floodLeft = m_floodBytes;
    if (--m_partsLeft == 0)
        m_flood.stop();
}
