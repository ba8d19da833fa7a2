#include "simulator/line/linenoise.h"
#include "simulator/line/linepacer.h"
#include "simulator/line/linespeed.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

using namespace tk7sim;

class TestSimLinePacer : public QObject
{
    Q_OBJECT

private slots:
    void keepsPace_data();
    void keepsPace();
    void isFastEnough();
    void keepsOrder();
    void delays();
    void movesBehindLastByte();
    void stalledProgramCausesNoBurst();
    void boundsQueue();
    void clears();
    void clearForgetsDelay();
    void restsWhenIdle();
    void noiseRepeats();
    void noiseHits();
    void garbleIsNoText();
};

namespace {

// What came out, and when, in nanoseconds from the start of the record.
struct Record
{
    explicit Record(LinePacer *pacer)
    {
        clock.start();
        QObject::connect(pacer, &LinePacer::bytesDue, [this](const QByteArray &bytes) {
            text += bytes;
            times.append({text.size(), clock.nsecsElapsed()});
        });
    }

    QElapsedTimer clock;
    QByteArray text;
    QVector<QPair<int, qint64>> times; // bytes so far, time
};

qint64 lineTime(int bytes, int baud)
{
    return bytes * 10LL * 1000000000LL / baud;
}

} // namespace

void TestSimLinePacer::keepsPace_data()
{
    QTest::addColumn<int>("baud");
    for (const int baud : lineSpeeds) {
        QTest::addRow("%d baud", baud) << baud;
    }
}

// No byte may leave before a line of that speed could have carried it.
void TestSimLinePacer::keepsPace()
{
    QFETCH(int, baud);
    LinePacer pacer;
    pacer.setSpeed(baud);
    Record record(&pacer);
    const int size = baud / 100; // a tenth of a second
    QVERIFY(pacer.enqueue(QByteArray(size / 2, 'a')));
    QVERIFY(pacer.enqueue(QByteArray(size - size / 2, 'b')));
    QTRY_COMPARE(record.text.size(), size);
    for (const auto &[bytes, time] : record.times) {
        QVERIFY2(time >= lineTime(bytes, baud),
                 qPrintable(QStringLiteral("%1 bytes after %2 ns").arg(bytes).arg(time)));
    }
}

// A pacer that sent a byte at each turn of its timer would need more than ten seconds for this.
void TestSimLinePacer::isFastEnough()
{
    constexpr int baud = 115200;
    constexpr int size = 11520;
    LinePacer pacer;
    pacer.setSpeed(baud);
    Record record(&pacer);
    QVERIFY(pacer.enqueue(QByteArray(size, 'a')));
    QTRY_COMPARE_WITH_TIMEOUT(record.text.size(), size, 8000);
}

void TestSimLinePacer::keepsOrder()
{
    LinePacer pacer;
    pacer.setSpeed(115200);
    Record record(&pacer);
    QByteArray expected;
    for (char c = 'a'; c <= 'z'; ++c) {
        const QByteArray piece(1 + (c % 5), c);
        expected += piece;
        QVERIFY(pacer.enqueue(piece));
    }
    QCOMPARE(pacer.queuedBytes(), expected.size());
    QTRY_COMPARE(record.text, expected);
    QCOMPARE(pacer.queuedBytes(), 0);
}

void TestSimLinePacer::delays()
{
    LinePacer pacer;
    pacer.setSpeed(115200);
    Record record(&pacer);
    QVERIFY(pacer.enqueue("a", 80));
    QVERIFY(pacer.enqueue("b"));
    QTRY_COMPARE(record.text, QByteArray("ab"));
    QVERIFY(record.times.constFirst().second >= 80 * 1000000LL);
}

void TestSimLinePacer::movesBehindLastByte()
{
    LinePacer pacer;
    pacer.setSpeed(9600);
    QByteArray log;
    connect(&pacer, &LinePacer::bytesDue, this, [&](const QByteArray &bytes) { log += bytes; });
    connect(&pacer, &LinePacer::speedReached, this, [&](int baud) {
        QCOMPARE(pacer.speed(), baud);
        log += '|' + QByteArray::number(baud) + '|';
    });
    QVERIFY(pacer.enqueue("abcdefghij", 0, 115200));
    QVERIFY(pacer.enqueue("klm"));
    QTRY_COMPARE(log, QByteArray("abcdefghij|115200|klm"));
}

void TestSimLinePacer::stalledProgramCausesNoBurst()
{
    constexpr int baud = 115200;
    constexpr qint64 stall = 300 * 1000000LL;
    LinePacer pacer;
    pacer.setSpeed(baud);
    Record record(&pacer);
    QVERIFY(pacer.enqueue(QByteArray(8000, 'a')));
    QElapsedTimer clock;
    clock.start();
    while (clock.nsecsElapsed() < stall) {
        // The event loop doesn't get a turn.
    }
    QTRY_VERIFY(!record.times.isEmpty());
    const qint64 most = LinePacer::catchUpLimit * baud / 10 / 1000000000LL;
    QVERIFY(record.times.constFirst().first <= most);
}

void TestSimLinePacer::boundsQueue()
{
    LinePacer pacer;
    QVERIFY(!pacer.enqueue(QByteArray()));
    QVERIFY(!pacer.enqueue(QByteArray(LinePacer::maxQueued + 1, 'a')));
    QVERIFY(pacer.enqueue(QByteArray(LinePacer::maxQueued, 'a')));
    QVERIFY(!pacer.enqueue("b"));
    QCOMPARE(pacer.queuedBytes(), LinePacer::maxQueued);
}

void TestSimLinePacer::clears()
{
    LinePacer pacer;
    pacer.setSpeed(115200);
    Record record(&pacer);
    QSignalSpy moved(&pacer, &LinePacer::speedReached);
    QVERIFY(pacer.enqueue(QByteArray(500, 'a'), 0, 4800));
    pacer.clear();
    QCOMPARE(pacer.queuedBytes(), 0);
    QVERIFY(pacer.enqueue("b"));
    QTRY_COMPARE(record.text, QByteArray("b"));
    QCOMPARE(moved.count(), 0);
    QCOMPARE(pacer.speed(), 115200);
}

void TestSimLinePacer::clearForgetsDelay()
{
    LinePacer pacer;
    pacer.setSpeed(115200);
    Record record(&pacer);
    QVERIFY(pacer.enqueue("a", 3600 * 1000));
    pacer.clear();
    QVERIFY(pacer.enqueue("b"));
    QTRY_COMPARE(record.text, QByteArray("b"));
}

void TestSimLinePacer::restsWhenIdle()
{
    LinePacer pacer;
    pacer.setSpeed(115200);
    Record record(&pacer);
    QVERIFY(pacer.enqueue("a"));
    QTRY_COMPARE(record.text, QByteArray("a"));
    for (const QTimer *timer : pacer.findChildren<QTimer *>()) {
        QVERIFY(!timer->isActive());
    }
    QCOMPARE(pacer.findChildren<QTimer *>().size(), 1);
}

void TestSimLinePacer::noiseRepeats()
{
    LineNoise first(7);
    LineNoise second(7);
    LineNoise other(8);
    QByteArray firstText;
    QByteArray secondText;
    QByteArray otherText;
    for (int i = 0; i < 50; ++i) {
        firstText += first.spoil("$VRWBL\r\n", 50);
        secondText += second.spoil("$VRWBL\r\n", 50);
        otherText += other.spoil("$VRWBL\r\n", 50);
    }
    QCOMPARE(firstText, secondText);
    QVERIFY(firstText != otherText);
}

void TestSimLinePacer::noiseHits()
{
    const QByteArray line = "$VRWBL\r\n";
    LineNoise noise(3);
    int whole = 0;
    int followed = 0;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray spoilt = noise.spoil(line, 30);
        whole += spoilt.startsWith(line) ? 1 : 0;
        followed += spoilt.startsWith(line) && spoilt.size() > line.size() ? 1 : 0;
        QVERIFY(spoilt.size() <= line.size() + 1 + LineNoise::maxBurst);
    }
    // The seed is fixed, so these are the same numbers in every run.
    QVERIFY(whole > 600 && whole < 800);
    QVERIFY(followed > whole / 2);
    for (int i = 0; i < 100; ++i) {
        QVERIFY(noise.spoil(line, 0).startsWith(line));
    }
}

void TestSimLinePacer::garbleIsNoText()
{
    LineNoise noise(1);
    const QByteArray garbled = noise.garble(QByteArray(5000, '$'));
    QCOMPARE(garbled.size(), 5000);
    for (const char c : garbled) {
        QVERIFY(static_cast<quint8>(c) >= 0x80);
    }
}

QTEST_GUILESS_MAIN(TestSimLinePacer)
#include "tst_simlinepacer.moc"
