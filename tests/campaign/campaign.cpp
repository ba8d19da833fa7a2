#include "campaign.h"

#include "link/nmeaserialport.h"
#include "service/waitsavedlg.h"
#include "widgets/qmlineedit.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDrag>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int routerShare = 15; // per cent of the steps
constexpr double bytesPerMegabyte = 1024 * 1024;

// Milliseconds, with time to spare for a busy machine.
constexpr qint64 longestSearch = 12000;  // the tool ends it after four seconds
constexpr qint64 longestSilence = 10000; // the tool ends the link after four seconds
constexpr qint64 longestSave = 5000;     // then the router answers at last
constexpr qint64 longestHold = 6000;     // longer than the tool needs to end a dead link
constexpr qint64 longestFarewell = 4000; // it waits its turn in the tool's queue
constexpr qint64 longestUpdate = 90000;
constexpr qint64 longestStandstill = 30000; // longer than any queue of the tool
constexpr qint64 settleTime = 1000;
constexpr qint64 longestSettling = 8000;
constexpr qint64 microseconds = 1000; // in a millisecond

const QString userName = QStringLiteral("user");
const QString boxName = QStringLiteral("box");

bool isConnecting(const QWidget *dialog)
{
    return qobject_cast<const QProgressDialog *>(dialog)
        && dialog->windowFlags().testFlag(Qt::Popup);
}

} // namespace

Campaign::Campaign(const Options &options)
    : m_options(options), m_log(options.seed, options.isVerbose),
      m_router(options.seed, options.portName), m_trouble(m_router, m_dice, m_log),
      m_screen(m_window), m_table(m_window), m_user(m_window, m_screen, m_hand, m_dice),
      m_dialogUser(m_hand, m_dice, m_files)
{
    if (!m_router.isOpen())
        qFatal("no router: %s", qPrintable(m_router.errorString()));
    m_heartbeat.setHangLimit(options.stepLimit, [] {
        std::fputs("the event loop hangs\n", stderr);
        StepLog::printTail();
    });
    qApp->installEventFilter(this);
    for (const char *scheme : {"http", "https"})
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "openUrl");
}

void Campaign::run()
{
    m_window.show();
    m_clock.start();
    m_isRunning = true;
    QTimer::singleShot(m_options.pace, this, &Campaign::tick);
    QApplication::exec();
    m_isRunning = false;
    printSummary();
}

// The next tick is on its way before anything is done: what a step opens may last.
void Campaign::tick()
{
    QTimer::singleShot(m_options.pace, this, &Campaign::tick);
    m_heartbeat.beginWork();
    m_state = m_router.state();
    // What the step opens has an event loop of its own, whose first beat must not count this wait.
    m_heartbeat.endWork();
    m_dice.startStep(m_options.seed, ++m_tick);
    watchLink();
    giveFocus();
    if (isOk())
        act();
    m_heartbeat.endWork();
}

// What a window manager does when a window has closed; a platform without a display has none.
void Campaign::giveFocus()
{
    if (QApplication::activeWindow() || QApplication::activePopupWidget())
        return;
    QWidget *dialog = QApplication::activeModalWidget();
    (dialog ? dialog : &m_window)->activateWindow();
}

// Of a new link: what it tells of the router's configuration, behind the window's own slots.
void Campaign::watchLink()
{
    NmeaSerialPort *link = m_window.currentLink();
    if (!m_window.isConnected())
        m_agreement.connectionEnded();
    if (link == m_link)
        return;
    m_link = link;
    m_hasDownloaded = false;
    if (!link)
        return;
    m_connectBegin = m_clock.elapsed();
    m_isPatient = m_dice.chance(90);
    m_agreement.connectionBegun();
    using Link = NmeaSerialPort;
    const auto change = [this] { m_screen.changedBehindScreen(); };
    connect(link, &Link::signalVRNewRule, this, change);
    connect(link, &Link::signalVRNewFilterMask, this, change);
    connect(link, &Link::signalVRNewHdr, this, change);
    connect(link, &Link::signalVRNewPortName, this, change);
}

bool Campaign::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show && m_isRunning && object->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(object);
        if (widget->isWindow() && qobject_cast<QDialog *>(widget))
            dialogShown(widget);
    }
    return QObject::eventFilter(object, event);
}

void Campaign::dialogShown(QWidget *dialog)
{
    if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
        boxShown(box->windowTitle(), box->text());
        return;
    }
    if (qobject_cast<WaitSaveDlg *>(dialog)) {
        m_heartbeat.beginWork();
        m_agreement.uploadQueued(m_window.routerModel(), m_router.state());
        m_heartbeat.endWork();
    }
    m_log.count(QStringLiteral("dialog"), QString::fromLatin1(dialog->metaObject()->className()));
}

void Campaign::boxShown(const QString &title, const QString &text)
{
    m_heartbeat.beginWork();
    m_log.note(boxName, title, text.simplified());
    if (text.contains(QLatin1String("Download rules complete"))) {
        m_hasDownloaded = true;
        ++m_reconnects;
        m_agreement.downloaded(m_window.routerModel(), m_router.state());
        m_screen.drawnAnew();
    } else if (text == QLatin1String("Load rules complete")) {
        m_agreement.fileLoaded(m_files.kindOfRules() == FileStore::Kind::Good);
        m_agreement.uploadQueued(m_window.routerModel(), m_router.state());
        m_screen.drawnAnew();
    } else if (text.startsWith(QLatin1String("Error load rules from"))) {
        m_agreement.fileLoaded(false);
        m_screen.changedBehindScreen();
    }
    m_heartbeat.endWork();
}

void Campaign::openUrl(const QUrl &url)
{
    m_log.note(QStringLiteral("web"), QStringLiteral("page"), url.toString());
}

bool Campaign::isOk()
{
    const QString problem = findProblem();
    if (problem.isEmpty())
        return true;
    fail(problem);
    return false;
}

QString Campaign::findProblem()
{
    const QString message = m_log.takeProblem();
    if (!message.isEmpty())
        return QStringLiteral("Qt says: ") + message;
    if (!m_state.refused.isEmpty() && m_agreement.isJudging())
        return QStringLiteral("the router has refused ") + QString::fromLatin1(m_state.refused);
    for (const auto &judge : {&Campaign::judgeTable, &Campaign::judgeProgress,
                              &Campaign::judgePause, &Campaign::judgeDialogs, &Campaign::judgeHand,
                              &Campaign::judgeLink, &Campaign::judgeScreen}) {
        QString problem = (this->*judge)();
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

// Something must always be possible: a window in which nothing goes is a hang as well.
QString Campaign::judgeProgress()
{
    const qint64 now = m_clock.elapsed();
    if (m_steps != m_stepsSeen || m_mode == Mode::Resting
        || qobject_cast<QProgressDialog *>(openDialog())) {
        m_stepsSeen = m_steps;
        m_progressAt = now;
    }
    if (now - m_progressAt < longestStandstill)
        return QString();
    const QWidget *dialog = openDialog();
    return QStringLiteral(
               "nothing goes on: dialog %1, dragging %2, drag %3, connected %4, mode %5, %6")
        .arg(dialog ? QLatin1String(dialog->metaObject()->className()) : QLatin1String("none"))
        .arg(m_user.isDragging())
        .arg(m_window.findChild<QDrag *>() != nullptr)
        .arg(m_window.isConnected())
        .arg(int(m_mode))
        .arg(m_agreement.lastDifference());
}

// A file dialog that closes waits for the thread that reads folders for it, and that one for the
// disk. Dialog and thread are Qt's: such pauses are told, but not judged.
QString Campaign::judgePause()
{
    const double pause = m_heartbeat.takeLongestPause();
    const bool hadFileDialog = std::exchange(m_hasFileDialog, hasFileDialog());
    if (hadFileDialog || m_hasFileDialog) {
        m_longestFilePause = std::max(m_longestFilePause, pause);
        return QString();
    }
    if (pause > m_longestPause) {
        m_longestPause = pause;
        m_longestPauseStep = m_lastStep;
    }
    if (pause <= m_options.pauseLimit)
        return QString();
    return QStringLiteral("the event loop paused for %1 ms behind \"%2\"")
        .arg(pause, 0, 'f', 0)
        .arg(m_lastStep);
}

bool Campaign::hasFileDialog()
{
    const auto windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
        return qobject_cast<const QFileDialog *>(window) != nullptr;
    });
}

QWidget *Campaign::openDialog() const
{
    QWidget *popup = QApplication::activePopupWidget();
    return popup ? popup : QApplication::activeModalWidget();
}

// A dialog that waits for the router, not for the user, has its time.
QString Campaign::judgeDialogs()
{
    QWidget *dialog = openDialog();
    if (dialog != m_dialog) {
        m_dialog = dialog;
        m_dialogSince = m_clock.elapsed();
    }
    const qint64 age = m_clock.elapsed() - m_dialogSince;
    if (isConnecting(dialog) && age > longestSearch)
        return QStringLiteral("the search for the router doesn't end");
    if (qobject_cast<QProgressDialog *>(dialog) && age > longestUpdate)
        return QStringLiteral("the firmware update doesn't end");
    return QString();
}

// What opens ends a drag, a press and the editor of a name; and a drag ends with its release.
QString Campaign::judgeHand()
{
    constexpr qint64 longestUnwinding = 500; // from the box that closes to the drag that returns
    const bool isOpen = openDialog() != nullptr;
    if (QApplication::activeModalWidget() && m_user.nameEditor())
        return QStringLiteral("a name is being edited below a dialog");
    const qint64 now = m_clock.elapsed();
    if (isOpen || m_user.isDragging() || !m_window.findChild<QDrag *>())
        m_dragEndedAt = now;
    return now - m_dragEndedAt > longestUnwinding ? QStringLiteral("a drag doesn't end")
                                                  : QString();
}

// A connection that the router doesn't feed ends with a box.
QString Campaign::judgeLink()
{
    if (!m_window.isConnected())
        return QString();
    const qint64 silence = (m_state.now - m_state.lastSpoken) / microseconds;
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (silence > longestSilence && m_clock.elapsed() - m_connectBegin > longestSilence && !box)
        return QStringLiteral("the router has been silent for %1 ms, and the tool is connected")
            .arg(silence);
    return QString();
}

QString Campaign::judgeTable()
{
    return m_table.check();
}

QString Campaign::judgeScreen()
{
    if (openDialog() || m_user.isDragging() || m_window.findChild<QDrag *>()
        || m_mode == Mode::Closing)
        return QString();
    if (m_link && !m_window.isConnected())
        return QString();
    const QString seen = m_screen.check();
    return seen.isEmpty() ? m_agreement.check(m_window.routerModel(), m_state) : seen;
}

// What the tool does now

void Campaign::act()
{
    switch (m_mode) {
    case Mode::Working:
        if (m_agreement.needsQuiet(m_state)) {
            keepQuiet();
            break;
        }
        if (m_steps >= m_options.steps || m_steps - m_stepsAtRest >= m_options.restInterval) {
            m_trouble.heal();
            m_mode = Mode::GoingIdle;
        } else if (m_dice.chance(routerShare)) {
            m_trouble.step(m_state.isPlugged);
        } else {
            actAsUser();
        }
        break;
    case Mode::GoingIdle:
        goIdle();
        break;
    case Mode::Resting:
        rest();
        break;
    case Mode::Closing:
        QApplication::exit();
        break;
    }
}

// Both sides are judged only while nothing is open.
void Campaign::keepQuiet()
{
    m_log.count(QStringLiteral("rest"), QStringLiteral("for agreement"));
    if (m_user.isDragging())
        m_user.goOnDragging();
    else if (QWidget *dialog = openDialog())
        leave(dialog);
}

// A dialog that waits for a save has no end of its own; Escape is tried, and does nothing.
void Campaign::leave(QWidget *dialog)
{
    m_dialogUser.leave(dialog);
    if (!qobject_cast<WaitSaveDlg *>(dialog) || m_clock.elapsed() - m_dialogSince < longestSave)
        return;
    m_trouble.answerSave();
    m_dialogSince = m_clock.elapsed();
}

// Holds a label while the configuration comes down, or while the router is silent: a box will come
// over it.
bool Campaign::beginsToHold(const QWidget *dialog)
{
    constexpr int share = 3; // per cent of the steps
    const bool isSilent = m_state.now - m_state.lastSpoken > microseconds * settleTime;
    const bool isTime = m_window.isConnected() && (waitsForDownload() || isSilent);
    if (dialog || !isTime || m_user.nameEditor() || !m_dice.chance(share))
        return false;
    note(m_user.beginDrag());
    m_holdUntil = m_clock.elapsed() + longestHold;
    return true;
}

bool Campaign::waitsForDownload()
{
    return m_link && m_window.isConnected() && !m_hasDownloaded && m_isPatient
        && m_clock.elapsed() - m_connectBegin < longestSave;
}

void Campaign::actAsUser()
{
    QWidget *dialog = openDialog();
    if (m_user.isDragging()) {
        if (dialog || m_clock.elapsed() > m_holdUntil)
            note(m_user.goOnDragging());
    } else if (beginsToHold(dialog)) {
        return;
    } else if (isConnecting(dialog)) {
        const User::Deed deed = m_user.stepInSearch();
        if (!deed.kind.isEmpty())
            note(deed);
    } else if (waitsForDownload()) {
        return;
    } else if (qobject_cast<WaitSaveDlg *>(dialog)) {
        leave(dialog);
    } else if (dialog && dialog == QApplication::activePopupWidget()) {
        note({QStringLiteral("choose from a list"),
              m_dialogUser.chooseFromList(dialog, m_state.portName), true});
    } else if (dialog) {
        const QString name = QString::fromLatin1(dialog->metaObject()->className());
        const QString text = m_dialogUser.step(dialog);
        if (!text.isEmpty())
            note({name, text, true});
    } else {
        note(m_user.step(m_state.portName));
    }
}

void Campaign::note(const User::Deed &deed)
{
    if (deed.changesModel)
        m_agreement.edited();
    ++m_steps;
    m_lastStep = QStringLiteral("%1 %2").arg(deed.kind, deed.text);
    m_log.note(userName, deed.kind, deed.text);
}

// Rest

bool Campaign::isIdle() const
{
    return !openDialog() && !m_link && !m_window.isConnected() && !m_user.nameEditor()
        && !m_user.isDragging() && !m_window.findChild<QDrag *>();
}

void Campaign::goIdle()
{
    QWidget *dialog = openDialog();
    auto *box = qobject_cast<QMessageBox *>(dialog);
    if (m_user.isDragging()) {
        m_user.goOnDragging();
    } else if (isConnecting(dialog)) {
        return;
    } else if (box && box->text().contains(QLatin1String("disconnected"))) {
        m_farewellAt = m_clock.elapsed();
        m_hand.click(box->button(QMessageBox::Ok));
    } else if (dialog) {
        leave(dialog);
    } else if (m_user.nameEditor()) {
        m_hand.strike(Qt::Key_Escape);
    } else if (m_window.isConnected() && m_clock.elapsed() - m_farewellAt > longestFarewell) {
        m_user.pressConnect();
    } else if (isIdle()) {
        m_mode = Mode::Resting;
        m_restBegin = m_clock.elapsed();
    }
}

void Campaign::rest()
{
    const qint64 age = m_clock.elapsed() - m_restBegin;
    if (age < settleTime)
        return;
    const Resources now = Resources::measure(m_window);
    const QString problem = m_hasFirst ? compare(now) : QString();
    if (!problem.isEmpty()) {
        if (age > longestSettling)
            fail(problem);
        return;
    }
    // The first one holds only when it no longer changes.
    const bool isSteady = m_hasFirst || Resources::difference(m_last, now).isEmpty();
    m_last = now;
    if (!isSteady)
        return;
    if (!m_hasFirst)
        m_first = now;
    m_hasFirst = true;
    m_stepsAtRest = m_steps;
    m_log.note(QStringLiteral("rest"), QStringLiteral("measured"), now.text());
    std::printf("%6d steps, %5.0f s: %s\n", m_steps, double(m_clock.elapsed()) / 1000,
                qPrintable(now.text()));
    std::fflush(stdout);
    if (m_steps < m_options.steps) {
        m_mode = Mode::Working;
        return;
    }
    m_mode = Mode::Closing;
    m_window.close();
}

QString Campaign::compare(const Resources &now) const
{
    QString counts = Resources::difference(m_first, now);
    if (!counts.isEmpty())
        return counts;
    const double growth = double(now.heap - m_first.heap) / bytesPerMegabyte;
    if (growth > m_options.memoryLimit)
        return QStringLiteral("the heap has grown by %1 MB").arg(growth, 0, 'f', 2);
    return QString();
}

void Campaign::fail(const QString &problem)
{
    StepLog::printTail();
    std::fprintf(stderr, "FAILED at step %d of seed %u: %s\n", m_steps, m_options.seed,
                 qPrintable(problem));
    std::fprintf(stderr, "again: tk7-campaign --seed %u --steps %d --pace %d\n", m_options.seed,
                 m_options.steps, m_options.pace);
    std::fflush(nullptr);
    // Dialogs may be open, and their event loops below this one: there is no way back through them.
    std::_Exit(EXIT_FAILURE);
}

void Campaign::printSummary() const
{
    const auto line = [this](const char *head, const QString &who) {
        std::printf("%s %d: %s\n", head, m_log.total(who), qPrintable(m_log.summary(who)));
    };
    const double seconds = double(m_clock.elapsed()) / 1000;
    std::printf("seed %u: %d steps of the user in %.0f s, %d connections\n", m_options.seed,
                m_steps, seconds, m_reconnects);
    line("user", userName);
    line("router", QStringLiteral("router"));
    line("faults", QStringLiteral("fault"));
    line("boxes", boxName);
    line("dialogs", QStringLiteral("dialog"));
    std::printf("agreement: %d times equal, %d times not to be judged; matrix compared %d times\n",
                m_agreement.agreements(), m_agreement.abstentions(), m_screen.comparisons());
    std::printf("longest pause of the event loop: %.0f ms, behind \"%s\"; with a file dialog "
                "%.0f ms; stalls of the machine %.0f ms in all\n",
                m_longestPause, qPrintable(m_longestPauseStep), m_longestFilePause,
                m_heartbeat.stalls());
    std::printf("first rest: %s\nlast rest:  %s\n", qPrintable(m_first.text()),
                qPrintable(m_last.text()));
}
