#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace tk7sim {

/*! Turns the interrupt, hang-up and termination signals of the system into one of Qt's. Make one.
 */
class StopSignals : public QObject
{
    Q_OBJECT

public:
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

signals:
    void stopped();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tk7sim
