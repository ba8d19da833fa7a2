#include "widgets/qmpushbutton.h"

#include <QMouseEvent>

void QMPushButton::mousePressEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::RightButton)
        emit signalPushRightMouse();
    QAbstractButton::mousePressEvent(event);
}
