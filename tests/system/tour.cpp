#include "tour.h"

#include "matrixcheck.h"
#include "simulator/sentence.h"
#include "stepfailure.h"
#include "wait.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>

using namespace tk7sim;

namespace {

const QString windowTitle = QStringLiteral("Brelland Sea Works - TK-7 v4.0");
const QString routerTitle = QStringLiteral("TK-7 Router");
const QString saveTitle = QStringLiteral("Save Rules");
const QString linkTitle = QStringLiteral("COM Port");

const QString sparePort = QStringLiteral("router-a");
const QString port = QStringLiteral("router-b");

// The fourth of the speeds that the tool tries, so that there is time to see it try.
constexpr int firstStartSpeed = 38400;

constexpr QColor progressColor(0x00, 0xce, 0xff);
constexpr QColor waitColor(240, 102, 104);
constexpr QColor rs422(5, 0, 180);
constexpr double mostly = 0.4; // share of a ground's colour that a text leaves

// Milliseconds.
constexpr int paintLimit = 2000;
constexpr int popupLimit = 2000;
constexpr int boxLimit = 5000;
constexpr int hearLimit = 2000;
constexpr int downloadLimit = 10000;
constexpr int uploadLimit = 6000;
constexpr int saveLimit = 4000;
constexpr int timeoutLimit = 4000; // from the last sentence of the router to the end of the link
constexpr int timeoutMargin = 300; // to see the box
constexpr int exitLimit = 5000;
constexpr double idleShare = 0.05; // of a processor, while the tool waits for a router that is gone

// What the tour does in the matrix.
constexpr int chosenOutput = 5;
constexpr int draggedInput = 3;
constexpr int refusedInput = 4;
constexpr int freeChannel = 2;
constexpr int namedInput = 11;
constexpr int namedOutput = 2;
constexpr int viewedInput = 4;
constexpr quint32 newSpeed = 9600;
const QString newName = QStringLiteral("GYRO2");
const QString newOutputName = QStringLiteral("Radar-S");
constexpr int uploadLength = 80;
constexpr double shortestPace = 24; // ms a sentence, where 25 are due
constexpr double microsecondsPerMillisecond = 1000;

constexpr int wholePort = 15; // in the low nibble of a view code: no single channel

QByteArray number(int value)
{
    return QByteArray::number(value);
}

// What the router shows: an output port with a channel or as a whole, or an input port.
constexpr int viewCode(int high, int low)
{
    return 16 * high + low;
}

QByteArray viewSentence(int code)
{
    return "$VRVVW," + number(code) + "\r\n";
}

QByteArray speedSentence(int portNumber, quint32 speed)
{
    return withChecksum("$VRSPD," + number(portNumber) + ',' + QByteArray::number(speed));
}

// A speed that comes down goes straight back to the router if the tool showed another one.
QList<QByteArray> downloadConversation(const RouterConfig &config)
{
    constexpr quint32 speedAtStart = 4800;
    QList<QByteArray> lines{"$VRCNT\r\n", "$VRCNT\r\n", "$VRRLD\r\n"};
    for (int i = 0; i < portCount; ++i) {
        if (config.speeds[size_t(i)] != speedAtStart)
            lines += speedSentence(i, config.speeds[size_t(i)]);
    }
    return lines << "$VRVER\r\n";
}

QList<QByteArray> uploadConversation(const RouterConfig &config)
{
    QList<QByteArray> lines;
    for (int i = 0; i < portCount; ++i) {
        const QByteArray head = number(i) + ",B,";
        lines << "$VRRUL," + head << "$VRFLT," + head + "0,"
              << "$VRFLT," + head + "6,"
              << "$VRHDC," + head << "$VRWBL\r\n"
              << speedSentence(i, config.speeds[size_t(i)]);
    }
    lines << "$VRFLS,0,"
          << "$VRFLS,8,"
          << "$VRFLS,16,"
          << "$VRFLS,24,";
    lines << "$VRPNM,O,0,"
          << "$VRPNM,O,6,"
          << "$VRPNM,I,0,"
          << "$VRPNM,I,6,";
    return lines;
}

QList<QByteArray> saveConversation(const RouterConfig &config)
{
    return uploadConversation(config) << "$VRSVR\r\n";
}

double secondsOf(const QElapsedTimer &timer)
{
    constexpr double millisecondsPerSecond = 1000;
    return static_cast<double>(timer.elapsed()) / millisecondsPerSecond;
}

} // namespace

const Tour::Step Tour::steps[] = {
    {"start", "start the tool", &Tour::startTool},
    {"port", "choose the router's port in the list", &Tour::choosePort},
    {"connecting", "press Connect", &Tour::pressConnect},
    {"downloaded", "wait for the configuration", &Tour::awaitDownload},
    {"matrix", "close the box, read the matrix", &Tour::readDownload},
    {"outputs", "select one output port after the other", &Tour::selectOutputs},
    {"output", "select output port 5", &Tour::selectOutput},
    {"drag", "drag input port 3 over the Main cell of channel 2", &Tour::dragPort},
    {"drop", "let go", &Tour::dropPort},
    {"drag-occupied", "drag input port 4 over the same cell", &Tour::dragOntoOccupied},
    {"refused", "let go", &Tour::dropRefused},
    {"view-channel", "press the button of channel 2", &Tour::viewChannel},
    {"name", "right click on input port 11, type a name", &Tour::openNameEditor},
    {"named", "strike Return", &Tour::enterName},
    {"abandoned", "type another name, strike Escape; and again, click elsewhere",
     &Tour::abandonName},
    {"name-output", "right click on output port 2, type over its name, strike Return",
     &Tour::nameOutput},
    {"speeds", "open the speeds of port 5", &Tour::openSpeedList},
    {"speed", "choose 9600", &Tour::chooseSpeed},
    {"view-input", "click on input port 4", &Tour::viewInput},
    {"paused", "pause the monitor, and go on", &Tour::pauseMonitor},
    {"folded", "fold the panel", &Tour::foldPanel},
    {"unfolded", "unfold it", &Tour::unfoldPanel},
    {"widened", "show the speeds of the inputs", &Tour::widenWindow},
    {"narrowed", "hide them again", &Tour::narrowWindow},
    {"file-saved", "press Save Rules to File, type a name, strike Return", &Tour::saveFile},
    {"returned", "press >>", &Tour::returnInputs},
    {"file-loaded", "press Load Rules from File, type the name, strike Return", &Tour::loadFile},
    {"save", "close the box, press Save Rules in Router", &Tour::pressSave},
    {"saving", "answer Ok", &Tour::confirmSave},
    {"saved", "wait for the router", &Tour::awaitSaved},
    {"disconnect", "close the box, press Disconnect", &Tour::pressDisconnect},
    {"disconnected", "answer Ok", &Tour::confirmDisconnect},
    {"again", "connect again", &Tour::connectAgain},
    {"timeout", "pull the cable out", &Tour::pullCable},
    {"replugged", "close the box, put the cable back, connect", &Tour::plugCable},
    {"end", "close the window", &Tour::closeWindow},
};

Tour::Tour(const Options &options)
    : m_options(options), m_expected(RouterConfig::factory()), m_listener(m_router)
{
}

bool Tour::run()
{
    prepare();
    QElapsedTimer timer;
    timer.start();
    int number = 0;
    for (const Step &step : steps) {
        if (!runStep(++number, step))
            return false;
    }
    std::printf("tour: %d steps in %.1f s, pictures in %s\n", number, secondsOf(timer),
                qPrintable(QDir::toNativeSeparators(m_options.output)));
    return true;
}

void Tour::prepare()
{
    QDir folder(m_options.output);
    require(folder.mkpath(QStringLiteral(".")),
            QStringLiteral("the folder %1 can't be made").arg(m_options.output));
    const QStringList old = folder.entryList({QStringLiteral("[0-9][0-9]-*.png")}, QDir::Files);
    for (const QString &picture : old)
        folder.remove(picture);

    m_spareRouter.setPublishedName(sparePort);
    m_router.setPublishedName(port);
    m_router.setStartSpeed(firstStartSpeed);
    for (RouterSimulator *router : {&m_spareRouter, &m_router}) {
        require(router->open(), router->errorString());
        require(!router->portName().isEmpty(), router->publishError());
    }
}

bool Tour::runStep(int number, const Step &step)
{
    QElapsedTimer timer;
    timer.start();
    QString seen;
    QString problem;
    try {
        seen = (this->*step.run)();
        savePicture(number, QLatin1String(step.name));
    } catch (const StepFailure &failure) {
        problem = failure.text;
    }
    const bool isGood = problem.isEmpty();
    std::printf("%2d  %s: %s (%.1f s)\n", number, step.deed,
                isGood ? qPrintable(seen) : qPrintable(QStringLiteral("FAILED: ") + problem),
                secondsOf(timer));
    std::fflush(stdout);
    if (isGood)
        return true;
    if (m_tool.isRunning())
        savePicture(number, QLatin1String(step.name) + QStringLiteral("-failed"));
    const QString output = m_tool.output();
    if (!output.isEmpty())
        std::fprintf(stderr, "The tool has written:\n%s\n", qPrintable(output));
    return false;
}

// The last step leaves nothing to be seen.
void Tour::savePicture(int number, const QString &name)
{
    if (!m_tool.isRunning())
        return;
    const QImage picture = m_tool.picture();
    if (picture.isNull())
        return;
    constexpr int digits = 2;
    const QString file = QStringLiteral("%1/%2-%3.png")
                             .arg(m_options.output)
                             .arg(number, digits, 10, QLatin1Char('0'))
                             .arg(name);
    require(picture.save(file), QStringLiteral("%1 can't be written").arg(file));
}

QString Tour::startTool()
{
    m_tool.start(m_options.tool);
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
                   paintLimit);
    m_idleSaveButton = m_tool.look(m_tool.map().saveInRouter());
    m_idleConnectionLabels = m_tool.look(m_tool.map().connectionLabels());
    return QStringLiteral("\"%1\", %2 by %3 pixels, an empty matrix")
        .arg(windowTitle)
        .arg(place.width())
        .arg(place.height());
}

QString Tour::choosePort()
{
    m_tool.click(m_tool.map().portList());
    m_tool.awaitPopup(popupLimit);
    m_tool.desktop().type(port);
    m_tool.desktop().strike("Return");
    m_tool.awaitNoPopup();
    return QStringLiteral("the list opens and closes, %1 was chosen").arg(port);
}

QString Tour::pressConnect()
{
    m_tool.click(m_tool.map().connectButton());
    const QRect place = m_tool.awaitPopup(popupLimit).place;
    await([&] { return shareOf(m_tool.pictureOnScreen(place), progressColor) > mostly; },
          paintLimit, QStringLiteral("what popped up isn't the progress of the connection"));
    // The second speed: the bar has begun to move.
    await([this] { return m_router.lineSpeed() == 9600; }, paintLimit,
          QStringLiteral("the tool doesn't go on to 9600 baud"));
    require(!m_router.isConnected(), QStringLiteral("the router is connected already"));
    return QStringLiteral("the progress dialog, while the tool tries %1 baud")
        .arg(m_router.lineSpeed());
}

QString Tour::awaitDownload()
{
    await([this] { return m_router.isConnected(); }, downloadLimit,
          QStringLiteral("the router isn't connected"));
    require(!m_spareRouter.isConnected() && m_spareRouter.overheard().isEmpty(),
            QStringLiteral("the tool has spoken to the other router"));
    m_box = m_tool.awaitWindow(routerTitle, downloadLimit);
    require(m_router.speed() == RouterSimulator::fastSpeed
                && m_router.lineSpeed() == RouterSimulator::fastSpeed,
            QStringLiteral("the router is at %1 baud and the terminal at %2")
                .arg(m_router.speed())
                .arg(m_router.lineSpeed()));
    m_listener.expect(downloadConversation(m_expected), hearLimit);
    return QStringLiteral(
               "the router is found at %1 baud, both are at %2, the download is complete")
        .arg(firstStartSpeed)
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

QString Tour::selectOutputs()
{
    for (int output = 0; output < portCount; ++output)
        select(output);
    return QStringLiteral("the channels of all of them are the router's");
}

QString Tour::selectOutput()
{
    select(chosenOutput);
    return QStringLiteral("its channels, its button in orange; the router shows its traffic");
}

QString Tour::dragPort()
{
    const Channel &channel = m_router.working().outputs[chosenOutput].channels[freeChannel];
    require(channel.mainInput == noPort, QStringLiteral("the cell isn't empty"));
    dragLabel(m_tool.map().inputHome(draggedInput), m_tool.map().mainCell(freeChannel));
    return QStringLiteral("the label's picture is under the pointer");
}

QString Tour::dropPort()
{
    const RouterConfig before = m_expected;
    m_expected.outputs[chosenOutput].channels[freeChannel].mainInput = draggedInput;
    require(m_router.working() == before, QStringLiteral("the router was told before the drop"));
    m_tool.desktop().release(XDesktop::LeftButton);
    m_tool.awaitNoPopup();
    m_listener.expect({"$VRRUL," + number(chosenOutput) + ",W,"}, hearLimit);
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't what was dropped"));
    awaitMatrix(m_router.view());
    return QStringLiteral("the label lies in the cell; the router has the rule");
}

QString Tour::dragOntoOccupied()
{
    dragLabel(m_tool.map().inputHome(refusedInput), m_tool.map().mainCell(freeChannel));
    return QStringLiteral("the label's picture is under the pointer");
}

QString Tour::dropRefused()
{
    m_tool.desktop().release(XDesktop::LeftButton);
    m_tool.awaitNoPopup();
    awaitMatrix(m_router.view());
    return QStringLiteral("every label is where it was");
}

// What the tool sends stays in order: had the refused drop sent anything, it would come first.
QString Tour::viewChannel()
{
    m_tool.click(m_tool.map().channelButton(freeChannel));
    m_listener.expect({viewSentence(viewCode(chosenOutput, freeChannel))}, hearLimit);
    require(m_router.working() == m_expected, QStringLiteral("a refused drop changed the rules"));
    awaitMatrix(viewCode(chosenOutput, freeChannel));
    return QStringLiteral("the button is orange; the router has heard nothing of the refused drop");
}

QString Tour::openNameEditor()
{
    const QRect home = m_tool.map().inputHome(namedInput);
    m_unnamedLabel = label(home);
    openEditor(home);
    const QImage empty = label(home);
    m_tool.desktop().type(newName);
    await([&] { return shareOf(label(home), Qt::black) > shareOf(empty, Qt::black); }, paintLimit,
          QStringLiteral("the keys don't reach the editor"));
    // A comma would break a sentence, so it can't be typed.
    m_tool.desktop().type(QStringLiteral(","));
    return QStringLiteral("an editor in place of the label, with the name in it");
}

QString Tour::enterName()
{
    const QRect home = m_tool.map().inputHome(namedInput);
    m_tool.desktop().strike("Return");
    awaitMatrix(m_router.view());
    m_namedLabel = label(home);
    require(m_namedLabel != m_unnamedLabel, QStringLiteral("the label's text is what it was"));
    m_listener.expectNothing();
    return QStringLiteral("the label is back with another text; the router isn't told yet");
}

// Neither key nor click may store the text, and the click may press nothing else.
QString Tour::abandonName()
{
    const QRect home = m_tool.map().inputHome(namedInput);
    const auto abandon = [&](const std::function<void()> &leave) {
        openEditor(home);
        m_tool.desktop().type(QStringLiteral("X"));
        leave();
        m_tool.restMouse();
        await([&] { return label(home) == m_namedLabel; }, paintLimit,
              QStringLiteral("the label isn't as it was"));
    };
    abandon([this] { m_tool.desktop().strike("Escape"); });
    abandon([this] { m_tool.click(m_tool.map().channelButton(freeChannel + 1)); });
    // The next click is one again, and the first one that the router hears of.
    m_tool.click(m_tool.map().channelButton(freeChannel));
    m_listener.expect({viewSentence(viewCode(chosenOutput, freeChannel))}, hearLimit);
    awaitMatrix(m_router.view());
    return QStringLiteral(
        "the name is as it was; the click did nothing else, and the next one works");
}

QString Tour::nameOutput()
{
    const QRect button = m_tool.map().outputButton(namedOutput);
    const QImage before = m_tool.look(button);
    openEditor(button);
    m_tool.desktop().strike("a", "Control_L");
    m_tool.desktop().type(newOutputName);
    m_tool.desktop().strike("Return");
    awaitMatrix(m_router.view());
    require(m_tool.look(button) != before, QStringLiteral("the button's text is what it was"));
    m_listener.expectNothing();
    return QStringLiteral("the button has another text; the router isn't told yet");
}

QString Tour::openSpeedList()
{
    m_tool.click(m_tool.map().outputSpeed(chosenOutput));
    m_tool.awaitPopup(popupLimit);
    return QStringLiteral("the list opens");
}

QString Tour::chooseSpeed()
{
    m_tool.desktop().type(QString::number(newSpeed));
    m_tool.desktop().strike("Return");
    m_tool.awaitNoPopup();
    m_expected.speeds[chosenOutput] = newSpeed;
    m_listener.expect({speedSentence(chosenOutput, newSpeed)}, hearLimit);
    require(m_router.working() == m_expected, QStringLiteral("the router has another speed"));
    awaitMatrix(m_router.view());
    return QStringLiteral("the router has the speed");
}

QString Tour::viewInput()
{
    m_tool.click(m_tool.map().inputHome(viewedInput));
    constexpr int code = viewCode(noPort, viewedInput);
    m_listener.expect({viewSentence(code)}, hearLimit);
    require(m_router.view() == code, QStringLiteral("the router shows another port"));
    awaitMatrix(code);

    // New lines move the old ones up, time after time.
    constexpr int changes = 3;
    for (int i = 0; i < changes; ++i) {
        const QImage before = m_tool.look(m_tool.map().monitorList());
        await([&] { return m_tool.look(m_tool.map().monitorList()) != before; }, hearLimit,
              QStringLiteral("no traffic is seen"));
    }
    return QStringLiteral("its label is orange, its traffic runs through the monitor");
}

QString Tour::pauseMonitor()
{
    constexpr int pause = 1500; // some lines of the port under view
    m_tool.click(m_tool.map().playButton());
    runFor(pause / 2);
    const QImage before = m_tool.look(m_tool.map().monitorList());
    runFor(pause);
    require(m_tool.look(m_tool.map().monitorList()) == before,
            QStringLiteral("lines are still moving"));
    m_tool.click(m_tool.map().playButton());
    await([&] { return m_tool.look(m_tool.map().monitorList()) != before; }, hearLimit,
          QStringLiteral("no traffic is seen"));
    return QStringLiteral("the lines stand still, and move again");
}

void Tour::awaitSize(int width, int height)
{
    await([&] { return m_tool.mainWindow().place.size() == QSize(width, height); }, paintLimit,
          QStringLiteral("the window hasn't become %1 by %2").arg(width).arg(height));
}

QString Tour::foldPanel()
{
    m_unfolded = m_tool.mainWindow().place.size();
    m_tool.click(m_tool.map().foldButton());
    awaitSize(m_unfolded.width(), m_tool.map().foldedHeight());
    return QStringLiteral("the panel is a strip with the legend");
}

QString Tour::unfoldPanel()
{
    m_tool.click(m_tool.map().foldButton());
    awaitSize(m_unfolded.width(), m_unfolded.height());
    return QStringLiteral("the window is as high as before");
}

QString Tour::widenWindow()
{
    m_tool.click(m_tool.map().speedViewButton());
    awaitSize(m_unfolded.width() + m_tool.map().speedViewWidth(), m_unfolded.height());
    return QStringLiteral("the window is wider, with a speed beside each input port");
}

QString Tour::narrowWindow()
{
    m_tool.click(m_tool.map().speedViewButton());
    awaitSize(m_unfolded.width(), m_unfolded.height());
    awaitMatrix(m_router.view());
    return QStringLiteral("the window is as wide as before");
}

QString Tour::ruleFile() const
{
    return QDir(m_options.output).absoluteFilePath(QStringLiteral("rules.vrr"));
}

// The list of suggestions under the name may take a Return for itself, and a folder that is still
// being read may change what was typed: so the name is typed afresh at every try.
void Tour::enterFileName(const QString &title)
{
    constexpr int settle = 500; // until the dialog has read its folder, or shown its suggestions
    constexpr int closeLimit = 1500;
    constexpr int tries = 6;
    XDesktop &desktop = m_tool.desktop();
    const quint32 dialog = m_tool.awaitWindow(title, boxLimit).id;
    const auto isClosed = [&] {
        const auto windows = desktop.windowsOf(m_tool.processId());
        return std::none_of(windows.begin(), windows.end(),
                            [&](const auto &window) { return window.id == dialog; });
    };
    const auto hasKeys = [&] { return desktop.focusWindow() == dialog; };
    for (int i = 0; i < tries; ++i) {
        runFor(settle);
        if (!hasKeys())
            desktop.strike("Escape"); // a box that says that there is no such file
        if (!waitUntil(hasKeys, closeLimit))
            continue;
        desktop.strike("a", "Control_L");
        desktop.type(ruleFile());
        runFor(settle);
        desktop.strike("Return");
        if (waitUntil(isClosed, closeLimit))
            return;
        if (hasKeys())
            desktop.strike("Return");
        if (waitUntil(isClosed, closeLimit))
            return;
    }
    require(false, QStringLiteral("the dialog \"%1\" stays open").arg(title));
}

QString Tour::saveFile()
{
    QFile::remove(ruleFile());
    m_tool.click(m_tool.map().saveToFile());
    enterFileName(QStringLiteral("Save rules"));
    QFile file(ruleFile());
    await([&] { return file.exists() && file.size() > 0; }, boxLimit,
          QStringLiteral("%1 isn't written").arg(ruleFile()));
    require(file.open(QIODevice::ReadOnly) && file.read(3) == "VRR",
            QStringLiteral("%1 is no rule file").arg(ruleFile()));
    m_listener.expectNothing();
    return QStringLiteral("a rule file of %1 bytes; the router isn't told").arg(file.size());
}

QString Tour::returnInputs()
{
    m_saved = m_expected;
    m_tool.click(m_tool.map().returnInputs());
    m_listener.expect({"$VRRUL,5,W,"}, hearLimit);
    // The router keeps the masks and headers that a rule doesn't carry.
    m_expected = m_router.working();
    for (const auto &channel : m_expected.outputs[chosenOutput].channels) {
        require(channel.mainInput == noPort && channel.reserveInput == noPort,
                QStringLiteral("the router still has inputs in output port 5"));
    }
    awaitMatrix(m_router.view());
    return QStringLiteral("the channels of output port 5 are empty, here and in the router");
}

QString Tour::loadFile()
{
    m_tool.click(m_tool.map().loadFromFile());
    enterFileName(QStringLiteral("Load rules"));
    m_expected = m_saved;
    // Names have been given that only now reach the router.
    m_expected.inputNames[namedInput] = newName.toLatin1();
    m_expected.outputNames[namedOutput] = newOutputName.toLatin1();
    m_listener.expect(uploadConversation(m_expected), uploadLimit);
    m_box = m_tool.awaitWindow(routerTitle, boxLimit);
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't those of the file"));
    require(m_router.eeprom() != m_expected, QStringLiteral("the router has saved its rules"));
    return QStringLiteral("%1 sentences; the router works by the file's rules").arg(uploadLength);
}

QString Tour::pressSave()
{
    m_tool.acceptBox(m_box);
    awaitMatrix(m_router.view());
    m_tool.click(m_tool.map().saveInRouter());
    m_box = m_tool.awaitWindow(saveTitle, boxLimit);
    m_listener.expectNothing();
    return QStringLiteral("the question \"%1\"").arg(m_box.title);
}

QString Tour::confirmSave()
{
    m_tool.acceptBox(m_box);
    const QRect place = m_tool.awaitPopup(popupLimit).place;
    await([&] { return shareOf(m_tool.pictureOnScreen(place), waitColor) > mostly; }, paintLimit,
          QStringLiteral("what popped up isn't the box that asks to wait"));
    return QStringLiteral("the box that asks to wait");
}

QString Tour::awaitSaved()
{
    const QList<ReceivedLine> upload = m_listener.expect(saveConversation(m_expected), uploadLimit);
    // The first half may have been heard late, while a picture was written.
    constexpr int half = uploadLength / 2;
    const double pace =
        static_cast<double>(upload[uploadLength].microseconds - upload[half].microseconds) / half
        / microsecondsPerMillisecond;
    require(pace > shortestPace,
            QStringLiteral("the sentences come too fast, one in %1 ms").arg(pace, 0, 'f', 1));

    m_box = m_tool.awaitWindow(routerTitle, saveLimit);
    m_tool.awaitNoPopup();
    require(m_router.working() == m_expected,
            QStringLiteral("the router's rules aren't those of the window"));
    require(m_router.eeprom() == m_expected, QStringLiteral("the router hasn't saved its rules"));
    return QStringLiteral(
               "%1 sentences and the save in order, one in %2 ms; rules, speed and names "
               "are in the EEPROM")
        .arg(uploadLength)
        .arg(pace, 0, 'f', 1);
}

QString Tour::pressDisconnect()
{
    m_tool.acceptBox(m_box);
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(routerTitle, boxLimit);
    require(m_router.isConnected(), QStringLiteral("the router isn't connected any more"));
    m_listener.expectNothing();
    return QStringLiteral("the question \"%1\"").arg(m_box.title);
}

QString Tour::confirmDisconnect()
{
    m_tool.acceptBox(m_box);
    m_listener.expect({"$VRDCN\r\n"}, hearLimit);
    await([this] { return !m_router.isConnected(); }, hearLimit,
          QStringLiteral("the router is still connected"));
    awaitIdle();
    return QStringLiteral("the router was told; the window is idle, with the last configuration");
}

QString Tour::connectAgain()
{
    m_router.setStartSpeed(RouterSimulator::defaultStartSpeed);
    connectAndDownload();
    return QStringLiteral("the saved configuration comes down, with the name");
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
    require(share < idleShare,
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
    await([this] { return !m_tool.isRunning(); }, exitLimit,
          QStringLiteral("the tool doesn't end"));
    require(!m_tool.hasCrashed(), QStringLiteral("the tool has crashed"));
    require(m_tool.exitCode() == 0,
            QStringLiteral("the tool ends with the code %1").arg(m_tool.exitCode()));
    m_listener.expectNothing();
    const QString output = m_tool.output();
    require(output.isEmpty(), QStringLiteral("the tool has written: ") + output);
    return QStringLiteral("the tool ends with the code 0 and has written no word");
}

QImage Tour::label(const QRect &frame) const
{
    return m_tool.look(m_tool.map().labelIn(frame));
}

// The editor lies over the whole place, on a white ground.
void Tour::openEditor(const QRect &place)
{
    m_tool.click(place, XDesktop::RightButton);
    await([&] { return shareOf(m_tool.look(place), Qt::white) > mostly; }, paintLimit,
          QStringLiteral("no editor opens"));
}

// Takes the label in `from` and holds it over `to`.
void Tour::dragLabel(const QRect &from, const QRect &to)
{
    XDesktop &desktop = m_tool.desktop();
    const QPoint start = m_tool.middleOf(from);
    const QRect taken = m_tool.map().labelIn(from).translated(m_tool.mainWindow().place.topLeft());
    const QPoint aside(m_tool.map().scaled(12), m_tool.map().scaled(9)); // so that both are seen
    const QPoint target = m_tool.middleOf(to) + aside;
    m_tool.glideTo(start);
    desktop.press(XDesktop::LeftButton);
    m_tool.glideTo(start + (target - start) / 3);
    m_tool.awaitPopup(popupLimit);
    m_tool.glideTo(target);

    // The picture hangs on the pointer by the point where the label was taken.
    const QPoint hold = start - taken.topLeft();
    const auto problem = [&] {
        constexpr int tolerance = 2; // the frame's own border, scaled
        const QRect picture = m_tool.awaitPopup(popupLimit).place;
        const QPoint slip = picture.topLeft() + hold - desktop.pointer();
        if (slip.manhattanLength() > 2 * tolerance) {
            return QStringLiteral("the label's picture is off the pointer by %1, %2")
                .arg(slip.x())
                .arg(slip.y());
        }
        if (shareOf(m_tool.pictureOnScreen(picture), rs422) < mostly)
            return QStringLiteral("what is under the pointer isn't the label");
        return QString();
    };
    awaitNoProblem(problem, paintLimit);
}

void Tour::select(int output)
{
    m_output = output;
    m_tool.click(m_tool.map().outputButton(output));
    const int code = viewCode(output, wholePort);
    m_listener.expect({viewSentence(code)}, hearLimit);
    awaitMatrix(code);
}

void Tour::awaitMatrix(int view)
{
    m_tool.restMouse();
    awaitNoProblem([&] { return matrixProblem(m_tool, m_expected, m_output, view); }, paintLimit);
}

// No connection, and what tells of one is gone; the configuration stays.
void Tour::awaitIdle()
{
    awaitMatrix(viewNothing);
    const ScreenMap &map = m_tool.map();
    await([&] { return m_tool.look(map.saveInRouter()) == m_idleSaveButton; }, paintLimit,
          QStringLiteral("the save button isn't disabled"));
    await([&] { return m_tool.look(map.connectionLabels()) == m_idleConnectionLabels; }, paintLimit,
          QStringLiteral("the window still tells of a connection"));
}

// All speeds are shown already, so none goes back to the router.
void Tour::connectAndDownload()
{
    m_tool.click(m_tool.map().connectButton());
    m_box = m_tool.awaitWindow(routerTitle, downloadLimit);
    require(m_router.isConnected(), QStringLiteral("the router isn't connected"));
    m_listener.expect({"$VRCNT\r\n", "$VRCNT\r\n", "$VRRLD\r\n", "$VRVER\r\n"}, hearLimit);
    require(m_router.working() == m_expected && m_router.eeprom() == m_expected,
            QStringLiteral("the router doesn't have what was saved"));
    m_tool.acceptBox(m_box);
    awaitMatrix(viewNothing);
    require(label(m_tool.map().inputHome(namedInput)) == m_namedLabel,
            QStringLiteral("the name on the label isn't the saved one"));
}
