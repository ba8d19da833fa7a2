#pragma once

#include "simulator/router/routerconfig.h"

#include <QString>

class Tool;

/*!
 * Compares what the tool's window shows of \a output, an output port that is selected, with
 * \a config, by colours and by parts that must look alike. \a view is the code of the port under
 * view. Returns an empty text if all is well, and else the first thing that isn't.
 */
QString matrixProblem(const Tool &tool, const tk7sim::RouterConfig &config, int output, int view);
