#include "simulator/line/portlink.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace tk7sim {

namespace {

constexpr int maxNameLength = 64;
constexpr mode_t privateFolder = 0700;
constexpr mode_t permissionBits = 0777;

QByteArray native(const QString &path)
{
    return QFile::encodeName(path);
}

// Makes the folder, or checks that the one found is the user's own and nobody else's.
bool prepareFolder(const QString &path, QString *error)
{
    const QByteArray file = native(path);
    struct stat info
    {
    };
    if (::mkdir(file.constData(), privateFolder) != 0 && errno != EEXIST) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    if (::lstat(file.constData(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        *error = QStringLiteral("not a folder");
        return false;
    }
    if (info.st_uid != ::geteuid()) {
        *error = QStringLiteral("the folder belongs to somebody else");
        return false;
    }
    if ((info.st_mode & permissionBits) != privateFolder
        && ::chmod(file.constData(), privateFolder) != 0) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    return true;
}

} // namespace

PortLink::~PortLink()
{
    remove();
}

QString PortLink::folder()
{
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QString() : QString(runtime + QLatin1String("/tk7-ports"));
}

bool PortLink::isValidName(const QString &name)
{
    return !name.isEmpty() && name.size() <= maxNameLength && !name.contains(QLatin1Char('/'))
        && !name.contains(QChar(0)) && !name.startsWith(QLatin1Char('.'));
}

bool PortLink::publish(const QString &name, const QString &device)
{
    remove();
    m_error.clear();
    if (!isValidName(name)) {
        return fail(QStringLiteral("\"%1\" can't be the name of a port").arg(name));
    }
    const QString path = folder();
    if (path.isEmpty()) {
        return fail(QStringLiteral("there is no runtime folder for this user"));
    }
    QString reason;
    if (!prepareFolder(path, &reason)) {
        return fail(QStringLiteral("%1: %2").arg(path, reason));
    }
    const QString link = path + QLatin1Char('/') + name;
    if (QFileInfo::exists(link) && !QFileInfo(link).isSymLink()) {
        return fail(QStringLiteral("%1 is in the way and is no link").arg(link));
    }
    // Made aside and renamed, so that the name is never missing while it is replaced.
    const QString aside = QStringLiteral("%1/.%2.%3").arg(path, name).arg(::getpid());
    ::unlink(native(aside).constData());
    if (::symlink(native(device).constData(), native(aside).constData()) != 0
        || std::rename(native(aside).constData(), native(link).constData()) != 0) {
        const QString why = QString::fromLocal8Bit(std::strerror(errno));
        ::unlink(native(aside).constData());
        return fail(QStringLiteral("%1: %2").arg(link, why));
    }
    m_name = name;
    m_path = link;
    m_device = device;
    return true;
}

void PortLink::remove()
{
    if (m_name.isEmpty()) {
        return;
    }
    if (QFile::symLinkTarget(m_path) == m_device) {
        ::unlink(native(m_path).constData());
    }
    m_name.clear();
    m_path.clear();
    m_device.clear();
}

bool PortLink::fail(const QString &text)
{
    m_error = text;
    return false;
}

} // namespace tk7sim
