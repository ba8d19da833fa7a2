#include "tour.h"

#include "limits.h"
#include "matrixcheck.h"
#include "stepfailure.h"
#include "story.h"
#include "wait.h"

#include <QElapsedTimer>

#include <cstdio>

using namespace tk7sim;

namespace {

constexpr double usualTraffic = 1;
// The first that has all functions of the service.
constexpr int versionMajor = 4;
constexpr int versionMinor = 0;
// What the router answers to the question for a sign of life.
const QByteArray signOfLife = QByteArrayLiteral("$VRERR,0000,00");

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
    {"view-gps", "press the button of channel 0", &Tour::viewGpsChannel},
    {"filter", "press Set beside its filter", &Tour::openFilter},
    {"sentence", "press Add Sentence, type a name", &Tour::addSentence},
    {"filter-changed", "strike Return, tick it, take the tick from another", &Tour::changeFilter},
    {"filtered", "press Ok", &Tour::applyFilter},
    {"delete", "open the filter again, delete a sentence", &Tour::deleteSentence},
    {"deleted", "answer Ok, press Ok", &Tour::confirmDelete},
    {"reserve", "let the first GPS fall silent", &Tour::silenceMainInput},
    {"main-again", "let it speak again", &Tour::restoreMainInput},
    {"header", "tick HDR, type a talker", &Tour::openHeader},
    {"header-set", "strike Return", &Tour::enterHeader},
    {"check-off", "take the tick from CRS, with spoilt sentences at the input",
     &Tour::switchOffCheck},
    {"check-on", "tick it again", &Tour::switchOnCheck},
    {"smart", "press Smart", &Tour::openSmart},
    {"smart-off", "choose OFF, strike Return", &Tour::chooseSmart},
    {"file-saved", "press Save Rules to File, type a name, strike Return", &Tour::saveFile},
    {"returned", "press >>", &Tour::returnInputs},
    {"file-loaded", "press Load Rules from File, type the name, strike Return", &Tour::loadFile},
    {"save", "close the box, press Save Rules in Router", &Tour::pressSave},
    {"saving", "answer Ok", &Tour::confirmSave},
    {"saved", "wait for the router", &Tour::awaitSaved},
    {"disconnect", "close the box, press Disconnect", &Tour::pressDisconnect},
    {"disconnected", "answer Ok", &Tour::confirmDisconnect},
    {"again", "connect again", &Tour::connectAgain},
    {"drag-download", "drag a label until a download ends under it", &Tour::dragIntoDownload},
    {"service", "press the logo without a Ctrl key, with the right and with the left one",
     &Tour::watchCounters},
    {"chip-id", "press CHIP ID", &Tour::switchChipId},
    {"cleared", "press Clear Status", &Tour::clearCounters},
    {"password", "press LOCK, type a password", &Tour::typePassword},
    {"password-set", "strike Return", &Tour::setPassword},
    {"open", "close the box, press Exit", &Tour::leaveService},
    {"locked", "press the field UNLOCK", &Tour::lockRouter},
    {"unlock", "press the field LOCK, type a wrong password", &Tour::typeWrongPassword},
    {"unlock-refused", "strike Return", &Tour::failToUnlock},
    {"unlocked", "close the box, try again with a service password", &Tour::unlock},
    {"mode", "press the logo again, press Change Mode, type a mode", &Tour::typeMode},
    {"mode-set", "strike Return, press Exit", &Tour::setMode},
    {"firmware-file", "press Firmware Update, type the file's name", &Tour::chooseFirmware},
    {"firmware", "answer Yes", &Tour::startUpdate},
    {"firmware-done", "wait for the router", &Tour::awaitUpdated},
    {"new-version", "close the box, connect again", &Tour::connectToNewVersion},
    {"service-unlock", "unlock by the password in the service dialog", &Tour::unlockInService},
    {"service-owner", "close the box", &Tour::readOwnerButtons},
    {"password-delete", "press Delete Password", &Tour::askDeletePassword},
    {"password-gone", "answer Ok, press Exit", &Tour::deletePassword},
    {"ais-test", "press the logo, press AIS Test", &Tour::startAisTest},
    {"ais-targets", "press View under AIS Targets", &Tour::openTargets},
    {"ais-by-name", "press the head Ship Name three times", &Tour::sortTargets},
    {"ais-target", "double click on the last target", &Tour::openTarget},
    {"ais-own", "close both, press View under Own Data", &Tour::openOwnShip},
    {"ais-alarms", "close it, press View under Alarms", &Tour::openAlarms},
    {"ais-end", "close it and the table", &Tour::endAisTest},
    {"speed-scan", "disconnect, and connect from each speed of the router",
     &Tour::connectFromEverySpeed, Step::OnlyForWindows},
    {"drag-timeout", "pull the cable out, drag a label until the box comes",
     &Tour::dragIntoTimeout},
    {"timeout", "close the box, connect, pull the cable out", &Tour::pullCable},
    {"replugged", "close the box, put the cable back, connect", &Tour::plugCable},
    // Wine opens a port twice, as Windows doesn't.
    {"taken", "disconnect, try a port that another program has", &Tour::openTakenPort,
     Step::NotForWindows},
    {"end", "close the window", &Tour::closeWindow},
};

Tour::Tour(const Options &options)
    : m_options(options), m_expected(RouterConfig::factory()), m_listener(m_router),
      m_traffic(&m_router), m_ais(&m_router)
{
    QObject::connect(&m_signsOfLife, &QTimer::timeout, &m_router,
                     [this] { m_router.sendChecked(signOfLife); });
}

bool Tour::run()
{
    prepare();
    QElapsedTimer timer;
    timer.start();
    int number = 0;
    for (const Step &step : steps) {
        const Step::Tools others =
            m_options.wine.isEmpty() ? Step::OnlyForWindows : Step::NotForWindows;
        if (step.tools == others)
            continue;
        if (!runStep(++number, step))
            return false;
    }
    m_writer.waitForDone();
    require(m_unwritten == 0,
            QStringLiteral("not all pictures can be written to %1").arg(m_options.output));
    std::printf("tour: %d steps in %.1f s, pictures in %s\n", number, secondsOf(timer),
                qPrintable(QDir::toNativeSeparators(m_options.output)));
    return true;
}

void Tour::prepare()
{
    QDir folder(m_options.output);
    require(folder.mkpath(filesFolder()),
            QStringLiteral("the folder %1 can't be made").arg(filesFolder()));
    const QStringList old = folder.entryList({QStringLiteral("[0-9][0-9]-*.png")}, QDir::Files);
    for (const QString &picture : old)
        folder.remove(picture);

    m_spareRouter.setPublishedName(ports().sparePort);
    m_router.setPublishedName(ports().port);
    m_router.setStartSpeed(Story::firstStartSpeed);
    m_listener.ignore("$VRSTA,"); // as long as the service dialog is open
    m_router.setVersion(versionMajor, versionMinor);
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
    m_router.setTrafficRate(usualTraffic); // which the last step may have held
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
    std::fprintf(stderr, "The router has heard, and when before now:\n%s",
                 qPrintable(m_listener.last()));
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
    constexpr int digits = 2;
    const QString file = QStringLiteral("%1/%2-%3")
                             .arg(m_options.output)
                             .arg(number, digits, 10, QLatin1Char('0'))
                             .arg(name);
    write(m_tool.picture(), file + QStringLiteral(".png"));
    write(m_tool.dialogPicture(), file + QStringLiteral(".dialog.png"));
}

// Beside the event loop, in which the router lives: it must not fall silent meanwhile.
void Tour::write(const QImage &picture, const QString &file)
{
    if (picture.isNull())
        return;
    m_writer.start([this, picture, file] {
        if (!picture.save(file))
            m_unwritten = 1;
    });
}

QImage Tour::awaitStill(const std::function<QImage()> &look)
{
    constexpr int settled = 600; // ms, in which the tool shows what it has heard
    QImage last;
    const auto isStill = [&] {
        last = look();
        runFor(settled);
        return look() == last;
    };
    await(isStill, Limit::traffic, QStringLiteral("the window doesn't come to rest"));
    return last;
}

QImage Tour::label(const QRect &frame) const
{
    return m_tool.look(m_tool.map().labelIn(frame));
}

void Tour::awaitMatrix(int view)
{
    m_tool.restMouse();
    awaitNoProblem([&] { return matrixProblem(m_tool, m_expected, m_output, view); }, Limit::paint);
}
