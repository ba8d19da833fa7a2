#include "conversations.h"

#include "simulator/line/sentence.h"

using namespace tk7sim;

namespace Conversation {

QByteArray number(int value)
{
    return QByteArray::number(value);
}

QByteArray view(int code)
{
    return "$VRVVW," + number(code) + "\r\n";
}

QByteArray speed(int port, quint32 baud)
{
    return withChecksum("$VRSPD," + number(port) + ',' + QByteArray::number(baud));
}

QByteArray rules(int port)
{
    return "$VRRUL," + number(port) + ",W,";
}

QByteArray filters(int port, int half)
{
    constexpr int halfLength = channelCount / 2;
    return "$VRFLT," + number(port) + ",W," + number(half * halfLength) + ',';
}

QByteArray headers(int port)
{
    return "$VRHDC," + number(port) + ",W,";
}

QList<QByteArray> filterList()
{
    return {"$VRFLS,0,", "$VRFLS,8,", "$VRFLS,16,", "$VRFLS,24,"};
}

// A speed that comes down goes straight back to the router if the tool showed another one.
QList<QByteArray> firstDownload(const RouterConfig &config)
{
    constexpr quint32 speedAtStart = 4800;
    QList<QByteArray> lines = download();
    const QByteArray last = lines.takeLast();
    for (int i = 0; i < portCount; ++i) {
        if (config.speeds[size_t(i)] != speedAtStart)
            lines += speed(i, config.speeds[size_t(i)]);
    }
    return lines << last;
}

QList<QByteArray> download()
{
    return {"$VRCNT\r\n", "$VRCNT\r\n", "$VRRLD\r\n", "$VRVER\r\n"};
}

QList<QByteArray> upload(const RouterConfig &config)
{
    QList<QByteArray> lines;
    for (int i = 0; i < portCount; ++i) {
        const QByteArray head = number(i) + ",B,";
        lines << "$VRRUL," + head << "$VRFLT," + head + "0,"
              << "$VRFLT," + head + "6,"
              << "$VRHDC," + head << "$VRWBL\r\n"
              << speed(i, config.speeds[size_t(i)]);
    }
    lines += filterList();
    return lines << "$VRPNM,O,0,"
                 << "$VRPNM,O,6,"
                 << "$VRPNM,I,0,"
                 << "$VRPNM,I,6,";
}

QList<QByteArray> save(const RouterConfig &config)
{
    return upload(config) << "$VRSVR\r\n";
}

} // namespace Conversation
