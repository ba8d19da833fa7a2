// The screens of the platforms without a display have 800 by 800 and 240 by 320 pixels: no window
// of the tool would have the size of its design there.

#include "widgets/screenarea.h"

#include <QCoreApplication>

namespace {

void showOnWideScreen()
{
    pretendAvailableArea(QRect(0, 0, 1920, 1440));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(showOnWideScreen)
