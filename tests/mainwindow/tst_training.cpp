#include "matrixview.h"
#include "servicesimtest.h"

#include "service/servicedlg.h"
#include "support/aistestuser.h"

#include <QListWidget>
#include <QTableWidget>

using namespace tk7sim;

/*! Exercises of the training, in the real window: what is told there comes about. */
class tst_training : public ServiceSimTest
{
    Q_OBJECT

private slots:
    void deadReceiver();
    void takenOver();

private:
    QStringList monitor() const;
    int countInMonitor(const char *begin) const;
    void lookAtMonitor();
    void lookAtCounters();
    void lookAtAisTest();
    void takeReserve();

    std::unique_ptr<MatrixView> m_matrix; // of the window before it is connected
};

namespace {

constexpr int dead = 3;
constexpr int other = 8;
constexpr int spare = 11;
constexpr int ecdis = 3;      // the output
constexpr int aisChannel = 2; // its channel with the dead input
constexpr int timeout = 20000;

} // namespace

QStringList tst_training::monitor() const
{
    const auto *list = m_bench->find<QListWidget>("listWidget");
    QStringList lines;
    for (int row = 0; row < list->count(); ++row)
        lines << list->item(row)->text();
    return lines;
}

int tst_training::countInMonitor(const char *begin) const
{
    const QStringList lines = monitor();
    return int(std::count_if(lines.cbegin(), lines.cend(), [begin](const QString &line) {
        return line.startsWith(QLatin1String(begin));
    }));
}

// Monitor, counters and AIS test tell the same of it, and a reserve brings its ships back.
void tst_training::deadReceiver()
{
    m_bench->router.setTrafficRate(4);
    m_bench->router.setFault(Fault::InputSilent, dead);
    m_bench->router.setFault(Fault::InputErrors, 10);
    m_matrix = std::make_unique<MatrixView>(m_bench->window);
    QVERIFY(connectToRouter());
    lookAtMonitor();
    lookAtCounters();
    lookAtAisTest();
    takeReserve();
}

void tst_training::lookAtMonitor()
{
    QTest::mouseClick(m_matrix->outputButton(ecdis), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(countInMonitor("$GP") > 5 && countInMonitor("$HE") > 5, timeout);
    QCOMPARE(countInMonitor("!AIVD"), 0);

    // Nothing comes by the channel, nor to the input, good or bad.
    QTest::mouseClick(m_matrix->channelButton(aisChannel), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(monitor().contains("---- OUTPUT PORT 3 - CHANNEL 2 ----"), timeout);
    QTest::mouseClick(m_matrix->labels[dead], Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(monitor().contains("---- INPUT PORT 3 ----"), timeout);
    QTest::mouseClick(m_matrix->labels[other], Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(countInMonitor("!AIVDM") > 3 && countInMonitor("$EIAPB") > 0, timeout);
    const QStringList lines = monitor();
    const int dark = int(lines.indexOf("---- OUTPUT PORT 3 - CHANNEL 2 ----"));
    QCOMPARE(lines.value(dark + 1), QStringLiteral("---- INPUT PORT 3 ----"));
    QCOMPARE(lines.value(dark + 2), QStringLiteral("---- INPUT PORT 8 ----"));
}

void tst_training::lookAtCounters()
{
    QVERIFY(inService([](servicedlg &dialog) {
        const auto *table = dialog.findChild<QTableWidget *>();
        enum { Print, Crs, Broken, Size };
        const auto cell = [table](int row, int column) { return table->item(row, column)->text(); };
        const auto hasGrown = [&] {
            for (int row = 0; row < table->rowCount(); ++row) {
                if (row != dead && cell(row, Crs).toInt() == 0)
                    return false;
            }
            return true;
        };
        QTRY_VERIFY_WITH_TIMEOUT(hasGrown(), 60000);
        for (const int column : {Print, Crs, Broken, Size})
            QCOMPARE(cell(dead, column), QStringLiteral("0"));
    }));
}

void tst_training::lookAtAisTest()
{
    const AisTestUser user([](aistestdlg &dialog) {
        const auto *table = dialog.findChild<QTableWidget *>();
        constexpr int targets = 3;
        const auto isEveryoneHeard = [table] {
            int heard = 0;
            for (int row = 0; row < table->rowCount(); ++row)
                heard += table->item(row, targets)->text().toInt() > 5 ? 1 : 0;
            return heard >= 2;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isEveryoneHeard(), timeout);
        QStringList ports;
        for (int row = 0; row < table->rowCount(); ++row)
            ports << table->item(row, 0)->text();
        ports.sort();
        QCOMPARE(ports, QStringList({QString::number(spare), QString::number(other)}));
    });
    QVERIFY(inService([](servicedlg &dialog) {
        dialog.findChild<QPushButton *>("pushButton_AisTest")->click();
    }));
    QVERIFY(user.hasCome());
    // What the test has found at port 8 is what the router knows of there, and of the dead one
    // nothing.
    QVERIFY(m_bench->router.aisTruth().port(dead).stations.isEmpty());
}

void tst_training::takeReserve()
{
    QTest::mouseClick(m_matrix->outputButton(ecdis), Qt::LeftButton);
    m_bench->window.slotPressEvent(m_matrix->homes[spare]);
    emit m_matrix->reserve[aisChannel]->signalDropEvent(m_matrix->reserve[aisChannel]);
    QTRY_COMPARE(m_bench->router.working().outputs[ecdis].channels[aisChannel].reserveInput,
                 quint8(spare));
    QTest::mouseClick(m_matrix->channelButton(aisChannel), Qt::LeftButton);
    const auto isBack = [this] {
        const QStringList lines = monitor();
        const int now = int(lines.lastIndexOf("---- OUTPUT PORT 3 - CHANNEL 2 ----"));
        return now > lines.indexOf("---- INPUT PORT 8 ----")
            && !lines.mid(now).filter("!AIVDM").isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(isBack(), timeout);
}

// Another program takes the router over: the window keeps the rules, and every other attempt to
// connect ends in the same way.
void tst_training::takenOver()
{
    const auto box =
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm"));
    m_matrix = std::make_unique<MatrixView>(m_bench->window);
    QVERIFY(connectToRouter());
    QTest::mouseClick(m_matrix->outputButton(ecdis), Qt::LeftButton);
    QTest::mouseClick(m_matrix->crsBox(aisChannel), Qt::LeftButton);
    QTRY_VERIFY(!m_bench->router.working().outputs[ecdis].channels[aisChannel].crsEnabled);
    const QString row = m_matrix->row(aisChannel);

    m_bench->boxes.expect(box);
    m_bench->router.setFault(Fault::BusyAfter, 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_bench->boxes.answered(), 2,
                              timeout); // the download's, and this one
    QTRY_VERIFY(!m_bench->window.isConnected());
    QCOMPARE(m_matrix->row(aisChannel), row);
    QCOMPARE(m_matrix->placeOf(dead), 16 + aisChannel);
    QVERIFY(m_bench->find<QPushButton>("pushButton_SaveFile")->isEnabled());

    m_bench->boxes.expect(box);
    m_bench->selectRouterPort();
    m_bench->find<QPushButton>("pushButton_connect")->click();
    QTRY_COMPARE_WITH_TIMEOUT(m_bench->boxes.answered(), 3, timeout);
    QTRY_VERIFY(!m_bench->window.currentLink());
    QCOMPARE(m_matrix->row(aisChannel), row);
}

QTEST_MAIN(tst_training)
#include "tst_training.moc"
