#pragma once

#include "model/routermodel.h"
#include "model/viewcode.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QEventLoop;
QT_END_NAMESPACE

class Download;
class NmeaSerialPort;

/*!
 * One connection with a router, step by step: each function runs the event loop until its step is
 * done or can't be done any more. Once a step has failed, or stop() was called, all that follow
 * fail in the same way; only close() still does its work.
 */
class RouterSession : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        Ok,
        PortError,  //!< the port can't be opened
        NoRouter,   //!< no answer at any speed
        Busy,       //!< another control program holds the router
        Lost,       //!< the link has died
        Incomplete, //!< parts of the configuration haven't come; missing() tells which
        SaveError,  //!< the router couldn't write its memory
        NoAnswer,   //!< the router lives, but doesn't do what it was asked for
        Stopped     //!< by stop()
    };

    explicit RouterSession(QObject *parent = nullptr);
    ~RouterSession() override;

    /*! Finds the router at \a port: a listed name or a path. */
    Outcome open(const QString &port);

    /*! Fills \a model. What is lost on the way is asked for again, twice at most. */
    Outcome download(RouterModel &model);

    /*! Sends \a model whole. Whether it has arrived only another download can tell. */
    Outcome upload(const RouterModel &model);

    /*! Lets the router keep its present rules. */
    Outcome saveToEeprom();

    /*!
     * Takes the sentences of the port under view for \a milliseconds, or without end if that is 0.
     * \a take gets each without its line end, and returns false if it wants no more.
     */
    Outcome record(ViewCode view, int milliseconds,
                   const std::function<bool(const QString &)> &take);

    /*! Keeps the connection until resume(). */
    Outcome hold();

    /*! Takes leave of the router, if there is one, and closes the port. */
    void close();

    /*! Whether the router has a lock password and is locked: it would refuse to save. */
    bool isLocked() const { return m_isLocked; }

    /*! What hasn't come, after Outcome::Incomplete. */
    QStringList missing() const { return m_missing; }

public slots:
    void resume();
    void stop();

signals:
    void progress(const QString &step, int percent);

private:
    enum class Awaited { Nothing, Connection, EndMark, SaveResult, View, Resumption };

    void wireLink();
    void wireDownload();
    Outcome wait(Awaited awaited, int milliseconds, Outcome atTimeOut);
    Outcome send(const QString &sentence);
    void arrive(Awaited what, Outcome outcome = Outcome::Ok);
    void breakOff(Outcome outcome);
    void takeLine(const QString &line);
    template <typename Take> void receive(Take take);

    std::unique_ptr<NmeaSerialPort> m_link;
    std::unique_ptr<Download> m_download;
    QEventLoop *m_loop = nullptr;
    QTimer m_limit;
    Awaited m_awaited = Awaited::Nothing;
    Outcome m_outcome = Outcome::Ok;
    Outcome m_broken = Outcome::Ok; //!< why no further step can be done
    bool m_isConnected = false;
    bool m_isLocked = false;
    QStringList m_missing;
    quint8 m_view = 0;      //!< the view code that was asked for
    bool m_isShown = false; //!< the router has confirmed it
    std::function<bool(const QString &)> m_take;
};
