#include "rulefilebytes.h"

#include "failingdevice.h"
#include "randommodel.h"
#include "richmodel.h"

#include <QtTest>

#include <functional>

using namespace RuleFileBytes;
using Setup = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Setup)

namespace {

constexpr quint32 Seed = 20240701;

constexpr int RecordsPerPort = ChannelCount + 2; // the channels, the speed, the name

/*! Where the fields of a file end, after its magic; of a channel, only the end of the whole. */
QVector<int> recordEnds(const RouterModel &model)
{
    QVector<int> ends;
    int offset = MagicSize;
    const auto record = [&](int size) { ends += offset += size; };
    for (const OutputPortRecord &port : model.output_ports) {
        for (int channel = 0; channel < ChannelCount; ++channel)
            record(ChannelSize);
        record(4);
        record(int(port.output_name.size() + 1));
    }
    record(4);
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (model.filter_list_mask & (quint32(1) << slot))
            record(SentenceNameLength);
    }
    for (const InputPortRecord &port : model.input_ports)
        record(int(port.input_name.size() + 1));
    return ends;
}

/*! A model with the same taken slots and lengths of names as \a model, and other contents. */
RouterModel lookalike(const RouterModel &model)
{
    RouterModel other = asLoaded(randomModel(Seed));
    for (std::size_t p = 0; p < OutputPortCount; ++p) {
        other.output_ports[p].output_name.fill('o', model.output_ports[p].output_name.size());
        other.input_ports[p].input_name.fill('i', model.input_ports[p].input_name.size());
    }
    other.filter_list = model.filter_list;
    for (QString &name : other.filter_list)
        name = name.isEmpty() ? name : QStringLiteral("XYZ");
    other.filter_list_mask = model.filter_list_mask;
    return other;
}

} // namespace

/*! Rule files that end too early, can't be read to their end, or have a wrong byte. */
class TestDamagedRuleFile : public QObject
{
    Q_OBJECT

private slots:
    void cutAtEveryLength_data();
    void cutAtEveryLength();
    void cutWithinARecord_data();
    void cutWithinARecord();
    void readErrors_data();
    void readErrors();
    void everyByteFlipped_data();
    void everyByteFlipped();
    void flippedFields();
};

void TestDamagedRuleFile::cutAtEveryLength_data()
{
    QTest::addColumn<Setup>("setup");

    QTest::newRow("every field in use")
        << Setup([](RouterModel &model) { model = asLoaded(richModel()); });
    QTest::newRow("all slots taken, all names long") << Setup([](RouterModel &model) {
        model = asLoaded(randomModel(Seed + 1));
        model.filter_list.fill("ABC");
        model.filter_list_mask = 0xffffffff;
        for (OutputPortRecord &port : model.output_ports)
            port.output_name = "12345678";
        for (InputPortRecord &port : model.input_ports)
            port.input_name = "abcdefgh";
    });
    QTest::newRow("a router that nobody has set up") << Setup([](RouterModel &) {});
    QTest::newRow("no slot taken") << Setup([](RouterModel &model) { model.filter_list_mask = 0; });
}

void TestDamagedRuleFile::cutAtEveryLength()
{
    QFETCH(Setup, setup);
    RouterModel good;
    setup(good);
    const RouterModel before = lookalike(good);
    const QByteArray goodBytes = written(good);
    const QByteArray beforeBytes = written(before);
    QCOMPARE(goodBytes.size(), beforeBytes.size());
    const QVector<int> ends = recordEnds(good);
    QCOMPARE(ends.last(), goodBytes.size());
    const int fixedParts = ends.at(ends.size() - 1 - InputPortCount);

    for (int size = 0; size <= goodBytes.size(); ++size) {
        const QByteArray at = "cut at " + QByteArray::number(size);
        RouterModel model = before;
        const bool isRead = readInto(model, goodBytes.left(size));
        QVERIFY2(isRead == (size >= fixedParts), at.constData());
        QCOMPARE(brokenInvariant(model, isRead), QByteArray());
        if (!ends.contains(size))
            continue;
        // No rollback: the records of the one file, then those of the other. A name of which
        // nothing is there is an empty name.
        RouterModel expected = before;
        QVERIFY(readInto(expected, goodBytes.left(size) + beforeBytes.mid(size)));
        const int recordsRead = int(ends.indexOf(size) + 1);
        const int port = recordsRead / RecordsPerPort;
        if (port < OutputPortCount && recordsRead % RecordsPerPort == RecordsPerPort - 1)
            expected.output_ports[std::size_t(port)].output_name.clear();
        const int namesRead = int(recordsRead - (ends.size() - InputPortCount));
        for (int input = namesRead; isRead && input < InputPortCount; ++input)
            expected.input_ports[std::size_t(input)].input_name.clear();
        QVERIFY2(model == expected, at.constData());
    }
}

void TestDamagedRuleFile::cutWithinARecord_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<Setup>("setup"); // what the cut file changes, of a model of defaults

    const Setup nothing = [](RouterModel &) {};
    const auto channel = [](void (*change)(ChannelRecord &)) {
        return Setup([change](RouterModel &model) { change(channelOf(model, 0, 0)); });
    };
    QTest::newRow("within the magic") << 2 << nothing;
    QTest::newRow("behind the magic") << 3 << nothing;
    QTest::newRow("behind the flags, whose header is still to come")
        << 4 << channel([](ChannelRecord &c) {
               c.filter_enabled = c.crs_enabled = c.hdr_enabled = true;
               c.filter_type = BlackList;
               c.smart_function = 5;
           });
    QTest::newRow("behind Main") << 5 << channel([](ChannelRecord &c) {
        c.filter_enabled = c.crs_enabled = c.hdr_enabled = true;
        c.filter_type = BlackList;
        c.smart_function = 5;
        c.main_input = 1;
    });
    QTest::newRow("within the mask, of which the bytes that are there stand")
        << 8 << channel([](ChannelRecord &c) {
               c.filter_enabled = c.crs_enabled = c.hdr_enabled = true;
               c.filter_type = BlackList;
               c.smart_function = 5;
               c.main_input = 1;
               c.reserve_input = 2;
               c.filter_mask = 0x00007788;
           });
    QTest::newRow("within the header") << 11 << channel([](ChannelRecord &c) {
        c.filter_enabled = c.crs_enabled = c.hdr_enabled = true;
        c.filter_type = BlackList;
        c.smart_function = 5;
        c.main_input = 1;
        c.reserve_input = 2;
        c.filter_mask = 0x55667788;
    });
}

void TestDamagedRuleFile::cutWithinARecord()
{
    QFETCH(int, size);
    QFETCH(Setup, setup);
    const QByteArray file = QByteArray("VRR\x5f\x01\x02\x88\x77\x66\x55GP");
    RouterModel expected;
    setup(expected);
    RouterModel model;
    QVERIFY(!readInto(model, file.left(size)));
    QVERIFY(model == expected);
}

void TestDamagedRuleFile::readErrors_data()
{
    QTest::addColumn<int>("failure");

    QTest::newRow("ends") << int(FailingDevice::ShortCount);
    QTest::newRow("reports an error") << int(FailingDevice::Error);
}

// A device that can't be set back, either.
void TestDamagedRuleFile::readErrors()
{
    QFETCH(int, failure);
    const QByteArray bytes = written(richModel());
    const QVector<int> ends = recordEnds(richModel());
    const int fixedParts = ends.at(ends.size() - 1 - InputPortCount);
    for (int size = 0; size <= bytes.size(); ++size) {
        FailingDevice device(size, FailingDevice::Failure(failure), bytes);
        RouterModel model;
        const bool isRead = RuleFile::read(device, model);
        const QByteArray at = "error behind " + QByteArray::number(size);
        QVERIFY2(isRead == (size >= fixedParts), at.constData());
        QCOMPARE(brokenInvariant(model, isRead), QByteArray());
        if (size == bytes.size())
            QVERIFY(model == asLoaded(richModel()));
    }
}

void TestDamagedRuleFile::everyByteFlipped_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("flip");

    for (const char *file : {"rules-default.vrr", "rules-rich.vrr"}) {
        for (const int flip : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xff})
            QTest::addRow("%s, each byte with %02x", file, flip) << QByteArray(file) << flip;
    }
}

void TestDamagedRuleFile::everyByteFlipped()
{
    QFETCH(QByteArray, file);
    QFETCH(int, flip);
    const QByteArray good = dataFile(file);
    for (int offset = 0; offset < good.size(); ++offset) {
        QByteArray bytes = good;
        bytes[offset] = char(bytes.at(offset) ^ flip);
        RouterModel model;
        const bool isRead = readInto(model, bytes);
        const QByteArray at = "offset " + QByteArray::number(offset);
        QCOMPARE(brokenInvariant(model, isRead), QByteArray());
        if (offset < MagicSize)
            QVERIFY2(!isRead && model == RouterModel(), at.constData());
    }
}

// A flipped byte of fixed size reaches its own field and no other.
void TestDamagedRuleFile::flippedFields()
{
    const QByteArray good = dataFile("rules-default.vrr");
    for (int offset = MagicSize; offset < MaskOffset; ++offset) {
        const int port = (offset - MagicSize) / PortSize;
        const int inPort = (offset - MagicSize) % PortSize;
        if (inPort >= NameOffset)
            continue;
        RouterModel expected;
        if (inPort < SpeedOffset) {
            ChannelRecord &channel = channelOf(expected, port, inPort / ChannelSize);
            const int inChannel = inPort % ChannelSize;
            if (inChannel == 0) {
                channel.filter_enabled = channel.crs_enabled = true;
                channel.filter_type = BlackList;
                channel.smart_function = 7;
            } else if (inChannel < 3) {
                (inChannel == 1 ? channel.main_input : channel.reserve_input) = 0xf0;
            } else if (inChannel < 7) {
                channel.filter_mask = quint32(0xff) << 8 * (inChannel - 3);
            } // the other byte of a header is a blank still
        }
        QByteArray bytes = good;
        bytes[offset] = char(~bytes.at(offset));
        RouterModel model;
        QVERIFY(readInto(model, bytes));
        QVERIFY2(model == expected, qPrintable(QStringLiteral("offset %1").arg(offset)));
    }
}

QTEST_APPLESS_MAIN(TestDamagedRuleFile)
#include "tst_rulefile_damaged.moc"
