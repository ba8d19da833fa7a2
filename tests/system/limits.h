#pragma once

/*!
 * How long the tour waits for what must come, in milliseconds.
 *
 * Most limits are far longer than the tool needs: the tour runs beside other tests on few
 * processors. They cost nothing where all is well.
 */
namespace Limit {

constexpr int paint = 8000; //!< what the window shows
constexpr int popup = 8000;
constexpr int box = 10000; //!< a message box or a dialog
constexpr int hear = 8000; //!< what the router hears
constexpr int download = 20000;
constexpr int upload = 20000;
constexpr int save = 10000;
constexpr int traffic = 20000; //!< sentences that come once a second, a handover before them
constexpr int poll = 15000;    //!< the counters of all ports
constexpr int firmware = 60000;
constexpr int ais = 90000; //!< vessels that are heard one by one, and an alarm after 20 s
constexpr int reboot = 20000;
constexpr int exit = 10000;

} // namespace Limit
