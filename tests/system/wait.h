#pragma once

#include <QElapsedTimer>
#include <QString>

#include <functional>

/*!
 * Runs the event loop, and with it the simulated router, until \a condition holds. False if it
 * doesn't within \a milliseconds.
 */
bool waitUntil(const std::function<bool()> &condition, int milliseconds);

/*! The same, but ends the tour with \a text if the condition doesn't come true. */
void await(const std::function<bool()> &condition, int milliseconds, const QString &text);

/*!
 * Waits until \a problem returns an empty text. Ends the tour with the last one if it doesn't
 * within \a milliseconds.
 */
void awaitNoProblem(const std::function<QString()> &problem, int milliseconds);

/*! Runs the event loop for \a milliseconds: the pace of a user's hand. */
void runFor(int milliseconds);

/*! The seconds since \a timer was started. */
double secondsOf(const QElapsedTimer &timer);
