#include "model/routerversion.h"

#include <QTest>

/*! Which firmware has what. */
class tst_routerversion : public QObject
{
    Q_OBJECT

private slots:
    void functions_data();
    void functions();
};

void tst_routerversion::functions_data()
{
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<uint>("major");
    QTest::addColumn<uint>("minor");
    QTest::addColumn<QList<bool>>("has"); // in the order of functions()

    const auto add = [](const char *name, bool known, uint major, uint minor,
                        const QList<bool> &has) {
        QTest::newRow(name) << known << major << minor << has;
    };
    add("0.0", true, 0, 0, {false, false, false, false, false, false});
    add("2.9", true, 2, 9, {false, false, false, false, false, false});
    add("2.4294967295", true, 2, 4294967295u, {false, false, false, false, false, false});
    add("3.0", true, 3, 0, {true, false, true, false, false, false});
    add("3.1", true, 3, 1, {true, true, true, false, false, false});
    add("3.3", true, 3, 3, {true, true, true, false, false, false});
    add("3.4", true, 3, 4, {true, true, true, true, false, false});
    add("3.5", true, 3, 5, {true, true, true, true, true, false});
    add("3.10", true, 3, 10, {true, true, true, true, true, false});
    add("4.0", true, 4, 0, {true, true, true, true, true, true});
    add("10.0", true, 10, 0, {true, true, true, true, true, true});
    add("unknown", false, 0, 0, {false, false, false, false, false, false});
    add("unknown, whatever the numbers", false, 4, 0, {false, false, false, false, false, false});
}

void tst_routerversion::functions()
{
    QFETCH(bool, isKnown);
    QFETCH(uint, major);
    QFETCH(uint, minor);
    const RouterVersion version = {isKnown, major, minor};
    QList<bool> found;
    for (const auto function :
         {RouterFunction::Service, RouterFunction::Statistics, RouterFunction::FirmwareUpdate,
          RouterFunction::AisTest, RouterFunction::SmartAis, RouterFunction::ModeChange}) {
        found += supports(version, function);
    }
    QTEST(found, "has");
}

QTEST_APPLESS_MAIN(tst_routerversion)
#include "tst_routerversion.moc"
