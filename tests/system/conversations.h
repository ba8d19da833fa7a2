#pragma once

#include "simulator/router/routerconfig.h"

#include <QByteArray>
#include <QList>

/*!
 * What a router hears: lines as Listener expects them, those with a line end whole, and of the
 * others the beginning.
 */
namespace Conversation {

constexpr int wholePort = 15; //!< in the low half of a view code: no single channel
constexpr int anInput = 15;   //!< in its high half: the low one is an input port

//! Lines of an upload before what ends it.
constexpr int uploadLength = 80;

QByteArray number(int value);
//! What the router shows: an output port with a channel or as a whole, or an input port.
constexpr int viewCode(int high, int low)
{
    return 16 * high + low;
}

QByteArray view(int code);
QByteArray speed(int port, quint32 baud);
//! The rules of an output port, changed by hand.
QByteArray rules(int port);
//! The first or second half, 0 or 1, of the filters of an output port, changed by hand.
QByteArray filters(int port, int half);
QByteArray headers(int port);
QList<QByteArray> filterList();

//! From the first query to the end of the first download, with speeds that the window didn't show.
QList<QByteArray> firstDownload(const tk7sim::RouterConfig &config);
//! The same for a window that shows the router's speeds already.
QList<QByteArray> download();
QList<QByteArray> upload(const tk7sim::RouterConfig &config);
QList<QByteArray> save(const tk7sim::RouterConfig &config);

} // namespace Conversation
