#include "rulefilebench.h"

#include "../model/richmodel.h"
#include "support/nofile.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <csignal>
#include <functional>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif
#include <sys/resource.h>

using Bench = RuleFileBench;
using namespace RuleFileBytes;
using Setup = std::function<void(MainWindow &)>;
Q_DECLARE_METATYPE(Setup)

namespace {

const QString saveTitle = QStringLiteral("Save Rules");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}

/*! Sets back the size limit of files when it goes out of scope. */
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

} // namespace

/*! Saving to a rule file: the dialog, the boxes, what is in the file, and what can't be written. */
class TestSavingRuleFiles : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_FONT_DPI", "96"); }

private slots:
    void saves_data();
    void saves();
    void savesOverAnotherFile();
    void otherSuffixes_data();
    void otherSuffixes();
    void saveCantOpen_data();
    void saveCantOpen();
    void saveRefused_data();
    void saveRefused();
    void fileSizeLimit_data();
    void fileSizeLimit();
    void fullDevice();
    void saveToAPipe();
    void fullFileSystem();
    void whatWasDownloadedIsSaved();
};

void TestSavingRuleFiles::saves_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<QString>("golden");

    QTest::newRow("a window as it starts") << Setup([](MainWindow &) {}) << "rules-default.vrr";
    QTest::newRow("every field in use")
        << Setup([](MainWindow &window) { fill(window, richModel()); }) << "rules-rich.vrr";
}

void TestSavingRuleFiles::saves()
{
    QFETCH(Setup, setup);
    QFETCH(QString, golden);
    Bench bench;
    setup(bench.window);
    bench.save(bench.path("rules.vrr"));
    QCOMPARE(bench.report(), QString()); // and no message of success
    QCOMPARE(contentOf(bench.path("rules.vrr")).toHex(' '),
             dataFile(golden.toLatin1().constData()).toHex(' '));
    QVERIFY(bench.heard().isEmpty());
}

void TestSavingRuleFiles::savesOverAnotherFile()
{
    Bench bench;
    makeFile(bench.path("rules.vrr"), QByteArray(5000, 'x'));
    bench.expectReplaceQuestion("rules.vrr");
    bench.save(bench.path("rules.vrr"));
    QCOMPARE(bench.report(), QString());
    QCOMPARE(contentOf(bench.path("rules.vrr")), dataFile("rules-default.vrr"));
}

void TestSavingRuleFiles::otherSuffixes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isWritten");

    const auto row = [](const char *name, bool isWritten) {
        QTest::newRow(name) << QString::fromLatin1(name) << isWritten;
    };
    row("rules.vrr", true);
    row("rules.old.vrr", true);
    row(".vrr", true);
    row("rules", false);
    row("vrr", false);
    row("rules.VRR", false);
    row("rules.Vrr", false);
    row("rules.vrr1", false);
    row("rules.vrr.bak", false);
    row("rules.", false);
}

void TestSavingRuleFiles::otherSuffixes()
{
    QFETCH(QString, name);
    QFETCH(bool, isWritten);
    Bench bench;
    bench.save(bench.path(name));
    QCOMPARE(bench.report(), QString());
    QVERIFY(QFile::exists(bench.path(name)));
    QCOMPARE(contentOf(bench.path(name)), isWritten ? dataFile("rules-default.vrr") : QByteArray());
    if (isWritten)
        return;

    makeFile(bench.path(name), "an older one");
    bench.expectReplaceQuestion(name);
    bench.save(bench.path(name));
    QCOMPARE(bench.report(), QString());
    QCOMPARE(contentOf(bench.path(name)), QByteArray());
}

void TestSavingRuleFiles::saveCantOpen_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("in a folder that isn't there") << "nowhere/rules.vrr";
    QTest::newRow("whatever its suffix") << "nowhere/rules";
}

void TestSavingRuleFiles::saveCantOpen()
{
    QFETCH(QString, name);
    Bench bench;
    const QString path = bench.path(name);
    bench.expectWarning(saveTitle, QStringLiteral("Error open file %1").arg(path));
    bench.save(path);
    QCOMPARE(bench.report(), QString());
}

void TestSavingRuleFiles::saveRefused_data()
{
    QTest::addColumn<Setup>("setup");

    QTest::newRow("a header override without its header")
        << Setup([](MainWindow &window) { window.slotVRNewRule(11, 11, 0xf3, 0x08); });
    QTest::newRow("a header of one character") << Setup([](MainWindow &window) {
        window.slotVRNewRule(0, 0, 0xf3, 0x08);
        window.slotVRNewHdr(0, 0, QStringLiteral("G"));
    });
    QTest::newRow("a sentence name of two characters")
        << Setup([](MainWindow &window) { window.slotVRNewFilterStr(31, QStringLiteral("MW")); });
    QTest::newRow("a sentence name of four characters")
        << Setup([](MainWindow &window) { window.slotVRNewFilterStr(0, QStringLiteral("RMCX")); });
}

void TestSavingRuleFiles::saveRefused()
{
    QFETCH(Setup, setup);
    Bench bench;
    setup(bench.window);
    const QString path = bench.path("rules.vrr");
    const QString error = QStringLiteral("Error save rules to %1").arg(path);
    bench.expectWarning(saveTitle, error);
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QVERIFY(!QFile::exists(path));

    makeFile(path, dataFile("rules-rich.vrr"));
    bench.expectReplaceQuestion("rules.vrr");
    bench.expectWarning(saveTitle, error);
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QVERIFY(!QFile::exists(path)); // nor is the older one left
}

void TestSavingRuleFiles::fileSizeLimit_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("isSaved");

    const int size = int(dataFile("rules-default.vrr").size());
    QTest::newRow("no byte fits") << 0 << false;
    QTest::newRow("the magic fits") << 3 << false;
    QTest::newRow("half a file fits") << size / 2 << false;
    QTest::newRow("all but one byte fit") << size - 1 << false;
    QTest::newRow("the whole file fits") << size << true;
}

void TestSavingRuleFiles::fileSizeLimit()
{
    QFETCH(int, limit);
    QFETCH(bool, isSaved);
    Bench bench;
    const QString path = bench.path("rules.vrr");
    if (!isSaved)
        bench.expectWarning(saveTitle, QStringLiteral("Error save rules to %1").arg(path));
    {
        const FileSizeLimit fileSizeLimit(static_cast<rlim_t>(limit));
        bench.save(path);
    }
    QCOMPARE(bench.report(), QString());
    QCOMPARE(QFile::exists(path), isSaved);
}

void TestSavingRuleFiles::fullDevice()
{
    if (!QFile::exists("/dev/full"))
        QSKIP("no device that is always full");
    Bench bench;
    const QString path = bench.path("rules.vrr");
    QVERIFY(QFile::link("/dev/full", path));
    bench.expectReplaceQuestion("rules.vrr");
    bench.expectWarning(saveTitle, QStringLiteral("Error save rules to %1").arg(path));
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QVERIFY(!QFileInfo(path).isSymLink()); // the link is gone, the device stays
    QVERIFY(QFile::exists("/dev/full"));
}

// Nobody reads it, and nobody will.
void TestSavingRuleFiles::saveToAPipe()
{
    Bench bench;
    const QString path = bench.path("rules.vrr");
    makeNoFile(NoFile::Pipe, path);
    bench.expectReplaceQuestion("rules.vrr");
    bench.expectWarning(saveTitle, QStringLiteral("Error open file %1").arg(path));
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QVERIFY(QFile::exists(path));
}

void TestSavingRuleFiles::fullFileSystem()
{
#ifdef Q_OS_LINUX
    Bench bench;
    const QString mountPoint = bench.path("disk");
    QVERIFY(QDir().mkdir(mountPoint));
    if (::mount("none", qPrintable(mountPoint), "tmpfs", 0, "size=16k") != 0)
        QSKIP("needs the right to mount a file system");
    const auto unmount = qScopeGuard([&] { ::umount2(qPrintable(mountPoint), MNT_DETACH); });

    QFile filler(mountPoint + "/filler");
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(512, 'x')) > 0) { }
    filler.close();

    const QString path = mountPoint + "/rules.vrr";
    bench.expectWarning(saveTitle, QStringLiteral("Error save rules to %1").arg(path));
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QVERIFY(!QFile::exists(path));

    QVERIFY(filler.remove());
    bench.save(path);
    QCOMPARE(bench.report(), QString());
    QCOMPARE(contentOf(path), dataFile("rules-default.vrr"));
#else
    QSKIP("needs a file system in memory");
#endif
}

void TestSavingRuleFiles::whatWasDownloadedIsSaved()
{
    Bench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.router.unplug();
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
    bench.save(bench.path("rules.vrr"));
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.window.routerModel() != RouterModel());
    QCOMPARE(contentOf(bench.path("rules.vrr")), written(bench.window.routerModel()));
}

QTEST_MAIN(TestSavingRuleFiles)
#include "tst_rulefiles_save.moc"
