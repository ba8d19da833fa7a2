#pragma once

#include <QByteArray>

/*!
 * What a port hears that never falls silent: position, AIS and course sentences of a ship under
 * way, long and short ones by turns, each other than the one before. The same at every run.
 */
class MonitorStream
{
public:
    /*! The next line, with its checksum and CR LF. */
    QByteArray nextLine();

private:
    qint64 m_count = 0;
};
