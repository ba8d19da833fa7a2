#pragma once

#include "listener.h"
#include "simulator/routersimulator.h"
#include "tool.h"

#include <QDir>
#include <QImage>
#include <QString>

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
    };
    static const Step steps[];

    void prepare();
    bool runStep(int number, const Step &step);
    void savePicture(int number, const QString &name);

    QString startTool();
    QString choosePort();
    QString pressConnect();
    QString awaitDownload();
    QString readDownload();
    QString selectOutputs();
    QString selectOutput();
    QString dragPort();
    QString dropPort();
    QString dragOntoOccupied();
    QString dropRefused();
    QString viewChannel();
    QString openNameEditor();
    QString enterName();
    QString abandonName();
    QString nameOutput();
    QString openSpeedList();
    QString chooseSpeed();
    QString viewInput();
    QString pauseMonitor();
    QString foldPanel();
    QString unfoldPanel();
    QString widenWindow();
    QString narrowWindow();
    QString saveFile();
    QString returnInputs();
    QString loadFile();
    QString pressSave();
    QString confirmSave();
    QString awaitSaved();
    QString pressDisconnect();
    QString confirmDisconnect();
    QString connectAgain();
    QString pullCable();
    QString plugCable();
    QString closeWindow();

    void dragLabel(const QRect &from, const QRect &to);
    void select(int output);
    void awaitMatrix(int view);
    void awaitSize(int width, int height);
    void awaitIdle();
    void connectAndDownload();
    QImage label(const QRect &frame) const;
    void openEditor(const QRect &place);
    QString ruleFile() const;
    void enterFileName(const QString &title);

    Options m_options;
    tk7sim::RouterSimulator m_spareRouter; // another router on the same machine, which stays alone
    tk7sim::RouterSimulator m_router;
    tk7sim::RouterConfig m_expected; // what the router must have in its working memory
    tk7sim::RouterConfig m_saved;    // what is in the rule file
    Listener m_listener;
    Tool m_tool;
    int m_output = 0;       // the output port that the window shows
    XDesktop::Window m_box; // the open message box
    QSize m_unfolded;       // of the window
    QImage m_idleSaveButton;
    QImage m_idleConnectionLabels;
    QImage m_unnamedLabel;
    QImage m_namedLabel;
};
