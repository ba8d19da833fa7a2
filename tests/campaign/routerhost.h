#pragma once

#include "routerstate.h"

#include "simulator/router/routersimulator.h"

#include <QObject>

/*!
 * The simulated router and an observer of its line. Lives in the thread in which it is made, where
 * all functions are called.
 */
class RouterHost : public QObject
{
    Q_OBJECT

public:
    explicit RouterHost(quint32 seed);

    tk7sim::RouterSimulator router;

    RouterState state();
    /*! Something was done that keeps the two sides from knowing the same. */
    void countLoss() { ++m_losses; }
    /*! Sets \a fault and takes note of what it does to the line. */
    void setFault(tk7sim::Fault fault, double value);

private:
    void hear(const QByteArray &line);
    void speak(const QByteArray &line);
    void look();
    bool isDeaf() const;
    bool isSpoilt() const;

    quint64 m_losses = 0;
    quint64 m_lostBytes = 0;
    quint64 m_refusedLines = 0;
    int m_downloads = 0;
    int m_uploads = 0;
    quint64 m_lossesAtUpload = 0;
    quint64 m_lossesAtDownload = 0;
    bool m_isDownloading = false;
    QByteArray m_lastLine;
    QByteArray m_refused;
    qint64 m_lastHeard = 0;
    qint64 m_lastSpoken = 0;
};
