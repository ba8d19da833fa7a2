#pragma once

#include "simulator/line/sentence.h"
#include "simulator/router/faultset.h"
#include "simulator/router/firmwareimage.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QObject>
#include <QQueue>
#include <QTimer>

namespace tk7sim {

/*!
 * The router's side of a firmware update, with its faults.
 *
 * A new request begins anew in whatever state the last update was left. An error ends an update;
 * what comes then is ignored until the next request.
 */
class FirmwareUpdate : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultFlashDuration = 200;

    //! \a faults is read at every step, and outlives the update.
    explicit FirmwareUpdate(const FaultSet *faults, QObject *parent = nullptr);

    //! Milliseconds for making the flash memory ready, and for checking what was written.
    void setFlashDuration(int milliseconds) { m_flashTimer.setInterval(milliseconds); }

    //! The tool wants to begin.
    void start();
    void takePacket(const Sentence &sentence);
    //! A packet has come with a wrong checksum.
    void takeSpoiltPacket();
    //! All packets are said to have been sent.
    void finish();
    //! The firmware is to be used; false if there is none.
    bool apply();
    //! The tool has gone.
    void abort();

    //! True from a request to the end of the update, or to an error.
    bool isActive() const { return m_state != State::Idle && m_state != State::Complete; }
    //! The packets of the update in progress, or of the last one, that have been taken.
    int packets() const { return m_image.nextPacket() - 1; }
    //! The last firmware that arrived whole, byte by byte; empty if none has.
    QByteArray wholeImage() const { return m_whole.bytes(); }
    //! What it says of itself.
    std::optional<FirmwareHeader> wholeHeader() const { return m_whole.header(); }

signals:
    //! \a body is to be sent, in the form \a form.
    void said(const QByteArray &body, tk7sim::SentenceForm form);
    //! An update has begun.
    void started();
    //! A firmware has arrived and is one.
    void received();

private:
    enum class State {
        Idle,
        Preparing, // asked, and not ready yet
        Receiving, // ready for packets
        Checking,  // all packets there
        Complete   // a firmware lies ready
    };

    struct Word
    {
        QByteArray body;
        SentenceForm form;
        QDeadlineTimer due;
    };

    void slotFlashDone();
    void slotWordDue();
    void forgetPlans();
    void startFlash(State state);
    void sayReady();
    void acknowledge(int packet);
    void sayChecked();
    void fail(int code);
    bool isTroubledAt(int place);
    void sayLate(const QByteArray &body, SentenceForm form = SentenceForm::Checked);
    bool isFaultAt(Fault fault, int packet) const;

    const FaultSet *m_faults;
    State m_state = State::Idle;
    FirmwareImage m_image;
    FirmwareImage m_whole;
    QTimer m_flashTimer;
    QQueue<Word> m_words; // put off, in the order in which they are due
    QTimer m_wordTimer;
};

} // namespace tk7sim
