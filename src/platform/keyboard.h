#pragma once

#include <functional>

/*! What the state of the keyboard owes to the operating system. */
namespace platform {

/*!
 * Whether the left Control key is held down at this moment; the right one doesn't count. X11 and
 * Windows are asked each time, so a key that was released while another program had the focus is
 * up. Elsewhere, as under Wayland, nobody can be asked, and the key is what followLeftControl() has
 * seen.
 */
bool isLeftControlDown();

/*!
 * Where nobody can be asked: follows press and release of the key in this program's windows from
 * now on. A window that loses the focus hears of no release, so the key counts as up then until it
 * is pressed again. Called again, or where the system can be asked, it does nothing.
 */
void followLeftControl();

/*!
 * Answers isLeftControlDown() from now on, for tests that have no keyboard; an empty function asks
 * the system again.
 */
void setLeftControlSource(std::function<bool()> source);

} // namespace platform
