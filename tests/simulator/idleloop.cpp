#include "idleloop.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QTimer>

int turnsOfIdleLoop()
{
    constexpr int milliseconds = 300;
    int turns = 0;
    QEventLoop loop;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &loop,
                     [&turns] { ++turns; });
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    return turns;
}
