#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>

/*!
 * Takes the one-second timers of a program out of the hands of real time: from the first time that
 * one of them fires it does so only when the test says that a second has passed. Those that fire
 * once, as that of the painting, stay in real time.
 */
class TimerDriver : public QObject
{
    Q_OBJECT

public:
    TimerDriver();

    /*! Timers that have been caught and still live. */
    int count() const;

    /*! Lets a second pass: each timer fires once, in the order in which they were caught. */
    void tick();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QVector<QPointer<QTimer>> m_timers;
    bool m_isTicking = false;
};
