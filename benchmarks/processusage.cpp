#include "processusage.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <unistd.h>

ProcessUsage ProcessUsage::of(qint64 pid)
{
    // Counted from the field behind the name of the program.
    constexpr int userTicks = 11;
    constexpr int kernelTicks = 12;
    constexpr int residentPages = 21;
    constexpr double bytesPerMegabyte = 1024 * 1024;

    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    if (fields.size() <= residentPages)
        return {};
    const double ticks = fields[userTicks].toDouble() + fields[kernelTicks].toDouble();
    const double pages = fields[residentPages].toDouble();
    return {ticks / double(sysconf(_SC_CLK_TCK)),
            pages * double(sysconf(_SC_PAGESIZE)) / bytesPerMegabyte};
}
