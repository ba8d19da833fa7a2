#include "platform/screen.h"

#include <windows.h>

namespace platform {

double logicalDotsPerInch()
{
    HDC screen = GetDC(nullptr);
    const int resolution = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return resolution;
}

} // namespace platform
