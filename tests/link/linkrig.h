#pragma once

#include "linkjournal.h"
#include "support/ptypair.h"

#include <QObject>

#include <functional>
#include <memory>

/*!
 * A NmeaSerialPort on a pseudo-terminal of its own, with a journal of both directions.
 *
 * Lines that come out of the port stand in the journal as `-> $VRCNT @4800`; a line without CR LF
 * at its end is marked. Several rigs can run in one event loop, which is how slow cases run side by
 * side.
 */
class LinkRig : public QObject
{
    Q_OBJECT

public:
    /*! The router's answer to a line that has come at a speed; empty: it says nothing. */
    using Router = std::function<QByteArray(const QByteArray &line, int speed)>;

    explicit LinkRig(Router router = nullptr);
    ~LinkRig() override;

    /*! Opens the pseudo-terminal as the link's port. */
    void open();

    /*!
     * Opens the port and waits for the end of the handshake, which the rig's router must answer.
     * Returns whether the link is connected.
     */
    bool openAndConnect();

    NmeaSerialPort *link() { return m_link.get(); }
    PtyPair &pty() { return m_pty; }
    LinkJournal &journal() { return m_journal; }

    void setRouter(Router router) { m_router = std::move(router); }

    /*! What came out of the port, one text a line, as in the journal. */
    QStringList sentLines() const;

    /*! Runs \a action \a ms after now, as long as the rig lives. */
    void after(int ms, std::function<void()> action);

    /*! Hears only what comes at \a speed, answers there as \a port, and goes on at 115200. */
    static Router routerAt(int speed, const QByteArray &port = QByteArrayLiteral("3"));

private:
    void answer(const QByteArray &line, int speed);

    std::unique_ptr<NmeaSerialPort> m_link;
    PtyPair m_pty;
    LinkJournal m_journal;
    Router m_router;
};
