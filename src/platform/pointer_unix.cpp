#include "platform/pointer.h"

namespace platform {

void takePointerFromDrag() { }

} // namespace platform
