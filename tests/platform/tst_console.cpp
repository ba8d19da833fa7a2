#include "platform/console.h"

#include <QSignalSpy>
#include <QtTest>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using platform::StandardStream;

Q_DECLARE_METATYPE(platform::StandardStream)

/*! Standard streams and signals, of this process. */
class tst_Console : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void closedStreamsAreOpened_data();
    void closedStreamsAreOpened();
    void brokenPipeIsAnError();
    void terminals_data();
    void terminals();
    void onlyTheFirstSignalIsCaught_data();
    void onlyTheFirstSignalIsCaught();
    void ignoredSignalsStayIgnored();
    void nothingIsLeftOpen();
    void withoutAPipeNothingIsCaught();
    void readsOneLine_data();
    void readsOneLine();
};

namespace {

constexpr int streamCount = 3;
constexpr int caught[] = {SIGINT, SIGTERM, SIGHUP};

/*! Puts the standard streams back at its end. */
class KeptStreams
{
public:
    KeptStreams()
    {
        for (int i = 0; i < streamCount; ++i)
            m_copies[std::size_t(i)] = ::fcntl(i, F_DUPFD_CLOEXEC, streamCount);
    }
    ~KeptStreams()
    {
        for (int i = 0; i < streamCount; ++i) {
            ::dup2(m_copies[std::size_t(i)], i);
            ::close(m_copies[std::size_t(i)]);
        }
    }
    Q_DISABLE_COPY(KeptStreams)

private:
    std::array<int, streamCount> m_copies{};
};

bool isNull(int descriptor)
{
    struct stat there = {};
    struct stat null = {};
    return ::fstat(descriptor, &there) == 0 && ::stat("/dev/null", &null) == 0
        && S_ISCHR(there.st_mode) && there.st_rdev == null.st_rdev;
}

int firstFreeDescriptor()
{
    const int free = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(free);
    return free;
}

struct sigaction actionOf(int number)
{
    struct sigaction present = {};
    ::sigaction(number, nullptr, &present);
    return present;
}

} // namespace

// Whoever started the test may ignore some.
void tst_Console::init()
{
    for (const int number : caught)
        std::signal(number, SIG_DFL);
}

void tst_Console::closedStreamsAreOpened_data()
{
    QTest::addColumn<QVector<int>>("closed");
    QTest::newRow("none") << QVector<int>{};
    QTest::newRow("input") << QVector<int>{STDIN_FILENO};
    QTest::newRow("output") << QVector<int>{STDOUT_FILENO};
    QTest::newRow("error") << QVector<int>{STDERR_FILENO};
    QTest::newRow("input, error") << QVector<int>{STDIN_FILENO, STDERR_FILENO};
    QTest::newRow("all") << QVector<int>{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
}

// A port that is opened later must not become a standard stream.
void tst_Console::closedStreamsAreOpened()
{
    QFETCH(QVector<int>, closed);
    std::array<bool, streamCount> isReplaced{};
    std::array<bool, streamCount> isWritable{};
    std::array<bool, streamCount> isReadable{};
    int next = -1;
    const int nextBefore = firstFreeDescriptor();
    {
        const KeptStreams kept;
        const int pipeEnd = ::open("/dev/zero", O_RDWR | O_CLOEXEC);
        for (int i = 0; i < streamCount; ++i)
            ::dup2(pipeEnd, i);
        ::close(pipeEnd);
        for (const int descriptor : qAsConst(closed))
            ::close(descriptor);
        platform::prepareStandardStreams();
        next = firstFreeDescriptor() - streamCount; // the copies
        for (int i = 0; i < streamCount; ++i) {
            char byte = 0;
            isReplaced[std::size_t(i)] = isNull(i);
            isWritable[std::size_t(i)] = ::write(i, &byte, 1) == 1;
            isReadable[std::size_t(i)] = ::read(i, &byte, 1) >= 0;
        }
    }
    for (int i = 0; i < streamCount; ++i) {
        QCOMPARE(isReplaced[std::size_t(i)], closed.contains(i));
        QVERIFY(isWritable[std::size_t(i)]);
        QVERIFY(isReadable[std::size_t(i)]);
    }
    QCOMPARE(next, nextBefore);
}

void tst_Console::brokenPipeIsAnError()
{
    std::signal(SIGPIPE, SIG_DFL);
    platform::prepareStandardStreams();
    int ends[2] = {-1, -1};
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    QCOMPARE(int(::write(ends[1], "x", 1)), -1);
    QCOMPARE(errno, EPIPE);
    ::close(ends[1]);
}

void tst_Console::terminals_data()
{
    QTest::addColumn<StandardStream>("stream");
    QTest::addColumn<int>("descriptor");
    QTest::newRow("input") << StandardStream::Input << STDIN_FILENO;
    QTest::newRow("output") << StandardStream::Output << STDOUT_FILENO;
    QTest::newRow("error") << StandardStream::Error << STDERR_FILENO;
}

void tst_Console::terminals()
{
    QFETCH(StandardStream, stream);
    QFETCH(int, descriptor);
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    QVERIFY(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
    const int terminal = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const int file = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    bool isOne = false;
    bool isAny = true;
    {
        const KeptStreams kept;
        for (int i = 0; i < streamCount; ++i)
            ::dup2(i == descriptor ? terminal : file, i);
        isOne = platform::isTerminal(stream);
        for (int i = 0; i < streamCount; ++i)
            ::dup2(i == descriptor ? file : terminal, i);
        isAny = platform::isTerminal(stream);
    }
    for (const int opened : {master, terminal, file})
        ::close(opened);
    QVERIFY(isOne);
    QVERIFY(!isAny);
}

void tst_Console::onlyTheFirstSignalIsCaught_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("request of the system") << SIGTERM;
    QTest::newRow("closed terminal") << SIGHUP;
}

void tst_Console::onlyTheFirstSignalIsCaught()
{
    QFETCH(int, number);
    {
        const platform::StopSignal stop;
        QSignalSpy stopped(&stop, &platform::StopSignal::stopped);
        for (const int each : caught) {
            QVERIFY(actionOf(each).sa_handler != SIG_DFL);
            // A write to a full pipe goes on, instead of leaving a torn line.
            QVERIFY((actionOf(each).sa_flags & SA_RESTART) != 0);
        }
        QCOMPARE(std::raise(number), 0);
        QTRY_COMPARE(stopped.count(), 1);
        // The next one of its kind ends the program, another kind is not told any more.
        for (const int each : caught)
            QCOMPARE(actionOf(each).sa_handler == SIG_DFL, each == number);
        QCOMPARE(std::raise(number == SIGHUP ? SIGINT : SIGHUP), 0);
        QCoreApplication::processEvents();
        QCOMPARE(stopped.count(), 1);
    }
    for (const int each : caught)
        QVERIFY(actionOf(each).sa_handler == SIG_DFL);

    // And again.
    const platform::StopSignal stop;
    QSignalSpy stopped(&stop, &platform::StopSignal::stopped);
    QCoreApplication::processEvents();
    QCOMPARE(stopped.count(), 0);
    QCOMPARE(std::raise(number), 0);
    QTRY_COMPARE(stopped.count(), 1);
}

// As nohup wants it.
void tst_Console::ignoredSignalsStayIgnored()
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const platform::StopSignal stop;
        QVERIFY(actionOf(SIGHUP).sa_handler == SIG_IGN);
        QVERIFY(actionOf(SIGINT).sa_handler != SIG_IGN);
    }
    QVERIFY(actionOf(SIGHUP).sa_handler == SIG_IGN);
    QVERIFY(actionOf(SIGINT).sa_handler == SIG_DFL);
}

// A program that is started by this one must not hold the ends of the pipe either.
void tst_Console::nothingIsLeftOpen()
{
    const int before = firstFreeDescriptor();
    {
        const platform::StopSignal stop;
        const int opened = firstFreeDescriptor();
        QVERIFY(opened > before);
        for (int i = before; i < opened; ++i) {
            const int flags = ::fcntl(i, F_GETFD);
            QVERIFY(flags < 0 || (flags & FD_CLOEXEC) != 0);
        }
    }
    QCOMPARE(firstFreeDescriptor(), before);
}

// And what others have opened under the numbers of a former pipe stays open.
void tst_Console::withoutAPipeNothingIsCaught()
{
    {
        const platform::StopSignal stop;
    }
    const int file = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int second = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    rlimit before = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = rlim_t(firstFreeDescriptor());
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    bool isCaught = false;
    {
        const platform::StopSignal stop;
        isCaught = actionOf(SIGINT).sa_handler != SIG_DFL;
    }
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &before), 0);
    QVERIFY(!isCaught);
    for (const int opened : {file, second}) {
        QVERIFY(::fcntl(opened, F_GETFD) >= 0);
        ::close(opened);
    }
}

void tst_Console::readsOneLine_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("left");
    QTest::newRow("a line") << QByteArray("yes\n") << "yes" << QByteArray();
    QTest::newRow("empty") << QByteArray("\n") << "" << QByteArray();
    QTest::newRow("two lines") << QByteArray("yes\nno\n") << "yes" << QByteArray("no\n");
    QTest::newRow("no end of line") << QByteArray("yes") << "yes" << QByteArray();
    QTest::newRow("nothing") << QByteArray() << "" << QByteArray();
}

// What follows is left to the next reader.
void tst_Console::readsOneLine()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, line);
    QFETCH(QByteArray, left);
    const KeptStreams kept;
    int ends[2] = {-1, -1};
    QCOMPARE(::pipe(ends), 0);
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    const platform::LineReader reader;
    QSignalSpy lines(&reader, &platform::LineReader::lineRead);
    QCoreApplication::processEvents();
    QCOMPARE(lines.count(), 0);
    QCOMPARE(int(::write(ends[1], bytes.constData(), size_t(bytes.size()))), bytes.size());
    ::close(ends[1]);
    errno = EAGAIN; // of whatever has gone before
    QTRY_COMPARE(lines.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(lines.count(), 1);
    QCOMPARE(lines.at(0).at(0).toString(), line);
    QByteArray rest(bytes.size() + 1, '\0');
    rest.truncate(int(::read(STDIN_FILENO, rest.data(), size_t(rest.size()))));
    QCOMPARE(rest, left);
}

QTEST_GUILESS_MAIN(tst_Console)
#include "tst_console.moc"
