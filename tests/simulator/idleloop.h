#pragma once

/*! So many turns in turnsOfIdleLoop() are no spinning. */
constexpr int fewTurns = 60;

/*!
 * The turns of the event loop within a third of a second. An idle program has few of them; one that
 * a ready descriptor wakes over and over has very many.
 */
int turnsOfIdleLoop();
