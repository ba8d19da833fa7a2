#pragma once

#include <QFrame>
#include <QPixmap>
#include <QPoint>

/*!
 * A cell of the routing matrix or the home of an input port: holds a port's label and lets it be
 * dragged to another DragFrame of the same program.
 *
 * The frame knows nothing of ports. Who receives signalEnterEvent and signalDropEvent answers by
 * setAcceptEnter() and setAcceptDrop() before the signal returns.
 */
class DragFrame : public QFrame
{
    Q_OBJECT

public:
    explicit DragFrame(QWidget *parent);

    void setAcceptEnter(bool accept) { accept_enter = accept; }
    void setAcceptDrop(bool accept) { accept_drop = accept; }

    /*! Ends a press whose release will not come here, because something has opened over it. */
    void letGo();

signals:
    void signalReleaseEvent(DragFrame *dframe);
    void signalPressEvent(DragFrame *dframe);
    void signalEnterEvent(DragFrame *rec_frame);
    void signalDropEvent(DragFrame *rec_frame);
    void signalInputPortEditName(DragFrame *dframe);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void startDrag();

    QPoint press_point;
    QPoint child_position;
    QPixmap drag_pixmap;
    bool armed = false;
    bool accept_enter = false;
    bool accept_drop = false;
};
