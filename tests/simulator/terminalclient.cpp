#include "terminalclient.h"

#include <QFile>
#include <QMap>
#include <QSocketNotifier>

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int readSize = 4096;

speed_t speedConstant(int baud)
{
    static const QMap<int, speed_t> constants = {{2400, B2400},    {4800, B4800},   {9600, B9600},
                                                 {19200, B19200},  {38400, B38400}, {57600, B57600},
                                                 {115200, B115200}};
    return constants.value(baud, B0);
}

} // namespace

TerminalClient::TerminalClient(QObject *parent) : QObject(parent) { }

TerminalClient::~TerminalClient()
{
    close();
}

bool TerminalClient::open(const QString &device, ReadMode mode)
{
    close();
    m_hungUp = false;
    m_fd = ::open(QFile::encodeName(device).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (m_fd >= 0) {
        ::tcgetattr(m_fd, &m_found);
    }
    if (m_fd >= 0 && mode == ReadMode::Collect) {
        m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminalClient::slotReadable);
    }
    return m_fd >= 0;
}

void TerminalClient::close()
{
    m_notifier.reset();
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

bool TerminalClient::setSpeed(int baud)
{
    termios settings{};
    return ::tcgetattr(m_fd, &settings) == 0 && ::cfsetspeed(&settings, speedConstant(baud)) == 0
        && ::tcsetattr(m_fd, TCSANOW, &settings) == 0;
}

bool TerminalClient::restoreSettings()
{
    return ::tcsetattr(m_fd, TCSANOW, &m_found) == 0;
}

bool TerminalClient::write(const QByteArray &bytes)
{
    return ::write(m_fd, bytes.constData(), static_cast<size_t>(bytes.size())) == bytes.size();
}

QList<QByteArray> TerminalClient::lines() const
{
    QList<QByteArray> result;
    int from = 0;
    for (int end = int(m_received.indexOf('\n')); end >= 0;
         end = int(m_received.indexOf('\n', from))) {
        result.append(m_received.mid(from, end + 1 - from));
        from = end + 1;
    }
    return result;
}

void TerminalClient::slotReadable()
{
    std::array<char, readSize> chunk{};
    const auto count = ::read(m_fd, chunk.data(), chunk.size());
    if (count > 0) {
        m_received.append(chunk.data(), static_cast<int>(count));
    } else if (count == 0 || errno == EIO) {
        m_hungUp = true;
        m_notifier->setEnabled(false);
    }
    emit changed();
}
