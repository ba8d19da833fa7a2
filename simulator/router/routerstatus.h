#pragma once

#include <QByteArray>

namespace tk7sim {

/*! What the router reports of itself. */
struct RouterStatus
{
    int versionMajor = 3;
    int versionMinor = 5;
    QByteArray mode = "NORMAL";
    quint16 errorCode = 0;
    quint8 errorFault = 0;
    int flashBank = 0;
    int controlPort = 0; //!< the port to which the tool is wired
    QByteArray chipId = defaultChipId();

    //! Sixteen bytes that read "TK-7  SIM UNIT 0001" where the tool shows them as characters.
    static QByteArray defaultChipId();
    //! As "3.5".
    QByteArray version() const;
    //! The report of the present error, without its checksum.
    QByteArray errorBody() const;
};

} // namespace tk7sim
