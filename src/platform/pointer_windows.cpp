#include "platform/pointer.h"

#include <windows.h>

namespace platform {

void takePointerFromDrag()
{
    ReleaseCapture();
    SetCursor(LoadCursor(nullptr, IDC_ARROW));
}

} // namespace platform
