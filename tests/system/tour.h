#pragma once

#include "aiswatch.h"
#include "listener.h"
#include "monitorcheck.h"
#include "simulator/router/routersimulator.h"
#include "story.h"
#include "tablerows.h"
#include "tool.h"
#include "traffic.h"

#include <QAtomicInt>
#include <QDir>
#include <QImage>
#include <QString>
#include <QThreadPool>
#include <QTimer>

#include <functional>

/*!
 * Takes the tool through a day's work as its user would, with the display's mouse and keyboard,
 * and checks at each step what the window shows and what the router has heard.
 */
class Tour
{
public:
    struct Options
    {
        QString tool;   //!< the program
        QString output; //!< the folder of the pictures
        QString wine;   //!< what runs the tool if it is a program for Windows; empty: nothing
    };

    explicit Tour(const Options &options);

    //! Runs all steps, prints a line each and leaves a picture each. True if all went well.
    bool run();

private:
    // A step returns what was seen, or throws StepFailure.
    struct Step
    {
        const char *name; // of the picture
        const char *deed; // what the user does
        QString (Tour::*run)();
        enum Tools { All, OnlyForWindows, NotForWindows };
        Tools tools = All;
    };
    static const Step steps[];

    const Story::Ports &ports() const
    {
        return m_options.wine.isEmpty() ? Story::unixPorts : Story::windowsPorts;
    }
    void prepare();
    bool runStep(int number, const Step &step);
    void savePicture(int number, const QString &name);
    void write(const QImage &picture, const QString &file);

    // tour_connect.cpp
    QString startTool();
    QString choosePort();
    QString pressConnect();
    QString awaitDownload();
    QString readDownload();
    QString pressDisconnect();
    QString confirmDisconnect();
    QString connectAgain();
    QString dragIntoDownload();
    QString connectFromEverySpeed();
    QString openTakenPort();
    QString pullCable();
    QString dragIntoTimeout();
    QString plugCable();
    QString closeWindow();
    void connectAndDownload(int queries = 2);
    void disconnect();
    void awaitIdle();
    void choosePort(const QString &name);

    // tour_matrix.cpp
    QString selectOutputs();
    QString selectOutput();
    QString dragPort();
    QString dropPort();
    QString dragOntoOccupied();
    QString dropRefused();
    QString openNameEditor();
    QString enterName();
    QString abandonName();
    QString nameOutput();
    QString openSpeedList();
    QString chooseSpeed();
    QString returnInputs();
    void select(int output);
    void openEditor(const QRect &place);
    void dragLabel(const QRect &from, const QRect &to);
    void awaitNoDrag();
    void awaitBoxOverDrag(const QString &title, int milliseconds);
    void clickBoxOverDrag();

    // tour_monitor.cpp
    QString viewChannel();
    QString viewInput();
    QString pauseMonitor();
    QString foldPanel();
    QString unfoldPanel();
    QString widenWindow();
    QString narrowWindow();
    void awaitSize(int width, int height);

    // tour_editors.cpp
    QString viewGpsChannel();
    QString openFilter();
    QString addSentence();
    QString changeFilter();
    QString applyFilter();
    QString deleteSentence();
    QString confirmDelete();
    QString silenceMainInput();
    QString restoreMainInput();
    QString openHeader();
    QString enterHeader();
    QString switchOffCheck();
    QString switchOnCheck();
    QString openSmart();
    QString chooseSmart();
    void awaitTraffic(const QList<QByteArray> &heads);
    void holdTraffic();
    void selectSentence(const QByteArray &name);
    void acceptFilter(const QList<int> &ports);
    tk7sim::Channel &gpsChannel();

    // tour_files.cpp
    QString saveFile();
    QString loadFile();
    QString pressSave();
    QString confirmSave();
    QString awaitSaved();
    QString filesFolder() const;
    QString ruleFile() const;
    void enterFileName(const QString &title, const QString &file);
    void speakDuringUpload();

    // tour_service.cpp
    QString watchCounters();
    QString switchChipId();
    QString clearCounters();
    QString typePassword();
    QString setPassword();
    QString leaveService();
    QString lockRouter();
    QString typeWrongPassword();
    QString failToUnlock();
    QString unlock();
    QString typeMode();
    QString setMode();
    QString chooseFirmware();
    QString startUpdate();
    QString awaitUpdated();
    QString connectToNewVersion();
    QString unlockInService();
    QString readOwnerButtons();
    QString askDeletePassword();
    QString deletePassword();
    void openService();
    void closeService();
    QByteArray awaitCounters();
    QImage counterTable() const;
    void awaitLock(const QColor &color);
    void askUnlock(const QByteArray &text);

    // tour_ais.cpp
    QString startAisTest();
    QString openTargets();
    QString sortTargets();
    QString openTarget();
    QString openOwnShip();
    QString openAlarms();
    QString endAisTest();
    const tk7sim::AisPortTruth &aisTruth() const;
    QVector<TableRow> rowsIn(const XDesktop::Window &window, const QRect &strip) const;
    void awaitRows(const XDesktop::Window &window, const QRect &strip,
                   const std::function<int()> &count);
    bool isAlarmButtonEnabled() const;
    XDesktop::Window openAisWindow(int column, const QString &title);
    QVector<QImage> targetNames() const;
    void pressNameHead();
    QVector<QImage> valuesIn(const XDesktop::Window &window) const;
    void awaitAge(const XDesktop::Window &window);
    QVector<QImage> columnIn(const XDesktop::Window &window, const QRect &table, const QRect &blank,
                             int column) const;

    void awaitMatrix(int view);
    //! Waits until what \a look sees doesn't change any more, and returns it.
    QImage awaitStill(const std::function<QImage()> &look);
    QImage label(const QRect &frame) const;

    Options m_options;
    tk7sim::RouterSimulator m_spareRouter; // another router on the same machine, which stays alone
    tk7sim::RouterSimulator m_router;
    tk7sim::RouterConfig m_expected; // what the router must have in its working memory
    tk7sim::RouterConfig m_saved;    // what is in the rule file
    Listener m_listener;
    Traffic m_traffic;
    MonitorCheck m_monitor;
    AisWatch m_ais;
    Tool m_tool;
    int m_output = 0;             // the output port that the window shows
    qint64 m_saveAccepted = 0;    // by the router's clock
    QTimer m_signsOfLife;         // each brings one from the router
    XDesktop::Window m_box;       // the open message box or dialog
    XDesktop::Window m_editor;    // the filter editor below it
    XDesktop::Window m_service;   // the service dialog
    XDesktop::Window m_aisTest;   // the table of the AIS test
    XDesktop::Window m_aisWindow; // one that was opened from it
    QSize m_unfolded;             // of the window
    QImage m_idleSaveButton;
    QImage m_idleConnectionLabels;
    QImage m_unnamedLabel;
    QImage m_namedLabel;
    QAtomicInt m_unwritten; // pictures
    QThreadPool m_writer;   // ends first: it still writes to what stands above
};
