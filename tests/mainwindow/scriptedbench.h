#pragma once

#include "mainwindow/mainwindow.h"
#include "service/servicedlg.h"
#include "support/boxanswer.h"
#include "support/ptypair.h"

#include <QTest>

#include <functional>

/*!
 * Presses the service button of \a window and runs \a use, a function of a servicedlg &, in the
 * dialog's event loop. The dialog is closed then if it is still open. Returns whether it came.
 */
bool inService(MainWindow &window, const std::function<void(servicedlg &)> &use);

/*!
 * The real window, wired to a router that says exactly what the test tells it to say.
 *
 * Of itself it only answers the handshake, the watch and the requests for the configuration, which
 * is empty, and for the version. The left Control key is held down.
 */
class ScriptedBench
{
public:
    /*! A router of \a version, such as "3.5", that is silent about it if the version is empty. */
    explicit ScriptedBench(const QByteArray &version = QByteArrayLiteral("3.5"));
    ~ScriptedBench();

    MainWindow window;
    PtyPair line;
    BoxAnswer boxes;
    bool leftControl = true;

    /*! Called with each line that the tool sends, its line end included. */
    std::function<void(const QByteArray &)> onLine;

    /*! The widget with this object name; fails hard if there is none. */
    template <typename Widget> Widget *find(const QString &name) const
    {
        auto *widget = window.findChild<Widget *>(name);
        if (!widget)
            qFatal("no widget %s", qPrintable(name));
        return widget;
    }

    /*! Presses Connect and waits for the end of the download and for the version. */
    bool connectToRouter();

    /*! Says \a body with its checksum and CR LF. */
    void say(const QByteArray &body);
    /*! Says \a head and CR LF. */
    void sayBare(const QByteArray &head);
    /*! Waits until all that has been said until now has been dealt with. */
    void waitUntilHeard();

    /*! What the tool has said since forgetHeard(), without its watch queries. */
    QList<QByteArray> heard() const;
    /*! The same without what the service dialog asks by itself: statistics and chip identifier. */
    QList<QByteArray> commands() const;
    void forgetHeard() { m_forgotten = int(line.lines().size()); }

    /*! Lets the watch find out at once that the router is silent. */
    void endLink();

    servicedlg *serviceDialog() const { return window.findChild<servicedlg *>(); }

    /*! Runs \a use in the service dialog of this window, as the function of that name does. */
    bool inService(const std::function<void(servicedlg &)> &use)
    {
        return ::inService(window, use);
    }

private:
    void answer(const QByteArray &sentence);

    QByteArray m_version;
    int m_forgotten = 0;
    int m_marks = 0;
};
