#pragma once

/*! What the mouse pointer owes to the operating system. */
namespace platform {

/*!
 * Takes the mouse from the drag that has it and gives the pointer back its arrow. On Windows the
 * dragged picture is the pointer itself, and stays it until a window asks for another one. A drag
 * inside of which something opens goes on only when that is closed; until then it would keep every
 * click for itself. Elsewhere an ended drag leaves nothing behind.
 */
void takePointerFromDrag();

} // namespace platform
