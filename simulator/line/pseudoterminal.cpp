#include "simulator/line/pseudoterminal.h"

#include "simulator/line/linespeed.h"

#include <QFile>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tk7sim {

namespace {

constexpr int readSize = 4096;
constexpr int maxReads = 16; // in one turn, so that a flood doesn't starve the event loop
constexpr int pathSize = 256;
// While nobody has the terminal. A program that ends sets what it has found and closes the port,
// while its last bytes may wait to be read; as no program works at this speed, it says that one is
// leaving.
constexpr speed_t idleSpeed = B50;

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

bool prepareMaster(int fd)
{
    const int flags = ::fcntl(fd, F_GETFL);
    return flags >= 0 && ::fcntl(fd, F_SETFL, flags | O_NONBLOCK) == 0
        && ::fcntl(fd, F_SETFD, FD_CLOEXEC) == 0 && ::grantpt(fd) == 0 && ::unlockpt(fd) == 0;
}

} // namespace

PseudoTerminal::PseudoTerminal(QObject *parent) : QObject(parent), m_attachTimer(this)
{
    m_attachTimer.setInterval(attachPollInterval);
    connect(&m_attachTimer, &QTimer::timeout, this, &PseudoTerminal::slotLookForTool);
}

PseudoTerminal::~PseudoTerminal()
{
    close();
}

bool PseudoTerminal::open()
{
    close();
    std::array<char, pathSize> path{};
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0 || !prepareMaster(m_master)
        || ::ptsname_r(m_master, path.data(), path.size()) != 0) {
        m_error = systemError();
        close();
        return false;
    }
    m_deviceName = QFile::decodeName(path.data());
    // Until its first user has gone, a terminal doesn't show that it has none.
    if (!resetOtherSide()) {
        m_error = systemError();
        close();
        return false;
    }
    m_error.clear();
    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    m_notifier->setEnabled(false);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PseudoTerminal::slotReadable);
    m_attachTimer.start();
    return true;
}

void PseudoTerminal::close()
{
    m_attachTimer.stop();
    if (m_notifier) {
        // close() may run inside a slot of the notifier.
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
    }
    if (m_master >= 0) {
        ::close(m_master);
        m_master = -1;
    }
    m_deviceName.clear();
    m_lastSpeed = 0;
    if (m_attached) {
        m_attached = false;
        emit attachedChanged(false);
    }
}

int PseudoTerminal::lineSpeed() const
{
    termios settings{};
    if (m_master < 0 || ::tcgetattr(m_master, &settings) != 0) {
        return 0;
    }
    const speed_t speed = ::cfgetospeed(&settings);
    return speed == idleSpeed ? m_lastSpeed : baudOfTermios(speed);
}

int PseudoTerminal::write(const QByteArray &bytes)
{
    if (!m_attached) {
        return 0;
    }
    m_lastSpeed = lineSpeed();
    const auto written = ::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size()));
    return written > 0 ? static_cast<int>(written) : 0;
}

PseudoTerminal::HangUp PseudoTerminal::readAvailable()
{
    m_lastSpeed = lineSpeed();
    QByteArray bytes;
    std::array<char, readSize> chunk{};
    HangUp result = HangUp::No;
    for (int i = 0; i < maxReads; ++i) {
        const auto count = ::read(m_master, chunk.data(), chunk.size());
        if (count <= 0) {
            // The master reports a terminal without a user as an input error.
            result = count < 0 && errno == EIO ? HangUp::Yes : HangUp::No;
            break;
        }
        bytes.append(chunk.data(), static_cast<int>(count));
    }
    if (!bytes.isEmpty()) {
        emit bytesReceived(bytes, m_lastSpeed);
    }
    return result;
}

void PseudoTerminal::slotReadable()
{
    if (readAvailable() == HangUp::Yes && isOpen() && m_attached) {
        detach();
    }
}

void PseudoTerminal::slotLookForTool()
{
    bool readable = false;
    if (!isHungUp(&readable)) {
        attach();
        return;
    }
    if (readable) {
        // Somebody came, wrote and went between two looks.
        readAvailable();
        resetOtherSide();
    }
}

void PseudoTerminal::attach()
{
    m_attachTimer.stop();
    m_attached = true;
    m_lastSpeed = lineSpeed();
    m_notifier->setEnabled(true);
    emit attachedChanged(true);
}

void PseudoTerminal::detach()
{
    m_notifier->setEnabled(false);
    m_attached = false;
    m_attachTimer.start();
    const bool usable = resetOtherSide();
    emit attachedChanged(false);
    if (!usable && isOpen() && isHungUp()) {
        emit lockedOut();
    }
}

// Raw mode, the idle speed, nothing unread: as the next program should find it.
bool PseudoTerminal::resetOtherSide()
{
    const int fd = ::open(QFile::encodeName(m_deviceName).constData(),
                          O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    termios settings{};
    bool ok = ::tcgetattr(fd, &settings) == 0;
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, idleSpeed);
    settings.c_cflag |= CLOCAL | CREAD;
    ok = ok && ::tcsetattr(fd, TCSANOW, &settings) == 0;
    ::tcflush(fd, TCIFLUSH);
    ::ioctl(fd, TIOCNXCL);
    ::close(fd);
    return ok;
}

bool PseudoTerminal::isHungUp(bool *readable) const
{
    pollfd state{m_master, POLLIN, 0};
    if (m_master < 0 || ::poll(&state, 1, 0) < 0) {
        return true;
    }
    if (readable) {
        *readable = (state.revents & POLLIN) != 0;
    }
    return (state.revents & POLLHUP) != 0;
}

} // namespace tk7sim
