#pragma once

#include <QPushButton>

/*! The button of an output port: a right press is a signal of its own. */
class QMPushButton : public QPushButton
{
    Q_OBJECT

public:
    using QPushButton::QPushButton;

signals:
    void signalPushRightMouse();

protected:
    void mousePressEvent(QMouseEvent *event) override;
};
