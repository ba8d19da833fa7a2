#include "conversations.h"
#include "limits.h"
#include "matrixcheck.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#include <algorithm>

using namespace tk7sim;

// The connection: how it is made, how it ends, what remains of it.

namespace {

const QString windowTitle = QStringLiteral("Brelland Sea Works - TK-7 v4.0");
const QString linkTitle = QStringLiteral("COM Port");

constexpr QColor progressColor(0x00, 0xce, 0xff);
constexpr int secondSpeed = 9600; // that the tool tries

// Milliseconds.
constexpr int timeoutLimit = 4000;  // from the last sentence of the router to the end of the link
constexpr int timeoutMargin = 2000; // to see the box on a busy machine
// Of a processor, while the tool waits for a router that is gone. Under Wine it looks for bytes all
// the time.
constexpr double idleShare = 0.05;
constexpr double idleShareUnderWine = 0.2;

} // namespace

QString Tour::startTool()
{
    m_tool.start(QFileInfo(m_options.tool).absoluteFilePath(), m_options.wine, filesFolder());
    m_tool.adoptMainWindow(windowTitle);
    m_tool.restMouse();

    const QRect place = m_tool.mainWindow().place;
    require(place.width() == m_tool.map().width(),
            QStringLiteral("the window is %1 pixels wide in place of %2")
                .arg(place.width())
                .arg(m_tool.map().width()));
    require(m_tool.desktop().screen().contains(m_tool.mainWindow().frame),
            QStringLiteral("the window isn't on the screen"));
    awaitNoProblem([this] { return matrixProblem(m_tool, RouterConfig(), 0, viewNothing); },
                   Limit::paint);
    m_idleSaveButton = m_tool.look(m_tool.map().saveInRouter());
    m_idleConnectionLabels = m_tool.look(m_tool.map().connectionLabels());
    return QStringLiteral("\"%1\", %2 by %3 pixels, an empty matrix")
        .arg(windowTitle)
        .arg(place.width())
        .arg(place.height());
}

QString Tour::choosePort()
{
    choosePort(ports().port);
    return QStringLiteral("the list opens and closes, %1 was chosen").arg(ports().port);
}

void Tour::choosePort(const QString &name)
{
    m_tool.click(m_tool.map().portList());
    m_tool.awaitPopup(Limit::popup);
    m_tool.desktop().type(name);
    m_tool.desktop().strike("Return");
    m_tool.awaitNoPopup();
}

QString Tour::pressConnect()
{
    m_tool.click(m_tool.map().connectButton());
    const QRect place = m_tool.awaitPopup(Limit::popup).place;
    const auto isProgress = [&] {
        return shareOf(m_tool.pictureOnScreen(place), progressColor) > Story::mostly;
    };
    await(isProgress, Limit::paint,
          QStringLiteral("what popped up isn't the progress of the connection"));
    // The impatient hand: once more on the button, which lies beside the dialog, and a key.
    m_tool.desktop().press(XDesktop::LeftButton);
    m_tool.desktop().release(XDesktop::LeftButton);
    m_tool.desktop().strike("Escape");
    // The second speed: the bar has begun to move.
    const auto isTried = [this] {
        const QList<ReceivedLine> &tried = m_router.overheard();
        return std::any_of(tried.begin(), tried.end(),
                           [](const auto &line) { return line.lineSpeed == secondSpeed; });
    };
    await(isTried, Limit::paint,
          QStringLiteral("the tool doesn't go on to %1 baud").arg(secondSpeed));
    require(!m_router.isConnected(), QStringLiteral("the router is connected already"));
    require(isProgress(), QStringLiteral("the progress dialog doesn't stay"));
    return QStringLiteral("the progress dialog stays, while the tool tries %1 baud")
        .arg(m_router.lineSpeed());
}

QString Tour::awaitDownload()
{
    await([this] { return m_router.isConnected(); }, Limit::download,
          QStringLiteral("the router isn't connected"));
    require(!m_spareRouter.isConnected() && m_spareRouter.overheard().isEmpty(),
            QStringLiteral("the tool has spoken to the other router"));
    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::download);
    require(m_router.speed() == RouterSimulator::fastSpeed
                && m_router.lineSpeed() == RouterSimulator::fastSpeed,
            QStringLiteral("the router is at %1 baud and the terminal at %2")
                .arg(m_router.speed())
                .arg(m_router.lineSpeed()));
    m_listener.expect(Conversation::firstDownload(m_expected), Limit::hear);
    return QStringLiteral(
               "the router is found at %1 baud, both are at %2, the download is complete")
        .arg(Story::firstStartSpeed)
        .arg(m_router.lineSpeed());
}

QString Tour::readDownload()
{
    m_tool.acceptBox(m_box);
    awaitMatrix(viewNothing);
    require(m_tool.look(m_tool.map().saveInRouter()) != m_idleSaveButton,
            QStringLiteral("the save button is as it was before"));
    require(m_tool.look(m_tool.map().connectionLabels()) != m_idleConnectionLabels,
            QStringLiteral("nothing is told of the connection"));
    return QStringLiteral(
        "labels, check boxes, headers, smart buttons and speeds are the router's");
}

QString Tour::pressDisconnect()
{
    m_tool.acceptBox(m_box);
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::box);
    require(m_router.isConnected(), QStringLiteral("the router isn't connected any more"));
    m_listener.expectNothing();
    return QStringLiteral("the question \"%1\"").arg(m_box.title);
}

// Answers the question in the box.
void Tour::disconnect()
{
    m_tool.acceptBox(m_box);
    m_listener.expect({"$VRDCN\r\n"}, Limit::hear);
    await([this] { return !m_router.isConnected(); }, Limit::hear,
          QStringLiteral("the router is still connected"));
    awaitIdle();
}

QString Tour::confirmDisconnect()
{
    disconnect();
    return QStringLiteral("the router was told; the window is idle, with the last configuration");
}

QString Tour::connectAgain()
{
    m_router.setStartSpeed(RouterSimulator::defaultStartSpeed);
    connectAndDownload();
    return QStringLiteral("the saved configuration comes down, with the name");
}

// A box over a drag ends it, wherever the hand is at that moment.
void Tour::awaitBoxOverDrag(const QString &title, int milliseconds)
{
    constexpr int tremblePace = 5; // ms
    QTimer hand;
    int step = 1;
    QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
        step = -step;
        m_tool.desktop().moveTo(m_tool.desktop().pointer() + QPoint(step, 0));
    });
    hand.start(tremblePace);
    m_box = m_tool.awaitWindow(title, milliseconds);
    hand.stop();
    awaitNoDrag();
}

// The hand can let go, and the first click on the box counts.
void Tour::clickBoxOverDrag()
{
    m_tool.desktop().release(XDesktop::LeftButton);
    // The one button of a box lies in its lower right corner.
    const QPoint corner(m_box.place.width(), m_box.place.height());
    m_tool.clickAt(m_box, corner - QPoint(m_tool.map().scaled(45), m_tool.map().scaled(25)));
    m_tool.awaitGone(m_box);
}

// A router can send its rules again whenever it likes.
QString Tour::dragIntoDownload()
{
    dragLabel(m_tool.map().inputHome(Story::refusedInput),
              m_tool.map().mainCell(Story::freeChannel + 1));
    m_router.sendLine("$VRWBL\r\n");
    awaitBoxOverDrag(Story::routerTitle, Limit::box);
    // With the button still held down the window goes on painting.
    const QRect labels = m_tool.map().connectionLabels();
    const QImage before = m_tool.look(labels);
    m_router.sendChecked("$VRERR,0007,00");
    await([&] { return m_tool.look(labels) != before; }, Limit::paint,
          QStringLiteral("the picture stands still"));
    clickBoxOverDrag();
    awaitMatrix(viewNothing);
    m_listener.expectNothing();
    return QStringLiteral("the label is back, the box has heard the click, the picture goes on");
}

QString Tour::connectFromEverySpeed()
{
    const auto askToDisconnect = [this] {
        m_tool.click(m_tool.map().connectButton());
        m_box = m_tool.awaitWindow(Story::routerTitle, Limit::box);
    };
    for (const int speed :
         {9600, 19200, 38400, 57600, 115200, RouterSimulator::defaultStartSpeed}) {
        askToDisconnect();
        disconnect();
        m_router.setStartSpeed(speed);
        connectAndDownload(speed == RouterSimulator::fastSpeed ? 1 : 2);
    }
    return QStringLiteral("the router is found at each, and the configuration comes down");
}

QString Tour::openTakenPort()
{
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::box);
    disconnect();

    const QString program = QFileInfo(m_options.tool).absolutePath() + QStringLiteral("/tk7-rules");
    const QStringList arguments{QStringLiteral("record"), QStringLiteral("--input"),
                                QStringLiteral("0"), ports().sparePort};
    QProcess other;
    other.start(program, arguments);
    await([this] { return m_spareRouter.isConnected(); }, Limit::download,
          QStringLiteral("the other program doesn't connect to the other router"));

    choosePort(ports().sparePort);
    const int heard = int(m_spareRouter.transcript().size());
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(linkTitle, Limit::box);
    for (int i = heard; i < m_spareRouter.transcript().size(); ++i) {
        require(m_spareRouter.transcript()[i].line != "$VRCNT\r\n",
                QStringLiteral("the tool speaks on a port of another program"));
    }
    m_tool.acceptBox(m_box);
    awaitIdle();
    other.kill();
    other.waitForFinished();
    return QStringLiteral("the box \"%1\", and the window is idle").arg(linkTitle);
}

QString Tour::dragIntoTimeout()
{
    m_router.unplug();
    dragLabel(m_tool.map().inputHome(Story::refusedInput),
              m_tool.map().mainCell(Story::freeChannel + 1));
    awaitBoxOverDrag(linkTitle, timeoutLimit + timeoutMargin);
    clickBoxOverDrag();
    awaitIdle();
    m_router.restart();
    require(m_router.plug(), m_router.errorString());
    connectAndDownload();
    return QStringLiteral("the label is back, the box has heard the click, the window is idle");
}

QString Tour::pullCable()
{
    const double used = m_tool.processorTime();
    QElapsedTimer timer;
    timer.start();
    m_router.unplug();
    m_box = m_tool.awaitWindow(linkTitle, timeoutLimit + timeoutMargin);
    const double waited = secondsOf(timer);
    const double share = (m_tool.processorTime() - used) / waited;
    require(share < (m_tool.isForWindows() ? idleShareUnderWine : idleShare),
            QStringLiteral("the tool used %1 % of a processor").arg(share * 100, 0, 'f', 1));
    return QStringLiteral("the box \"%1\" after %2 s, in which the tool used %3 % of a processor")
        .arg(m_box.title)
        .arg(waited, 0, 'f', 1)
        .arg(share * 100, 0, 'f', 1);
}

QString Tour::plugCable()
{
    m_tool.acceptBox(m_box);
    awaitIdle();
    m_router.restart();
    require(m_router.plug(), m_router.errorString());
    connectAndDownload();
    return QStringLiteral("the window was idle, and the configuration comes down once more");
}

QString Tour::closeWindow()
{
    m_tool.desktop().strike("F4", "Alt_L");
    await([this] { return !m_tool.isRunning(); }, Limit::exit,
          QStringLiteral("the tool doesn't end"));
    require(!m_tool.hasCrashed(), QStringLiteral("the tool has crashed"));
    require(m_tool.exitCode() == 0,
            QStringLiteral("the tool ends with the code %1").arg(m_tool.exitCode()));
    m_listener.expectNothing();
    const QString output = m_tool.output();
    require(output.isEmpty(), QStringLiteral("the tool has written: ") + output);
    return QStringLiteral("the tool ends with the code 0 and has written no word");
}

// No connection, and what tells of one is gone; the configuration stays.
void Tour::awaitIdle()
{
    awaitMatrix(viewNothing);
    const ScreenMap &map = m_tool.map();
    await([&] { return m_tool.look(map.saveInRouter()) == m_idleSaveButton; }, Limit::paint,
          QStringLiteral("the save button isn't disabled"));
    await([&] { return m_tool.look(map.connectionLabels()) == m_idleConnectionLabels; },
          Limit::paint, QStringLiteral("the window still tells of a connection"));
}

// All speeds are shown already, so none goes back to the router. It is asked at its start speed and
// at the fast one, which may be the same.
void Tour::connectAndDownload(int queries)
{
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(Story::routerTitle, Limit::download);
    require(m_router.isConnected(), QStringLiteral("the router isn't connected"));
    m_listener.expect(Conversation::download().mid(2 - queries), Limit::hear);
    require(m_router.working() == m_expected && m_router.eeprom() == m_expected,
            QStringLiteral("the router doesn't have what was saved"));
    m_tool.acceptBox(m_box);
    awaitMatrix(viewNothing);
    require(label(m_tool.map().inputHome(Story::namedInput)) == m_namedLabel,
            QStringLiteral("the name on the label isn't the saved one"));
}
