#pragma once

#include "agreement.h"
#include "dialoguser.h"
#include "dice.h"
#include "filestore.h"
#include "hand.h"
#include "heartbeat.h"
#include "linkcheck.h"
#include "resources.h"
#include "routerthread.h"
#include "screencheck.h"
#include "steplog.h"
#include "trouble.h"
#include "user.h"

#include "mainwindow/mainwindow.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QUrl>

class NmeaSerialPort;

/*!
 * A random user against a random router in the real window.
 *
 * One timer drives it, also in the event loops of dialogs: it judges what the last step has left
 * behind, then lets the user or the router do the next one.
 */
class Campaign : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        quint32 seed = 1;
        int steps = 150;         //!< of the user
        int pace = 60;           //!< milliseconds between two steps
        int restInterval = 300;  //!< steps between two measurements of memory and files
        double pauseLimit = 100; //!< milliseconds
        int stepLimit = 20;      //!< seconds for which the event loop may stand still, at worst
        double memoryLimit = 6;  //!< megabytes that the heap may grow behind the first rest
        bool isVerbose = false;
        QString portName;
    };

    explicit Campaign(const Options &options);

    /*! Runs to the end. What is found ends the process, with the seed and the last steps. */
    void run();

    bool eventFilter(QObject *object, QEvent *event) override;

public slots:
    /*! In place of the system's browser. */
    void openUrl(const QUrl &url);

private:
    enum class Mode {
        Working,
        GoingIdle, // brings the tool to where nothing is open and nothing connected
        Resting,   // looks what the process holds
        Closing
    };

    void tick();
    void giveFocus();
    void watchLink();
    void dialogShown(QWidget *dialog);
    void boxShown(const QString &title, const QString &text);
    bool isOk();
    QString findProblem();
    QString judgeTable();
    QString judgeScreen();
    QString judgeHand();
    QString judgeLink();
    QString judgeDialogs();
    QString judgeProgress();
    QString judgePause();
    static bool hasFileDialog();

    void act();
    void actAsUser();
    void note(const User::Deed &deed);
    void keepQuiet();
    bool waitsForDownload();
    void leave(QWidget *dialog);
    bool beginsToHold(const QWidget *dialog);
    void goIdle();
    bool isIdle() const;
    void rest();
    QString compare(const Resources &now) const;
    void fail(const QString &problem);
    void printSummary() const;
    QWidget *openDialog() const;

    Options m_options;
    Dice m_dice;
    StepLog m_log;
    RouterThread m_router;
    Trouble m_trouble;
    FileStore m_files;
    MainWindow m_window;
    ScreenCheck m_screen;
    LinkCheck m_table;
    Hand m_hand;
    User m_user;
    DialogUser m_dialogUser;
    Agreement m_agreement;
    Heartbeat m_heartbeat;

    Mode m_mode = Mode::Working;
    RouterState m_state;
    quint32 m_tick = 0;
    int m_steps = 0;
    int m_stepsSeen = 0;
    qint64 m_progressAt = 0;
    int m_stepsAtRest = 0;
    int m_reconnects = 0;
    qint64 m_dragEndedAt = 0;
    qint64 m_holdUntil = 0;  // a label that is held while something may open
    bool m_isPatient = true; // lets the download end before anything else
    bool m_hasDownloaded = false;
    QElapsedTimer m_clock;
    qint64 m_restBegin = 0;
    qint64 m_connectBegin = 0;
    qint64 m_dialogSince = 0;
    qint64 m_farewellAt = 0;
    QPointer<QWidget> m_dialog;
    QPointer<NmeaSerialPort> m_link;
    bool m_isRunning = false;
    Resources m_first;
    Resources m_last;
    bool m_hasFirst = false;
    double m_longestPause = 0;     // milliseconds
    double m_longestFilePause = 0; // the same with a file dialog
    bool m_hasFileDialog = false;  // at the last tick
    QString m_longestPauseStep;
    QString m_lastStep;
};
