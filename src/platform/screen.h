#pragma once

/*! What the screen's resolution owes to the operating system. */
namespace platform {

/*! Horizontal resolution of the primary screen in logical dots per inch; 96 without a screen. */
double logicalDotsPerInch();

} // namespace platform
