#include "simulator/instruments/aisreplay.h"

#include "simulator/instruments/aissentence.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace tk7sim {

AisReplay::AisReplay(int port, const QByteArray &contents) : m_port(port)
{
    const auto lines = contents.split('\n');
    for (const QByteArray &line : lines) {
        const QByteArray text = line.trimmed();
        if (text.isEmpty() || text.startsWith('#')) {
            continue;
        }
        const QByteArray body = aisFieldsOf(text).join(',');
        if (body.isEmpty()) {
            ++m_leftOut;
        } else {
            m_bodies.append(body);
        }
    }
}

std::optional<AisReplay> AisReplay::load(int port, const QString &path, QString *error)
{
    // A pipe or a device would keep the program waiting, or never end.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        *error = QStringLiteral("%1 is no file").arg(path);
        return std::nullopt;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    const QByteArray contents = file.read(maxFileSize + 1);
    if (contents.size() > maxFileSize) {
        *error = QStringLiteral("%1 is too long").arg(path);
        return std::nullopt;
    }
    AisReplay replay(port, contents);
    if (replay.lineCount() == 0) {
        *error = QStringLiteral("%1 holds no AIS sentence").arg(path);
        return std::nullopt;
    }
    return replay;
}

void AisReplay::start(qint64 now)
{
    m_now = now;
    m_owed = 1;
    m_next = 0;
}

std::optional<QByteArray> AisReplay::take(qint64 now)
{
    const qint64 passed = qBound<qint64>(0, now - m_now, longestGap);
    m_now = std::max(m_now, now);
    m_owed += static_cast<double>(passed) * m_rate / interval;
    // What nobody asked for isn't made up for later.
    const double mostOwed = static_cast<double>(longestGap) * std::max(m_rate, 1.0) / interval;
    m_owed = std::min(m_owed, mostOwed);
    if (m_owed < 1 || m_bodies.isEmpty()) {
        return std::nullopt;
    }
    m_owed -= 1;
    const QByteArray body = m_bodies.at(m_next);
    m_next = int((m_next + 1) % m_bodies.size());
    return body;
}

} // namespace tk7sim
