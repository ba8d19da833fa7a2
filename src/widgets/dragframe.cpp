#include "widgets/dragframe.h"

#include "platform/pointer.h"
#include "platform/qtversion.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>

namespace {

constexpr int restStyle = int(QFrame::Box) | int(QFrame::Raised);
constexpr int pressedStyle = int(QFrame::Box) | int(QFrame::Sunken);
constexpr QSize designSize(95, 31);

const QString labelFormat = QStringLiteral("application/label");

} // namespace

DragFrame::DragFrame(QWidget *parent) : QFrame(parent)
{
    resize(designSize);
    setFrameStyle(restStyle);
    setAcceptDrops(true);
    setMidLineWidth(1);
}

void DragFrame::letGo()
{
    armed = false;
    setFrameStyle(restStyle);
}

void DragFrame::mousePressEvent(QMouseEvent *event)
{
    QWidget *child = childAt(platform::positionOf(event));
    armed = false;
    const bool isLeft = event->buttons() & Qt::LeftButton;
    const bool isRight = event->buttons() & Qt::RightButton;
    if (!isLeft) {
        if (isRight && child)
            emit signalInputPortEditName(this);
        QFrame::mousePressEvent(event);
        return;
    }
    if (!child || !child->isEnabled())
        return;
    setFrameStyle(pressedStyle);
    emit signalPressEvent(this);
    press_point = platform::positionOf(event);
    child_position = child->pos();
    drag_pixmap = QPixmap(child->size());
    child->render(&drag_pixmap, QPoint(), QRegion(),
                  QWidget::DrawWindowBackground | QWidget::DrawChildren);
    armed = true;
    if (isRight)
        emit signalInputPortEditName(this);
    QFrame::mousePressEvent(event);
}

void DragFrame::mouseMoveEvent(QMouseEvent *event)
{
    if (!armed)
        return;
    const int distance = (platform::positionOf(event) - press_point).manhattanLength();
    if (event->buttons() & Qt::LeftButton && distance > QApplication::startDragDistance()) {
        setFrameStyle(restStyle);
        startDrag();
    }
    QFrame::mouseMoveEvent(event);
}

void DragFrame::startDrag()
{
    auto *label = new QMimeData; // owned by the drag
    label->setData(labelFormat, QByteArray());
    auto *drag = new QDrag(this); // deletes itself when the drag has ended
    drag->setMimeData(label);
    drag->setPixmap(drag_pixmap);
    drag->setHotSpot(press_point - child_position);
    drag->exec(Qt::MoveAction);
    platform::takePointerFromDrag();
}

void DragFrame::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setFrameStyle(restStyle);
        emit signalReleaseEvent(this);
    }
    QFrame::mouseReleaseEvent(event);
}

void DragFrame::dragEnterEvent(QDragEnterEvent *event)
{
    if (!event->mimeData()->hasFormat(labelFormat) || !event->source())
        return;
    emit signalEnterEvent(this);
    if (accept_enter)
        event->acceptProposedAction();
}

// What was answered on entering holds for the whole frame.
void DragFrame::dragMoveEvent(QDragMoveEvent *) { }

void DragFrame::dropEvent(QDropEvent *event)
{
    emit signalDropEvent(this);
    if (accept_drop)
        event->acceptProposedAction();
}
