#include "support/ptypair.h"

#include <QFile>
#include <QPointer>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

struct Speed
{
    speed_t code;
    int baud;
};

constexpr Speed speeds[] = {
    {B1200, 1200},   {B2400, 2400},   {B4800, 4800},   {B9600, 9600},
    {B19200, 19200}, {B38400, 38400}, {B57600, 57600}, {B115200, 115200},
};

constexpr int chunkSize = 4096;
constexpr int pathSize = 128;

bool makeRaw(int terminal)
{
    termios settings = {};
    if (tcgetattr(terminal, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

void closeDescriptor(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

PtyPair::PtyPair(QObject *parent) : QObject(parent)
{
    m_clock.start();
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char path[pathSize] = {};
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0
        || ::ptsname_r(m_master, path, sizeof path) != 0) {
        closeDescriptor(m_master);
        return;
    }
    m_slave = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_slave < 0 || !makeRaw(m_slave)) {
        closeDescriptor(m_slave);
        closeDescriptor(m_master);
        return;
    }
    m_slavePath = QFile::decodeName(path);
    m_notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] { readMaster(); });
}

PtyPair::~PtyPair()
{
    hangUp();
}

bool PtyPair::write(const QByteArray &bytes)
{
    int written = 0;
    while (m_master >= 0 && written < bytes.size()) {
        const ssize_t count =
            ::write(m_master, bytes.constData() + written, size_t(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += int(count);
    }
    return written == bytes.size();
}

int PtyPair::speed() const
{
    termios settings = {};
    // The master answers for the settings of the pair, which are those of the slave side.
    if (m_master < 0 || tcgetattr(m_master, &settings) != 0)
        return 0;
    const speed_t code = cfgetospeed(&settings);
    for (const Speed &known : speeds) {
        if (known.code == code)
            return known.baud;
    }
    return 0;
}

int PtyPair::unread() const
{
    int count = 0;
    return m_slave >= 0 && ::ioctl(m_slave, FIONREAD, &count) == 0 ? count : 0;
}

void PtyPair::hangUp()
{
    delete m_notifier;
    m_notifier = nullptr;
    closeDescriptor(m_master);
    closeDescriptor(m_slave);
}

void PtyPair::readMaster()
{
    const QPointer<PtyPair> self(this);
    char chunk[chunkSize];
    while (self && m_master >= 0) {
        const ssize_t count = ::read(m_master, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        collect(QByteArray(chunk, int(count)));
    }
}

void PtyPair::collect(const QByteArray &bytes)
{
    const QPointer<PtyPair> self(this);
    const qint64 now = micros();
    const int baud = speed();
    m_received += bytes;
    for (const char byte : bytes) {
        m_partial.append(byte);
        if (byte != '\n')
            continue;
        const QByteArray complete = m_partial;
        m_partial.clear();
        m_lines.append({complete, now, baud});
        emit lineReceived(complete, baud);
        if (!self)
            return;
    }
}
