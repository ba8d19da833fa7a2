#include "simulator/program/passwordmask.h"
#include "simulator/router/lockstore.h"

#include <QtTest>

using namespace tk7sim;

class TestSimLock : public QObject
{
    Q_OBJECT

private slots:
    void passwords_data();
    void passwords();
    void setting_data();
    void setting();
    void unlocking_data();
    void unlocking();
    void removing_data();
    void removing();
    void locking_data();
    void locking();
    void rights_data();
    void rights();
    void lockWithoutAPassword();
    void mask_data();
    void mask();
};

namespace {

const QByteArray own = "Owner1";

LockStore lockAt(int level)
{
    LockStore lock;
    lock.set(true, level, own);
    return lock;
}

} // namespace

void TestSimLock::passwords_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("good");
    QTest::newRow("letters and digits") << QByteArray("azAZ09") << true;
    QTest::newRow("one character") << QByteArray("a") << true;
    QTest::newRow("twenty characters") << QByteArray(20, 'x') << true;
    QTest::newRow("twenty-one characters") << QByteArray(21, 'x') << false;
    QTest::newRow("none") << QByteArray() << false;
    QTest::newRow("blank") << QByteArray("a b") << false;
    QTest::newRow("hyphen") << QByteArray("a-b") << false;
    QTest::newRow("comma") << QByteArray("a,b") << false;
    QTest::newRow("before A and behind z") << QByteArray("@[`{") << false;
    QTest::newRow("before 0 and behind 9") << QByteArray("/:") << false;
    QTest::newRow("above ASCII") << QByteArray("a\xe4") << false;
}

void TestSimLock::passwords()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, good);
    QCOMPARE(LockStore::isPassword(text), good);
    LockStore lock;
    QCOMPARE(lock.setPassword(text), good);
    QCOMPARE(lock.isEnabled(), good);
    QCOMPARE(lock.password(), good ? text : QByteArray());
}

void TestSimLock::setting_data()
{
    QTest::addColumn<int>("level"); // -1: no lock
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("after");
    const auto row = [](const char *name, int level, const char *text, bool ok, int after) {
        QTest::newRow(name) << level << QByteArray(text) << ok << after;
    };
    row("first", -1, "New1", true, 2);
    row("first, of the service", -1, "simlevel5", false, 0);
    row("locked", 0, "New1", false, 0);
    row("level 1", 1, "New1", false, 1);
    row("level 2", 2, "New1", true, 2);
    row("level 3", 3, "New1", true, 3);
    row("level 4", 4, "New1", true, 4);
    row("level 5", 5, "New1", true, 5);
    row("the same again", 2, "Owner1", true, 2);
    row("none", 2, "", false, 2);
    row("of the service", 5, "simlevel1", false, 5);
}

void TestSimLock::setting()
{
    QFETCH(int, level);
    QFETCH(QByteArray, text);
    QFETCH(bool, ok);
    QFETCH(int, after);
    LockStore lock = level < 0 ? LockStore() : lockAt(level);
    const QByteArray before = lock.password();
    QCOMPARE(lock.setPassword(text), ok);
    QCOMPARE(lock.password(), ok ? text : before);
    QCOMPARE(lock.level(), after);
    QCOMPARE(lock.isEnabled(), ok || level >= 0);
}

void TestSimLock::unlocking_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("after");
    const auto row = [](const char *name, int before, const char *text, int after) {
        QTest::newRow(name) << before << QByteArray(text) << after;
    };
    row("own password", 0, "Owner1", 2);
    row("wrong", 0, "owner1", 0);
    row("longer", 0, "Owner12", 0);
    row("shorter", 0, "Owner", 0);
    row("none", 0, "", 0);
    row("level 1", 0, "simlevel1", 1);
    row("level 2 has none of its own", 0, "simlevel2", 0);
    row("level 3", 0, "simlevel3", 3);
    row("level 4", 0, "simlevel4", 4);
    row("level 5", 0, "simlevel5", 5);
    row("capitals matter", 0, "SIMLEVEL5", 0);
    row("up", 2, "simlevel5", 5);
    row("down", 5, "Owner1", 2);
    row("wrong while open", 4, "wrong", 4);
}

void TestSimLock::unlocking()
{
    QFETCH(int, before);
    QFETCH(QByteArray, text);
    QFETCH(int, after);
    LockStore lock = lockAt(before);
    lock.unlock(text);
    QCOMPARE(lock.level(), after);
    QCOMPARE(lock.isLocked(), after == 0);
    QVERIFY(lock.isEnabled());

    LockStore none;
    none.unlock(text);
    QCOMPARE(none.level(), 0);
    QVERIFY(!none.isEnabled());
    QVERIFY(!none.isLocked());
}

void TestSimLock::removing_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("ok");
    for (int level = 0; level <= LockStore::maxLevel; ++level) {
        QTest::addRow("level %d", level) << level << (level >= 2);
    }
}

void TestSimLock::removing()
{
    QFETCH(int, level);
    QFETCH(bool, ok);
    LockStore lock = lockAt(level);
    QCOMPARE(lock.remove(), ok);
    QCOMPARE(lock.isEnabled(), !ok);
    QCOMPARE(lock.level(), ok ? 0 : level);
    QCOMPARE(lock.password(), ok ? QByteArray() : own);
    QVERIFY(!LockStore().remove());
}

void TestSimLock::locking_data()
{
    QTest::addColumn<int>("level");
    for (int level = 0; level <= LockStore::maxLevel; ++level) {
        QTest::addRow("level %d", level) << level;
    }
}

void TestSimLock::locking()
{
    QFETCH(int, level);
    LockStore lock = lockAt(level);
    QCOMPARE(lock.lock(), level != 0);
    QVERIFY(lock.isLocked());
    QCOMPARE(lock.password(), own);
    QVERIFY(!LockStore().lock());
}

void TestSimLock::rights_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("mode");
    QTest::addColumn<bool>("view");
    for (int level = 0; level <= LockStore::maxLevel; ++level) {
        QTest::addRow("level %d", level) << level << (level >= 4) << (level >= 5);
    }
}

void TestSimLock::rights()
{
    QFETCH(int, level);
    QFETCH(bool, mode);
    QFETCH(bool, view);
    const LockStore lock = lockAt(level);
    QCOMPARE(lock.allows(LockStore::modeLevel), mode);
    QCOMPARE(lock.allows(LockStore::viewLevel), view);
    LockStore none;
    none.set(false, level, QByteArray());
    QVERIFY(!none.allows(LockStore::modeLevel));
}

void TestSimLock::lockWithoutAPassword()
{
    LockStore lock;
    lock.set(true, 0, QByteArray());
    lock.unlock(QByteArray());
    QVERIFY(lock.isLocked());
    lock.unlock("simlevel3");
    QCOMPARE(lock.level(), 3);
}

void TestSimLock::mask_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("isAnswer");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const char *name, const char *line, bool isAnswer, const char *shown) {
        QTest::newRow(name) << QByteArray(line) << isAnswer << QByteArray(shown);
    };
    row("set", "$VRPWS,secret*12\r\n", false, "$VRPWS,***");
    row("unlock", "$VRPWU,secret*12\r\n", false, "$VRPWU,***");
    row("view", "$VRPWV,secret*12\r\n", true, "$VRPWV,***");
    row("view, from the wrong side", "$VRPWV,secret*12\r\n", false, "$VRPWV,***");
    row("no checksum", "$VRPWU,secret\r\n", false, "$VRPWU,***");
    row("no comma", "$VRPWUsecret\r\n", false, "$VRPWU,***");
    row("unknown sentence of the family", "$VRPWX,secret\r\n", false, "$VRPWX,***");
    row("result", "$VRPWS,OK*00\r\n", true, "$VRPWS,OK*00\r\n");
    row("bad result", "$VRPWS,ERROR*00\r\n", true, "$VRPWS,ERROR*00\r\n");
    row("password OK", "$VRPWS,OK*00\r\n", false, "$VRPWS,***");
    row("password that begins as a result", "$VRPWS,OKsecret*00\r\n", true, "$VRPWS,***");
    row("request", "$VRPWV\r\n", false, "$VRPWV\r\n");
    row("delete", "$VRPWD\r\n", false, "$VRPWD\r\n");
    row("another sentence", "$VRMOD,NORMAL*00\r\n", false, "$VRMOD,NORMAL*00\r\n");
}

void TestSimLock::mask()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, isAnswer);
    QFETCH(QByteArray, shown);
    QCOMPARE(withoutPassword(line, isAnswer), shown);
}

QTEST_APPLESS_MAIN(TestSimLock)
#include "tst_simlock.moc"
