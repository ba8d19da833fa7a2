#include "platform/screen.h"

#include <QGuiApplication>
#include <QScreen>

namespace platform {

double logicalDotsPerInch()
{
    constexpr double defaultResolution = 96.0;
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInchX() : defaultResolution;
}

} // namespace platform
