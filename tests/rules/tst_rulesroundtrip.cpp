#include "link/nmeaserialport.h"
#include "model/download.h"
#include "model/randommodel.h"
#include "model/sentencebuilders.h"
#include "routerconfigof.h"
#include "rules/difference.h"
#include "rules/ruledocument.h"
#include "simulator/router/faultset.h"
#include "simulator/router/routercore.h"

#include <QtTest>

using namespace tk7sim;

/*!
 * Random rules from a file into a router and back into a file. The sentences are those of the line,
 * letter by letter; only the line between tool and router is left out, and with it its pace.
 */
class TestRulesRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void backupRestoreCompare();

private:
    void hear(const QByteArray &line) { m_core.hear(line); }
    bool download(RouterModel &model);

    FaultSet m_faults;
    RouterCore m_core{&m_faults};
    QByteArray m_said;
};

void TestRulesRoundTrip::initTestCase()
{
    connect(&m_core, &RouterCore::answered, this, [this](const Answer &answer) {
        m_said += answer.form == SentenceForm::Checked ? withChecksum(answer.body)
                                                       : QByteArray(answer.body + "\r\n");
        if (answer.thenSpeed != 0)
            m_core.moveTo(answer.thenSpeed);
    });
    for (int i = 0; i < 2; ++i)
        hear("$VRCNT\r\n");
    QVERIFY(m_core.isConnected());
}

bool TestRulesRoundTrip::download(RouterModel &model)
{
    Download download;
    bool isAtEnd = false;
    NmeaSerialPort link;
    using Link = NmeaSerialPort;
    connect(&link, &Link::signalVRNMEA_receive, &link, &Link::slot_VRNMEA);
    connect(&link, &Link::signalVRNewRule, &link, [&](quint8 p, int c, quint8 rules, quint8 flags) {
        download.setRule(p, c, rules, flags);
    });
    connect(&link, &Link::signalVRNewFilterMask, &link,
            [&](quint8 p, int c, quint32 mask) { download.setFilterMask(p, c, mask); });
    connect(&link, &Link::signalVRNewHdr, &link,
            [&](quint8 p, int c, const QString &hdr) { download.setHdr(p, c, hdr); });
    connect(&link, &Link::signalVRNewFilterStr, &link,
            [&](quint8 slot, const QString &name) { download.setFilterString(slot, name); });
    connect(&link, &Link::signalVRNewPortSpeed, &link,
            [&](quint8 p, quint32 speed) { download.setPortSpeed(p, speed); });
    connect(&link, &Link::signalVRNewPortName, &link,
            [&](bool out, quint8 p, const QString &name) { download.setPortName(out, p, name); });
    connect(&link, &Link::signalVRUpdateVRData, &link, [&] { isAtEnd = true; });

    m_said.clear();
    hear("$VRRLD\r\n");
    link.receiveBytes(m_said.constData(), int(m_said.size()));
    model = download.model();
    return isAtEnd && download.isComplete();
}

void TestRulesRoundTrip::backupRestoreCompare()
{
    constexpr quint32 rounds = 1000;
    constexpr quint32 foreignEach = 7;
    for (quint32 seed = 0; seed < rounds; ++seed) {
        RouterModel ship = randomModel(seed);
        if (seed % foreignEach == 0) { // a number that no input has travels like any other
            auto &channel = ship.output_ports[seed % OutputPortCount].channels[seed % ChannelCount];
            channel.main_input = quint8(InputPortCount + seed % (NO_PORT - InputPortCount));
        }
        QString error;
        const auto file = RuleDocument::bytes(ship, error);
        QVERIFY2(file, qPrintable(error));
        const auto document = RuleDocument::parse(*file, error);
        QVERIFY2(document, qPrintable(error));

        const QStringList upload = uploadSentences(document->model);
        for (const QString &sentence : upload)
            hear(sentence.toLocal8Bit());
        QVERIFY(m_core.working() == routerConfigOf(ship));

        RouterModel present;
        QVERIFY(download(present));
        QCOMPARE(differences(document->model, present), QStringList());
        const auto again = RuleDocument::bytes(present, error);
        QVERIFY2(again, qPrintable(error));
        QCOMPARE(*again, *file);
    }
    QCOMPARE(m_core.complaints().refusedSentences, quint64(0));
    QCOMPARE(m_core.complaints().checksumErrors, quint64(0));
}

QTEST_GUILESS_MAIN(TestRulesRoundTrip)
#include "tst_rulesroundtrip.moc"
