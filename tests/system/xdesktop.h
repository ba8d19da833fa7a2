#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>

#include <memory>

/*!
 * The display as a user has it: windows to be seen, a mouse and a keyboard.
 *
 * All places are in pixels of the screen. Mouse and keyboard are the display's own: what they do
 * comes to a program as if a hand had done it.
 */
class XDesktop
{
public:
    struct Window
    {
        quint32 id = 0; //!< 0: no window
        QString title;
        QRect place;          //!< of its contents
        QRect frame;          //!< with the window manager's frame
        bool isPopup = false; //!< without a frame and unmanaged: a list, the picture of a drag
    };

    //! What stands on the screen in place of the mouse.
    struct Pointer
    {
        QImage picture;
        QPoint hotSpot;
    };

    enum Button { LeftButton = 1, RightButton = 3 };

    //! Ends the tour if there is no display, or one without XTest.
    XDesktop();
    ~XDesktop();

    QRect screen() const;
    //! The screen's dots per inch over 96.
    double scale() const;
    bool hasWindowManager() const;

    //! The visible windows of the process \a pid, from the lowest to the topmost.
    QVector<Window> windowsOf(qint64 pid) const;
    //! The window that the keys go to; 0 if none.
    quint32 focusWindow() const;
    //! What is seen at \a place; the part off the screen is cut away.
    QImage picture(const QRect &place) const;

    QPoint pointer() const;
    Pointer pointerPicture() const;
    void moveTo(QPoint point);
    void press(Button button);
    void release(Button button);
    //! Strikes the key \a name ("Return", "F4"), with the key \a modifier held down, if any.
    void strike(const char *name, const char *modifier = nullptr);
    //! Holds the key \a name down until it is released.
    void holdKey(const char *name);
    void releaseKey(const char *name);
    //! Types \a text, of characters that stand on the keyboard.
    void type(const QString &text);

private:
    class Private;
    std::unique_ptr<Private> d;
};
