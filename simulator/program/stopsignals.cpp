#include "simulator/program/stopsignals.h"

#include <QSocketNotifier>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace tk7sim {

namespace {

constexpr int caught[] = {SIGINT, SIGTERM, SIGHUP};

// A signal handler may do hardly more than write to a pipe.
int pipeEnds[2] = {-1, -1};

void handler(int /*number*/)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

StopSignals::StopSignals(QObject *parent) : QObject(parent)
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // the signals then end the program at once
    }
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        emit stopped();
    });
    for (const int number : caught) {
        std::signal(number, handler);
    }
}

StopSignals::~StopSignals()
{
    for (const int number : caught) {
        std::signal(number, SIG_DFL);
    }
    m_notifier.reset();
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

} // namespace tk7sim
