#include "platform/console.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr int caught[] = {SIGINT, SIGTERM, SIGHUP};

// A signal handler may do hardly more than write to a pipe.
int pipeEnds[2] = {-1, -1};

void handler(int /*number*/)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
}

int descriptor(StandardStream stream)
{
    switch (stream) {
    case StandardStream::Input:
        return STDIN_FILENO;
    case StandardStream::Output:
        return STDOUT_FILENO;
    case StandardStream::Error:
        break;
    }
    return STDERR_FILENO;
}

} // namespace

bool isTerminal(StandardStream stream)
{
    return ::isatty(descriptor(stream)) != 0;
}

void prepareStandardStreams()
{
    // A stream that is closed would be the number of the next file, the router's port, say.
    while (true) {
        const int opened = ::open("/dev/null", O_RDWR);
        if (opened > STDERR_FILENO)
            ::close(opened);
        if (opened < 0 || opened > STDERR_FILENO)
            break;
    }
    std::signal(SIGPIPE, SIG_IGN);
}

class StopSignal::Private
{
public:
    std::unique_ptr<QSocketNotifier> notifier;
};

StopSignal::StopSignal(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    if (::pipe(pipeEnds) != 0)
        return; // the signals then end the program at once
    // It can't get full: each of the signals is caught once.
    for (const int end : pipeEnds)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    d->notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, [this] {
        d->notifier->setEnabled(false);
        emit stopped();
    });
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = int(SA_RESETHAND) | SA_RESTART;
    for (const int number : caught) {
        struct sigaction before = {};
        // nohup and the like: what is ignored stays so.
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

StopSignal::~StopSignal()
{
    for (const int number : caught) {
        struct sigaction present = {};
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler == handler)
            std::signal(number, SIG_DFL);
    }
    d->notifier.reset();
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

class LineReader::Private
{
public:
    QSocketNotifier notifier{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray line;
};

LineReader::LineReader(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    connect(&d->notifier, &QSocketNotifier::activated, this, [this] {
        char byte = '\n';
        const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            return;
        if (count == 1 && byte != '\n') {
            d->line += byte;
            return;
        }
        d->notifier.setEnabled(false);
        emit lineRead(QString::fromLocal8Bit(d->line));
    });
}

LineReader::~LineReader() = default;

} // namespace platform
