#pragma once

#include "screenmap.h"
#include "xdesktop.h"

#include <QColor>
#include <QImage>
#include <QProcess>
#include <QString>

/*!
 * The tool as its user has it: a program that was started, its windows, a hand on the mouse.
 *
 * Places within the main window are those of ScreenMap. Everything that is waited for has a time
 * limit and ends the tour if it doesn't come.
 */
class Tool
{
public:
    Tool();
    //! Kills the tool if it still runs.
    ~Tool();

    const ScreenMap &map() const { return m_map; }

    // The process

    //! Starts \a program in \a folder; \a wine runs it if it is a program for Windows.
    void start(const QString &program, const QString &wine, const QString &folder);
    //! True if the tool is a program for Windows.
    bool isForWindows() const { return m_isForWindows; }
    bool isRunning() const;
    qint64 processId() const { return m_process.processId(); }
    //! Seconds of a processor that the tool has used.
    double processorTime() const;
    int exitCode() const { return m_process.exitCode(); }
    bool hasCrashed() const { return m_process.exitStatus() == QProcess::CrashExit; }
    //! What the tool has written to its two outputs since the last call.
    QString output();

    // Windows

    //! Waits for a managed window called \a title that has the keys.
    XDesktop::Window awaitWindow(const QString &title, int milliseconds);
    //! Waits for a window without a frame: a list, a dialog of that kind, the picture of a drag.
    XDesktop::Window awaitPopup(int milliseconds);
    void awaitNoPopup();
    //! Waits until \a window has the keys.
    void awaitKeys(const XDesktop::Window &window);
    //! Waits until \a window has closed and given the keys back.
    void awaitGone(const XDesktop::Window &window);
    //! Strikes Return in \a box and waits until it has gone.
    void acceptBox(const XDesktop::Window &box);
    //! The same with Escape.
    void leaveBox(const XDesktop::Window &box);
    //! Makes \a title the main window: the one that the places are in.
    void adoptMainWindow(const QString &title);
    //! The main window as it is now.
    XDesktop::Window mainWindow() const;

    // Looking

    //! What is seen on the screen at \a place.
    QImage pictureOnScreen(const QRect &place) const { return m_desktop.picture(place); }
    //! What is seen at \a place of the main window.
    QImage look(const QRect &place) const;
    //! What is seen at \a place of the dialog \a window, in design pixels.
    QImage look(const XDesktop::Window &window, const QRect &place) const;
    //! What the mouse drags, where it is seen; a null image if that is nothing.
    QImage draggedPicture(QPoint *place) const;
    //! All windows of the tool with their frames.
    QImage picture() const;
    //! The window that has the keys, with its frame; a null image if that is the main window.
    QImage dialogPicture() const;

    // Doing

    XDesktop &desktop() { return m_desktop; }
    //! The middle of \a place of the main window, on the screen.
    QPoint middleOf(const QRect &place) const;
    void click(const QRect &place, XDesktop::Button button = XDesktop::LeftButton);
    //! Clicks on the middle of \a place of the dialog \a window, in design pixels.
    void click(const XDesktop::Window &window, const QRect &place);
    //! Clicks on \a point of the dialog \a window, in pixels; the second twice in a row.
    void clickAt(const XDesktop::Window &window, QPoint point);
    void doubleClickAt(const XDesktop::Window &window, QPoint point);
    //! Moves the mouse to \a target as a hand does, over the places between.
    void glideTo(QPoint target);
    //! Moves the mouse away from the window, so that nothing is lit up under it.
    void restMouse();

private:
    QVector<XDesktop::Window> windows() const;
    void closeByKey(const XDesktop::Window &window, const char *key);
    QRect onScreen(const XDesktop::Window &window, const QRect &place) const;
    void clickAt(QPoint point, XDesktop::Button button);

    XDesktop m_desktop;
    ScreenMap m_map;
    QProcess m_process;
    quint32 m_mainWindow = 0;
    bool m_isForWindows = false;
};

//! The share of \a image's pixels, 0 to 1, that are exactly of \a color.
double shareOf(const QImage &image, const QColor &color);
