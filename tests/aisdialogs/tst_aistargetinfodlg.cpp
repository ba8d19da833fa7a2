#include "aistalk.h"
#include "fakeclock.h"

#include "ais/qais.h"
#include "aisdialogs/aistargetinfodlg.h"

#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

/*! One vessel, field by field. */
class tst_aistargetinfodlg : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void startsEmpty();
    void values_data();
    void values();
    void positionReportAlone();
    void staticDataAlone();
    void nothingWithoutData();
    void writesOnChangeOnly();
    void retargets();
    void age_data();
    void age();
    void ageIsWrittenEachSecond();
    void noAgeWithoutATarget();
    void ageOfATargetThatWasNeverHeard();
    void goesOnReadingAnAgedTarget();

private:
    void hear(const PositionReport &report);
    void hear(const VoyageData &data);
    static QString value(const AisTargetInfoDlg &info, int row)
    {
        return info.findChild<QTableWidget *>("target_info_table")->item(row, 1)->text();
    }

    std::unique_ptr<QAis> m_ais;
};

namespace {

constexpr quint32 mmsi = 211000001;
constexpr int ageRow = 18;
constexpr int tick = 3000; // ms, more than the second of the timer

} // namespace

void tst_aistargetinfodlg::init()
{
    m_ais = std::make_unique<QAis>();
}

void tst_aistargetinfodlg::hear(const PositionReport &report)
{
    m_ais->decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, report.payload().constData());
}

void tst_aistargetinfodlg::hear(const VoyageData &data)
{
    m_ais->decodeMessage(QAis::TargetMessage, 1, 1, 0, VoyageData::FillBits,
                         data.payload().constData());
}

void tst_aistargetinfodlg::startsEmpty()
{
    const AisTargetInfoDlg info(nullptr);
    QVERIFY(!info.target());
    for (int row = 0; row <= ageRow; ++row)
        QCOMPARE(value(info, row), QString());
}

void tst_aistargetinfodlg::values_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("text");

    QTest::newRow("MMSI") << 0 << "211000001";
    QTest::newRow("IMO") << 1 << "9383663";
    QTest::newRow("Call Sign") << 2 << "9HMQ9";
    QTest::newRow("Ship Name") << 3 << "RUTH THERESA";
    QTest::newRow("Position Fix Type") << 4 << "GPS";
    QTest::newRow("Position Accuracy") << 5 << "<10m";
    QTest::newRow("Position") << 6 << "N  37.08.600 E024.06.560";
    QTest::newRow("Speed Over Ground") << 7 << "11.3";
    QTest::newRow("Course Over Ground") << 8 << "330.4";
    QTest::newRow("True Heading") << 9 << "332";
    QTest::newRow("Rate of Turn") << 10 << "26.83";
    QTest::newRow("Navigation Status") << 11 << "Moored";
    QTest::newRow("Ship Type") << 12 << "Tanker (category C)";
    QTest::newRow("Length") << 13 << "101";
    QTest::newRow("Breadths") << 14 << "18";
    QTest::newRow("Draught") << 15 << "7.8";
    QTest::newRow("Destination") << 16 << "BOSTON,USA";
    QTest::newRow("ETA") << 17 << "30.12 16:30 UTC";
}

void tst_aistargetinfodlg::values()
{
    QFETCH(int, row);
    PositionReport report;
    report.mmsi = mmsi;
    report.status = 5;
    report.turn = 127;
    VoyageData data;
    data.mmsi = mmsi;
    data.shipType = 83;
    hear(report);
    hear(data);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    QCOMPARE(value(info, row), QString());
    info.refresh();
    QTEST(value(info, row), "text");
    const auto *table = info.findChild<QTableWidget *>();
    QCOMPARE(table->item(row, 0)->text(), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_aistargetinfodlg::positionReportAlone()
{
    PositionReport report;
    report.mmsi = mmsi;
    hear(report);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    info.refresh();
    for (const int row : {0, 5, 6, 7, 8, 9, 10, 11})
        QVERIFY2(!value(info, row).isEmpty(), qPrintable(QString::number(row)));
    for (const int row : {1, 2, 3, 4, 12, 13, 14, 15, 16, 17})
        QCOMPARE(value(info, row), QString());
}

void tst_aistargetinfodlg::staticDataAlone()
{
    VoyageData data;
    data.mmsi = mmsi;
    hear(data);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    info.refresh();
    for (const int row : {0, 1, 2, 3, 4, 12, 13, 14, 15, 16, 17})
        QVERIFY2(!value(info, row).isEmpty(), qPrintable(QString::number(row)));
    for (const int row : {5, 6, 7, 8, 9, 10, 11})
        QCOMPARE(value(info, row), QString());
}

void tst_aistargetinfodlg::nothingWithoutData()
{
    AisTargetInfoDlg info(nullptr);
    info.refresh();
    QAisTarget target;
    target.m_dynamicValid = true;
    target.m_speed = 5;
    info.setTarget(&target);
    info.refresh(); // MMSI 0: no data yet
    for (int row = 0; row < ageRow; ++row)
        QCOMPARE(value(info, row), QString());
    target.m_mmsi = mmsi;
    info.refresh();
    QCOMPARE(value(info, 7), QStringLiteral("5.0"));
    // What has been shown stays.
    target.m_mmsi = 0;
    target.m_speed = 6;
    info.refresh();
    QCOMPARE(value(info, 7), QStringLiteral("5.0"));
    QCOMPARE(value(info, 0), QString::number(mmsi));
}

void tst_aistargetinfodlg::writesOnChangeOnly()
{
    PositionReport report;
    report.mmsi = mmsi;
    hear(report);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    info.refresh();
    const QSignalSpy written(info.findChild<QTableWidget *>(), &QTableWidget::cellChanged);
    info.refresh();
    QCOMPARE(written.size(), 0);
    report.speed += 1;
    hear(report);
    info.refresh();
    QCOMPARE(written.size(), 1);
}

void tst_aistargetinfodlg::retargets()
{
    PositionReport report;
    report.mmsi = mmsi;
    hear(report);
    report.mmsi = mmsi + 1;
    hear(report);
    AisTargetInfoDlg info(nullptr);
    for (int i = 0; i < 2; ++i) {
        info.setTarget(m_ais->targetAt(i));
        QCOMPARE(info.target(), m_ais->targetAt(i));
        info.refresh();
        QCOMPARE(value(info, 0), QString::number(mmsi + quint32(i)));
    }
}

void tst_aistargetinfodlg::age_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");

    QTest::newRow("just now") << 0 << "00:00";
    QTest::newRow("a minute and a quarter") << 75 << "01:15";
    QTest::newRow("nearly an hour") << 3599 << "59:59";
    QTest::newRow("an hour: wraps") << 3600 << "00:00";
    QTest::newRow("an hour and a quarter minute: wraps") << 3675 << "01:15";
    QTest::newRow("past midnight") << 12 * 3600 + 61 << "01:01";
}

void tst_aistargetinfodlg::age()
{
    QFETCH(int, seconds);
    FakeClock clock;
    PositionReport report;
    report.mmsi = mmsi;
    hear(report);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    info.refresh();
    QCOMPARE(value(info, ageRow), QString());
    clock.advance(seconds);
    QTRY_VERIFY_WITH_TIMEOUT(!value(info, ageRow).isEmpty(), tick);
    QTEST(value(info, ageRow), "text");
}

void tst_aistargetinfodlg::ageIsWrittenEachSecond()
{
    const AisTargetInfoDlg info(nullptr);
    const auto *timer = info.findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer);
    QVERIFY(timer->isActive());
    QVERIFY(!timer->isSingleShot());
    QCOMPARE(timer->interval(), 1000);
}

void tst_aistargetinfodlg::noAgeWithoutATarget()
{
    const AisTargetInfoDlg info(nullptr);
    QTest::qWait(1100); // a tick
    QCOMPARE(value(info, ageRow), QString());
}

void tst_aistargetinfodlg::ageOfATargetThatWasNeverHeard()
{
    AisTargetInfoDlg info(nullptr);
    QAisTarget target;
    info.setTarget(&target);
    QTRY_COMPARE_WITH_TIMEOUT(value(info, ageRow), QStringLiteral("00:00"), tick);
}

void tst_aistargetinfodlg::goesOnReadingAnAgedTarget()
{
    FakeClock clock;
    PositionReport report;
    report.mmsi = mmsi;
    hear(report);
    AisTargetInfoDlg info(nullptr);
    info.setTarget(m_ais->targetAt(0));
    info.refresh();
    clock.advance(300);
    m_ais->expire();
    QCOMPARE(m_ais->targetCount(), 0);
    m_ais.reset();
    QTRY_COMPARE_WITH_TIMEOUT(value(info, ageRow), QStringLiteral("05:00"), tick);
    clock.advance(2);
    QTRY_COMPARE_WITH_TIMEOUT(value(info, ageRow), QStringLiteral("05:02"), tick);
}

QTEST_MAIN(tst_aistargetinfodlg)
#include "tst_aistargetinfodlg.moc"
