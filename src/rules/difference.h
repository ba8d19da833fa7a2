#pragma once

#include <QStringList>

class RouterModel;

/*!
 * What has to be changed in \a before to make \a after of it, a line for each field:
 * "Output 3 ECDIS 1, channel 2: main input 4 DEPTH -> 5 LOG". Empty exactly if a rule file of one
 * is that of the other, byte by byte; what neither a file nor the router keeps doesn't count.
 */
QStringList differences(const RouterModel &before, const RouterModel &after);
