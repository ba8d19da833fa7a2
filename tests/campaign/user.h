#pragma once

#include "dice.h"
#include "hand.h"
#include "screencheck.h"

#include <QPointer>
#include <QString>

QT_BEGIN_NAMESPACE
class QComboBox;
QT_END_NAMESPACE

class MainWindow;
class QMLineEdit;

/*! The user in front of the main window while no dialog is open: does one thing at a time. */
class User
{
public:
    User(MainWindow &window, ScreenCheck &screen, Hand &hand, Dice &dice);

    /*! A step that was taken. */
    struct Deed
    {
        QString kind; //!< empty if nothing was to be done
        QString text;
        bool changesModel = false;
    };

    /*! One step, by chance, of those that are possible now. \a port is the router's, if it's in. */
    Deed step(const QString &port);
    /*! The one step that connects or disconnects, for a campaign that is in need of either. */
    Deed pressConnect();

    /*! Mostly none, or one of an impatient user while the router is searched; all in vain. */
    Deed stepInSearch();

    /*! Goes on with what the mouse has lifted; there is nothing else to do with a full hand. */
    /*! Lifts a label and holds it. */
    Deed beginDrag();
    Deed goOnDragging();
    bool isDragging() const { return m_isDragging; }
    /*! A click at a place where nothing is. */

    /*! The open editor of a name, if there is one. */
    QMLineEdit *nameEditor() const;

private:
    struct Row
    {
        const char *name;
        int weight;
        bool changesModel;
        bool (User::*can)() const;
        QString (User::*run)();
    };
    static const Row rows[];

    bool always() const { return true; }
    bool isConnected() const;
    bool isFree() const;
    bool canConnect() const;
    bool isPortListed() const;
    bool isPortMissing() const;
    QComboBox *ports() const;
    bool isEditingName() const { return nameEditor() != nullptr; }
    bool isNotEditingName() const { return nameEditor() == nullptr; }

    QString connectRouter();
    QString disconnectRouter();
    QString openPorts();
    QString rescan();
    QString selectOutput();
    QString drag();
    QString returnInputs();
    QString nameInput();
    QString nameOutput();
    QString finishName();
    QString changeSpeed();
    QString turnFilter();
    QString turnCrs();
    QString turnHeader();
    QString setFilter();
    QString setHeader();
    QString setSmart();
    QString saveInRouter();
    QString saveFile();
    QString loadFile();
    QString viewInput();
    QString viewChannel();
    QString pause();
    QString fold();
    QString widen();
    QString openService();
    QString pressLock();
    QString resize();
    QString strikeAnyKey();

    QString clickOne(const char *pattern);
    QString click(const char *name);
    void show(QWidget *widget);
    DragFrame *anyFrame(bool withLabel);

    MainWindow &m_window;
    ScreenCheck &m_screen;
    Hand &m_hand;
    Dice &m_dice;
    QString m_port;
    bool m_isDragging = false;
    QPointer<DragFrame> m_target;
};
