#include "model/download.h"
#include "randommodel.h"

#include <QtTest>

#include <functional>

using Omission = std::function<bool(const char *what, int first, int second)>;
Q_DECLARE_METATYPE(Omission)

/*! What has come of a download, and what hasn't. */
class TestDownload : public QObject
{
    Q_OBJECT

private slots:
    void beginsEmpty();
    void whole();
    void missing_data();
    void missing();
    void outOfRangeIsNotCome();
    void comesTwice();
};

namespace {

// All values of `model` but those that `isOmitted` names.
void fill(Download &download, const RouterModel &model, const Omission &isOmitted)
{
    for (quint8 p = 0; p < OutputPortCount; ++p) {
        const OutputPortRecord &port = model.output_ports[p];
        for (int c = 0; c < ChannelCount; ++c) {
            const ChannelRecord &channel = port.channels[std::size_t(c)];
            if (!isOmitted("rule", p, c))
                download.setRule(p, c, rulesByte(channel), flagsByte(channel));
            if (!isOmitted("mask", p, c))
                download.setFilterMask(p, c, channel.filter_mask);
            if (!isOmitted("header", p, c))
                download.setHdr(p, c, channel.hdr);
        }
        if (!isOmitted("speed", p, 0))
            download.setPortSpeed(p, port.speed);
        if (!isOmitted("output", p, 0))
            download.setPortName(true, p, port.output_name);
        if (!isOmitted("input", p, 0))
            download.setPortName(false, p, model.input_ports[p].input_name);
    }
    for (quint8 slot = 0; slot < FilterSlotCount; ++slot) {
        if (!isOmitted("sentence", slot, 0))
            download.setFilterString(slot, model.filter_list[slot]);
    }
}

bool nothing(const char *, int, int)
{
    return false;
}

} // namespace

void TestDownload::beginsEmpty()
{
    const Download download;
    QCOMPARE(download.received(), 0);
    QVERIFY(!download.isComplete());
    // Each sentence but the end mark: speed, rules, two halves of masks, headers of each port; four
    // of the list; four of names.
    QCOMPARE(download.missing().size(), 12 * 5 + 4 + 4);
    QVERIFY(download.model() == RouterModel());
}

void TestDownload::whole()
{
    for (quint32 seed = 0; seed < 10; ++seed) {
        const RouterModel model = randomModel(seed);
        Download download;
        fill(download, model, nothing);
        QVERIFY(download.isComplete());
        QCOMPARE(download.received(), Download::Total);
        QCOMPARE(download.missing(), QStringList());
        QVERIFY(download.model() == model);
    }
}

void TestDownload::missing_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *what, int first, int second, const char *text) {
        QTest::newRow(text) << QString::fromLatin1(what) << first << second
                            << QString::fromLatin1(text);
    };
    row("rule", 3, 11, "the rules of output 3");
    row("mask", 0, 5, "the filters of output 0, channels 0 to 5");
    row("mask", 11, 6, "the filters of output 11, channels 6 to 11");
    row("header", 4, 0, "the headers of output 4");
    row("speed", 11, 0, "the speed of port 11");
    row("sentence", 8, 0, "the sentence names 8 to 15");
    row("sentence", 31, 0, "the sentence names 24 to 31");
    row("output", 5, 0, "the names of outputs 0 to 5");
    row("output", 6, 0, "the names of outputs 6 to 11");
    row("input", 11, 0, "the names of inputs 6 to 11");
}

void TestDownload::missing()
{
    QFETCH(QString, what);
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(QString, text);
    Download download;
    fill(download, randomModel(1), [&](const char *kind, int f, int s) {
        return what == QLatin1String(kind) && f == first && s == second;
    });
    QVERIFY(!download.isComplete());
    QCOMPARE(download.received(), Download::Total - 1);
    QCOMPARE(download.missing(), QStringList(text));
}

void TestDownload::outOfRangeIsNotCome()
{
    Download download;
    download.setRule(12, 0, 0xff, 0);
    download.setRule(0, 12, 0xff, 0);
    download.setFilterMask(12, 0, 0);
    download.setHdr(0, -1, QString());
    download.setFilterString(32, QString());
    download.setPortSpeed(0, 1200);
    download.setPortSpeed(12, 4800);
    download.setPortName(true, 12, QString());
    download.setPortName(false, 12, QString());
    QCOMPARE(download.received(), 0);
}

void TestDownload::comesTwice()
{
    Download download;
    download.setPortSpeed(3, 9600);
    download.setPortSpeed(3, 38400);
    QCOMPARE(download.received(), 1);
    QCOMPARE(download.model().output_ports[3].speed, quint32(38400));
}

QTEST_GUILESS_MAIN(TestDownload)
#include "tst_modeldownload.moc"
