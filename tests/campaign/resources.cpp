#include "resources.h"

#include "mainwindow/mainwindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QPixmapCache>
#include <QThreadPool>

#include <algorithm>

#include <malloc.h>
#include <unistd.h>

namespace {

constexpr double bytesPerMegabyte = 1024 * 1024;

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = file.readAll().split(' ');
    return fields.value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

int entries(const char *folder)
{
    const auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    return int(QDir(QString::fromLatin1(folder)).entryList(all).size());
}

// The folder that is being read is open, too, and doesn't count.
QStringList openTargets()
{
    QStringList targets;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    const auto links = folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &link : links) {
        const QString target = QFile::symLinkTarget(folder.filePath(link));
        if (!target.isEmpty() && !target.endsWith(QLatin1String("/fd")))
            targets += target.section(QLatin1Char('/'), -2);
    }
    targets.sort();
    return targets;
}

// A combo box makes its list when it is first opened, and keeps it.
bool isInComboBox(const QObject *object)
{
    const QObject *parent = object->parent();
    while (parent && !qobject_cast<const QComboBox *>(parent))
        parent = parent->parent();
    return parent != nullptr;
}

QStringList classesOfWidgets()
{
    QStringList classes;
    const auto widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        if (!isInComboBox(widget))
            classes += QString::fromLatin1(widget->metaObject()->className());
    }
    classes.sort();
    return classes;
}

// What \a some has and \a others hasn't.
QString surplus(const QStringList &some, const QStringList &others)
{
    QStringList more = some;
    for (const QString &other : others)
        more.removeOne(other);
    return more.join(QLatin1Char(' '));
}

} // namespace

Resources Resources::measure(const MainWindow &window)
{
    // The threads in which Qt paints large areas end by themselves, but only after half a minute.
    QThreadPool::globalInstance()->waitForDone();
    // What Qt keeps so as to draw faster has a bound of its own, of ten megabytes.
    QPixmapCache::clear();
    Resources found;
    found.memory = residentBytes();
    found.heap = qint64(mallinfo2().uordblks);
    found.openFiles = openTargets();
    found.files = int(found.openFiles.size());
    found.threads = entries("/proc/self/task");
    found.widgetClasses = classesOfWidgets();
    found.widgets = int(found.widgetClasses.size());
    const auto objects = window.findChildren<QObject *>();
    found.objects = int(std::count_if(objects.begin(), objects.end(),
                                      [](const QObject *o) { return !isInComboBox(o); }));
    return found;
}

QString Resources::difference(const Resources &before, const Resources &after)
{
    struct Row
    {
        const char *name;
        int before;
        int after;
    };
    const Row rows[] = {{"open files", before.files, after.files},
                        {"threads", before.threads, after.threads},
                        {"widgets", before.widgets, after.widgets},
                        {"objects of the window", before.objects, after.objects}};
    for (const Row &row : rows) {
        if (row.before != row.after)
            return QStringLiteral("%1: %2 before, %3 now; files more: %4, less: %5; widgets more: "
                                  "%6, less: %7")
                .arg(QLatin1String(row.name))
                .arg(row.before)
                .arg(row.after)
                .arg(surplus(after.openFiles, before.openFiles),
                     surplus(before.openFiles, after.openFiles),
                     surplus(after.widgetClasses, before.widgetClasses),
                     surplus(before.widgetClasses, after.widgetClasses));
    }
    return QString();
}

QString Resources::text() const
{
    return QStringLiteral("memory %1 MB, heap %2 MB, %3 files, %4 threads, %5 widgets, %6 objects")
        .arg(double(memory) / bytesPerMegabyte, 0, 'f', 1)
        .arg(double(heap) / bytesPerMegabyte, 0, 'f', 2)
        .arg(files)
        .arg(threads)
        .arg(widgets)
        .arg(objects);
}
