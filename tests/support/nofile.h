#pragma once

#include <QDir>
#include <QFile>
#include <QString>
#include <QTest>

#include <cstdlib>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/*! What can stand under the name of a file instead of one. */
enum class NoFile { Nothing, Directory, Socket, Pipe, Terminal, Device };
Q_DECLARE_METATYPE(NoFile)

/*! A row for each, with the column "noFile". */
inline void addNoFiles()
{
    QTest::addColumn<NoFile>("noFile");

    QTest::newRow("nothing") << NoFile::Nothing;
    QTest::newRow("a directory") << NoFile::Directory;
    QTest::newRow("a socket") << NoFile::Socket;
    QTest::newRow("a pipe that nobody writes into") << NoFile::Pipe;
    QTest::newRow("a terminal at which nobody types") << NoFile::Terminal;
    QTest::newRow("a device without an end") << NoFile::Device;
}

/*! Puts it in the place of what is at \a path. */
inline void makeNoFile(NoFile kind, const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    QFile::remove(path);
    bool isMade = true;
    if (kind == NoFile::Directory) {
        isMade = QDir().mkdir(path);
    } else if (kind == NoFile::Socket) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        isMade = ::bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
        ::close(socket);
    } else if (kind == NoFile::Pipe) {
        isMade = ::mkfifo(name.constData(), S_IRUSR | S_IWUSR) == 0;
    } else if (kind == NoFile::Terminal) {
        static const int master = ::posix_openpt(O_RDWR | O_NOCTTY); // open until the program ends
        isMade = ::grantpt(master) == 0 && ::unlockpt(master) == 0
            && QFile::link(QFile::decodeName(::ptsname(master)), path);
    } else if (kind == NoFile::Device) {
        isMade = QFile::link(QStringLiteral("/dev/zero"), path);
    }
    if (!isMade)
        qFatal("can't make %s", name.constData());
}
