#pragma once

#include "mainwindow/mainwindow.h"
#include "simulator/router/routersimulator.h"
#include "support/boxanswer.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/*!
 * The real window, and a simulated router to wire it to by a pseudo-terminal.
 *
 * The router is silent but for what the tool asks, and starts at 4800 baud, the first of a search.
 */
class WindowBench
{
public:
    WindowBench();

    MainWindow window;
    tk7sim::RouterSimulator router;
    BoxAnswer boxes;

    /*! The widget with this object name; fails hard if there is none. */
    template <typename Widget> Widget *find(const QString &name) const
    {
        auto *widget = window.findChild<Widget *>(name);
        if (!widget)
            qFatal("no widget %s", qPrintable(name));
        return widget;
    }

    /*! Makes the router's present terminal the current entry of the list of ports. */
    void selectRouterPort();

    /*! Presses Connect and waits for the end of the download, whose box is answered. */
    bool connectToRouter();

    /*! Fails the test unless no connection is left, nor any trace of one, and every box has come.
     */
    void verifyIdle() const;

    /*! The box at the end of a download. */
    static BoxAnswer::Box downloadBox();

    /*! A warning of the link, titled "COM Port". */
    static BoxAnswer::Box linkBox(const QString &text);
    /*! The one that ends a connection of which nothing is heard any more. */
    static BoxAnswer::Box timeoutBox();
    /*! The one that ends a connection which another program has taken. */
    static BoxAnswer::Box busyBox();

    /*! Whether \a button shows the picture \a path. */
    static bool isSameIcon(const QPushButton *button, const QString &path);

    /*! The lines that the router has heard since the last clearTranscript(), without watch queries.
     */
    QList<QByteArray> heard() const;
};
