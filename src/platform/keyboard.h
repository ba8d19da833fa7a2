#pragma once

#include <functional>

/*! What the state of the keyboard owes to the operating system. */
namespace platform {

/*!
 * Whether the left Control key is held down at this moment; the right one doesn't count. The system
 * is asked each time, so a key that was released while another program had the focus is up. Where
 * the windows aren't on an X11 or Windows desktop there is nobody to ask, and the key is up.
 */
bool isLeftControlDown();

/*!
 * Answers isLeftControlDown() from now on, for tests that have no keyboard; an empty function asks
 * the system again.
 */
void setLeftControlSource(std::function<bool()> source);

} // namespace platform
