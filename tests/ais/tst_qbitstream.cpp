#include "ais/qbitstream.h"

#include <QRandomGenerator>
#include <QtTest>

#include <limits>
#include <vector>

namespace {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

/*! One bit in each place, by the plain rules; for comparison. */
class PlainBits
{
public:
    void append(const QByteArray &payload, int fillBits)
    {
        for (const char character : payload) {
            const int difference = (quint8(character) - 48 + 256) % 256;
            const int value = difference < 41 ? difference : difference - 8;
            for (int mask = 32; mask > 0; mask /= 2)
                m_bits.push_back((value & mask) != 0);
        }
        if (payload.isEmpty())
            return;
        const qint64 size = qint64(m_bits.size()) - fillBits;
        m_bits.resize(size_t(qMax<qint64>(0, size)), false);
    }

    quint32 at(int from, int width) const
    {
        quint32 value = 0;
        for (int i = from; i < from + width; ++i)
            value = value << 1 | quint32(size_t(i) < m_bits.size() && m_bits[size_t(i)]);
        return value;
    }

    void clear() { m_bits.clear(); }
    int size() const { return int(m_bits.size()); }

private:
    std::vector<bool> m_bits;
};

} // namespace

class tst_QBitStream : public QObject
{
    Q_OBJECT

private slots:
    void character_data();
    void character();
    void everyByteIsTaken();
    void width_data();
    void width();
    void everyWidthAtEveryPlace();
    void fieldIsUnsigned();
    void fragmentStartsBehindLastRealBit();
    void fill_data();
    void fill();
    void emptyPayloadAppliesNoFill_data();
    void emptyPayloadAppliesNoFill();
    void setPayloadStartsAnew();
    void appendKeepsThePlaceOfReading();
    void behindTheEndAreZeros();
    void cutBitsDoNotComeBack();
    void randomPayloads();
    void payloadOfAnyLengthIsBounded();
    void placeOfReadingIsBounded();
};

void tst_QBitStream::character_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<quint32>("value");
    QTest::newRow("48, the first") << 48 << 0U;
    QTest::newRow("49") << 49 << 1U;
    QTest::newRow("87, the last of the first row") << 87 << 39U;
    QTest::newRow("oddity: 88 gives 40 as 96 does") << 88 << 40U;
    QTest::newRow("96, the first of the second row") << 96 << 40U;
    QTest::newRow("119, the last") << 119 << 63U;
    QTest::newRow("120, behind the last: low six bits of 64") << 120 << 0U;
    QTest::newRow("89, in the gap: 89 - 56") << 89 << 33U;
    QTest::newRow("95, in the gap: 95 - 56") << 95 << 39U;
    QTest::newRow("47, before the first: 255 - 8") << 47 << 55U;
    QTest::newRow("1: 209 - 8") << 1 << 9U;
    QTest::newRow("255: 207 - 8") << 255 << 7U;
}

void tst_QBitStream::character()
{
    QFETCH(int, code);
    QFETCH(quint32, value);
    const QByteArray payload(1, char(code));
    QBitStream stream;
    QVERIFY(stream.setPayload(payload.constData(), 0));
    QCOMPARE(stream.size(), 6);
    QCOMPARE(stream.readBits(6), value);
}

void tst_QBitStream::everyByteIsTaken()
{
    for (int code = 1; code <= 255; ++code) {
        const QByteArray payload(3, char(code));
        PlainBits plain;
        plain.append(payload, 0);
        QBitStream stream;
        stream.setPayload(payload.constData(), 0);
        QCOMPARE(stream.readBits(18), plain.at(0, 18));
    }
}

void tst_QBitStream::width_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("value");
    QTest::addColumn<int>("position");
    QTest::newRow("0 reads nothing") << 0 << 0U << 0;
    QTest::newRow("33 reads nothing") << 33 << 0U << 0;
    QTest::newRow("-1 reads nothing") << -1 << 0U << 0;
    QTest::newRow("the largest number reads nothing") << largest << 0U << 0;
    QTest::newRow("the smallest number reads nothing") << smallest << 0U << 0;
    QTest::newRow("1") << 1 << 1U << 1;
    QTest::newRow("31") << 31 << 0x7fffffffU << 31;
    QTest::newRow("32 is allowed") << 32 << 0xffffffffU << 32;
}

void tst_QBitStream::width()
{
    QFETCH(int, width);
    QFETCH(quint32, value);
    QFETCH(int, position);
    QBitStream stream;
    stream.setPayload("wwwwwww", 0);
    QCOMPARE(stream.readBits(width), value);
    QCOMPARE(stream.position(), position);
}

void tst_QBitStream::everyWidthAtEveryPlace()
{
    const QByteArray payload = "13UbrN0uiiQfGB0E@>d<r:I:2PSG";
    PlainBits plain;
    plain.append(payload, 0);
    for (int from = 0; from <= plain.size(); ++from) {
        for (int width = 1; width <= 32; ++width) {
            QBitStream stream;
            stream.setPayload(payload.constData(), 0);
            for (int i = 0; i < from; ++i)
                stream.readBits(1);
            QCOMPARE(stream.readBits(width), plain.at(from, width));
        }
    }
}

void tst_QBitStream::fieldIsUnsigned()
{
    QBitStream stream;
    stream.setPayload("wwwwww", 0);
    QCOMPARE(stream.readBits(28), (1U << 28) - 1);
}

void tst_QBitStream::fragmentStartsBehindLastRealBit()
{
    QBitStream stream;
    stream.setPayload("00", 2);
    QCOMPARE(stream.size(), 10);
    QVERIFY(stream.appendPayload("w", 0));
    QCOMPARE(stream.size(), 16);
    QCOMPARE(stream.readBits(10), 0U);
    QCOMPARE(stream.readBits(6), 63U);
    QCOMPARE(stream.readBits(6), 0U);
}

void tst_QBitStream::fill_data()
{
    QTest::addColumn<int>("fillBits");
    QTest::addColumn<int>("size");
    QTest::newRow("none") << 0 << 18;
    QTest::newRow("1") << 1 << 17;
    QTest::newRow("5") << 5 << 13;
    QTest::newRow("a whole character") << 6 << 12;
    QTest::newRow("all") << 18 << 0;
    QTest::newRow("one more than all") << 19 << 0;
    QTest::newRow("far more than all") << 100000 << 0;
    QTest::newRow("2^31 - 1") << largest << 0;
    QTest::newRow("-1 appends a bit") << -1 << 19;
    QTest::newRow("-100 appends 100 bits") << -100 << 118;
    QTest::newRow("-2^31 appends no more than can be counted") << smallest << largest;
    QTest::newRow("-2^31 + 1") << smallest + 1 << largest;
    QTest::newRow("behind the kept bits") << -QBitStream::MaxBits << QBitStream::MaxBits + 18;
}

void tst_QBitStream::fill()
{
    QFETCH(int, fillBits);
    QFETCH(int, size);
    QBitStream stream;
    stream.setPayload("www", fillBits);
    QCOMPARE(stream.size(), size);
    for (int i = 0; i < 140; ++i)
        QCOMPARE(stream.readBits(1), quint32(i < qMin(size, 18)));

    // And a further fragment goes on from there.
    stream.setPayload("www", fillBits);
    stream.appendPayload("w", 0);
    const bool countable = size <= largest - 6;
    QCOMPARE(stream.size(), countable ? size + 6 : largest);
    if (size > QBitStream::MaxBits)
        return;
    while (stream.position() < size)
        stream.readBits(1);
    QCOMPARE(stream.readBits(6), 63U);
}

void tst_QBitStream::emptyPayloadAppliesNoFill_data()
{
    QTest::addColumn<int>("fillBits");
    for (const int fillBits : {0, 1, 5, 12, 1000, -1, -1000, largest, smallest})
        QTest::newRow(qPrintable(QString::number(fillBits))) << fillBits;
}

void tst_QBitStream::emptyPayloadAppliesNoFill()
{
    QFETCH(int, fillBits);
    QBitStream stream;
    QVERIFY(stream.setPayload("", fillBits));
    QCOMPARE(stream.size(), 0);
    stream.setPayload("ww", 0);
    QVERIFY(stream.appendPayload("", fillBits));
    QCOMPARE(stream.size(), 12);
    QCOMPARE(stream.readBits(12), 0xfffU);
}

void tst_QBitStream::setPayloadStartsAnew()
{
    QBitStream stream;
    stream.setPayload("wwwwwwwwwwwwwwww", 0);
    stream.readBits(32);
    stream.readBits(7);
    QVERIFY(stream.setPayload("1", 0));
    QCOMPARE(stream.position(), 0);
    QCOMPARE(stream.size(), 6);
    QCOMPARE(stream.readBits(6), 1U);
    // Nothing is left of the longer message.
    QCOMPARE(stream.readBits(32), 0U);
}

void tst_QBitStream::appendKeepsThePlaceOfReading()
{
    QBitStream stream;
    stream.setPayload("0w", 0);
    QCOMPARE(stream.readBits(6), 0U);
    stream.appendPayload("01", 0);
    QCOMPARE(stream.position(), 6);
    QCOMPARE(stream.readBits(18), 63U << 12 | 1U);
}

void tst_QBitStream::behindTheEndAreZeros()
{
    QBitStream stream;
    QCOMPARE(stream.readBits(32), 0U);
    QCOMPARE(stream.position(), 32);
    stream.setPayload("w", 0);
    QCOMPARE(stream.readBits(8), 0xfcU);
    QCOMPARE(stream.readBits(32), 0U);
    QCOMPARE(stream.position(), 40);
    // Bits that come later, at a place already passed, are not read any more.
    stream.appendPayload("wwwwwww", 0);
    QCOMPARE(stream.readBits(8), 0xffU);
    QCOMPARE(stream.readBits(8), 0U);
}

void tst_QBitStream::cutBitsDoNotComeBack()
{
    QBitStream stream;
    stream.setPayload("www", 13); // 5 bits are left
    stream.appendPayload("0", -20);
    QCOMPARE(stream.size(), 31);
    QCOMPARE(stream.readBits(31), 0x1fU << 26);
}

void tst_QBitStream::randomPayloads()
{
    constexpr quint32 seed = 70001;
    constexpr int messages = 4000;
    QRandomGenerator random(seed);
    QBitStream stream;
    PlainBits plain;
    for (int i = 0; i < messages; ++i) {
        const int fragments = 1 + random.bounded(5);
        plain.clear();
        for (int fragment = 0; fragment < fragments; ++fragment) {
            QByteArray payload;
            for (int length = random.bounded(40); length > 0; --length)
                payload.append(char(random.bounded(1, 256)));
            const int fillBits = random.bounded(2) ? random.bounded(6) : random.bounded(-40, 300);
            if (fragment == 0) {
                stream.setPayload(payload.constData(), fillBits);
            } else {
                stream.appendPayload(payload.constData(), fillBits);
            }
            plain.append(payload, fillBits);
            QCOMPARE(stream.size(), plain.size());
            for (int reads = random.bounded(6); reads > 0; --reads) {
                const int from = stream.position();
                const int width = random.bounded(1, 33);
                QCOMPARE(stream.readBits(width), plain.at(from, width));
            }
        }
    }
}

void tst_QBitStream::payloadOfAnyLengthIsBounded()
{
    constexpr int kept = QBitStream::MaxBits / 6 * 6;
    const QByteArray piece(50000, 'w');
    QBitStream stream;
    stream.setPayload(piece.constData(), 0);
    for (int i = 0; i < 10; ++i)
        stream.appendPayload(piece.constData(), i == 9 ? 1 : 0);
    QCOMPARE(stream.size(), 11 * 50000 * 6 - 1);
    qint64 ones = 0;
    while (stream.position() < stream.size())
        ones += stream.readBits(1);
    QCOMPARE(ones, qint64(kept));

    // The fill bits of a last fragment reach back into what is kept.
    stream.appendPayload("w", stream.size() + 6 - 10);
    QCOMPARE(stream.size(), 10);
    stream.setPayload("w", 0);
    QCOMPARE(stream.readBits(12), 0xfc0U);
}

void tst_QBitStream::placeOfReadingIsBounded()
{
    QBitStream stream;
    stream.setPayload("w", 0);
    for (qint64 read = 0; read < qint64(largest) + 100; read += 32)
        stream.readBits(32);
    QVERIFY(stream.position() > largest - 32);
    QCOMPARE(stream.readBits(32), 0U);
    stream.setPayload("w", 0);
    QCOMPARE(stream.readBits(6), 63U);
}

QTEST_APPLESS_MAIN(tst_QBitStream)
#include "tst_qbitstream.moc"
