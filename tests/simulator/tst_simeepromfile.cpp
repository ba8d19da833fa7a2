#include "simulator/router/eepromfile.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace tk7sim;

class TestSimEepromFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void noFile();
    void keepsConfiguration();
    void replacesFile();
    void failedSaveIsReported();
    void refusesForeignFiles_data();
    void refusesForeignFiles();
    void refusesTornFiles();
    void refusesWrongValues_data();
    void refusesWrongValues();
    void missingFileIsReported();
    void olderFileHasNoPassword();
    void isItsOwnersAlone();

private:
    QString path() const { return m_folder->filePath(QStringLiteral("eeprom.json")); }
    void write(const QByteArray &bytes) const;
    QByteArray read() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestSimEepromFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestSimEepromFile::write(const QByteArray &bytes) const
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray TestSimEepromFile::read() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestSimEepromFile::noFile()
{
    EepromFile file;
    QVERIFY(file.isNull());
    QVERIFY(!file.exists());
    QVERIFY(file.save({RouterConfig::factory(), {}}));
}

void TestSimEepromFile::keepsConfiguration()
{
    RouterConfig config = RouterConfig::factory();
    Channel &channel = config.outputs[11].channels[11];
    channel = {11, 0, true, 0xFFFFFFFF, FilterType::Black, true, true, "ZZ", 7};
    config.outputs[5].channels[0].mainInput = 12; // which no router has
    config.outputs[5].channels[0].reserveInput = 14;
    config.outputs[0].channels[3].hdr = "QQ"; // text may stay although the option is off
    config.inputNames[11] = "L\xe4nge\xff";   // bytes above ASCII survive
    config.outputNames[0] = "\"a\\ b";
    config.speeds[6] = 115200;
    config.filterList[31] = "ABC";
    config.filterList[0].clear();

    QVERIFY(EepromFile(path()).save({config, "Owner1"}));
    EepromFile file(path());
    QVERIFY(file.exists());
    const auto loaded = file.load();
    QVERIFY2(loaded.has_value(), qPrintable(file.errorString()));
    QVERIFY(loaded->config == config);
    QCOMPARE(loaded->lockPassword, QByteArray("Owner1"));
    QVERIFY(file.errorString().isEmpty());
}

void TestSimEepromFile::replacesFile()
{
    EepromFile file(path());
    QVERIFY(file.save({RouterConfig::factory(), {}}));
    QVERIFY(file.save({}));
    QVERIFY(file.load()->config == RouterConfig());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void TestSimEepromFile::failedSaveIsReported()
{
    EepromFile file(m_folder->filePath(QStringLiteral("missing/eeprom.json")));
    QVERIFY(!file.save({}));
    QVERIFY(file.errorString().contains(QLatin1String("missing/eeprom.json")));
}

void TestSimEepromFile::refusesForeignFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("zeros") << QByteArray(5000, '\0');
    QTest::newRow("text") << QByteArray("hello\n");
    QTest::newRow("a list") << QByteArray("[1,2,3]");
    QTest::newRow("an empty object") << QByteArray("{}");
    QTest::newRow("another format") << QByteArray(R"({"format":"other","version":1})");
    QTest::newRow("a later version") << QByteArray(R"({"format":"tk7-router-eeprom","version":2})");
    QTest::newRow("nothing in it") << QByteArray(R"({"format":"tk7-router-eeprom","version":1})");
}

void TestSimEepromFile::refusesForeignFiles()
{
    QFETCH(QByteArray, bytes);
    write(bytes);
    EepromFile file(path());
    QVERIFY(!file.load().has_value());
    QVERIFY(file.errorString().startsWith(path()));
    QVERIFY(file.errorString().size() > path().size() + 2);
}

void TestSimEepromFile::refusesTornFiles()
{
    QVERIFY(EepromFile(path()).save({RouterConfig::factory(), "Secret1"}));
    const QByteArray whole = read();
    constexpr int step = 997;
    // A cut that takes only white space behind the last brace loses nothing.
    for (int length = int(whole.trimmed().size() - 1); length > 0; length -= step) {
        write(whole.left(length));
        QVERIFY2(!EepromFile(path()).load().has_value(), qPrintable(QString::number(length)));
    }
}

void TestSimEepromFile::refusesWrongValues_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const char *before, const char *after) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after);
    };
    row("input 16", "\"main\": 0", "\"main\": 16");
    row("negative input", "\"reserve\": 1,", "\"reserve\": -1,");
    row("broken input", "\"reserve\": 1,", "\"reserve\": 1.5,");
    row("input as text", "\"reserve\": 1,", "\"reserve\": \"1\",");
    row("flag as number", "\"crs\": true", "\"crs\": 1");
    row("flag missing", "\"crs\": true", "\"crx\": true");
    row("mask of 33 bits", "\"filterMask\": 0", "\"filterMask\": 4294967296");
    row("smart 8", "\"smart\": 1", "\"smart\": 8");
    row("header of three", "\"talker\": \"HE\"", "\"talker\": \"HEE\"");
    row("name of nine", "\"GYRO\"", "\"GYROSCOPE\"");
    row("name with a comma", "\"GYRO\"", "\"GY,RO\"");
    row("name with a line end", "\"GYRO\"", "\"GY\\nRO\"");
    row("name beyond Latin-1", "\"GYRO\"", "\"GYR\\u03a9\"");
    row("name as number", "\"GYRO\"", "7");
    row("list name of two", "\"RMC\"", "\"RM\"");
    row("no such speed", "38400", "1200");
    row("one port less", "\"GYRO\",", "");
    row("password with a blank", "\"Secret1\"", "\"Secret 1\"");
    row("password of twenty-one", "\"Secret1\"", "\"Secret7890123456789012\"");
    row("password beyond Latin-1", "\"Secret1\"", "\"Secret\\u03a9\"");
    row("password as number", "\"Secret1\"", "1");
}

void TestSimEepromFile::refusesWrongValues()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QVERIFY(EepromFile(path()).save({RouterConfig::factory(), "Secret1"}));
    QByteArray bytes = read();
    const int at = int(bytes.indexOf(before));
    QVERIFY(at >= 0);
    write(bytes.replace(at, before.size(), after));
    EepromFile file(path());
    QVERIFY(!file.load().has_value());
    QVERIFY(!file.errorString().isEmpty());
}

void TestSimEepromFile::missingFileIsReported()
{
    EepromFile file(path());
    QVERIFY(!file.exists());
    QVERIFY(!file.load().has_value());
    QVERIFY(file.errorString().contains(path()));
}

void TestSimEepromFile::olderFileHasNoPassword()
{
    QVERIFY(EepromFile(path()).save({RouterConfig::factory(), "Secret1"}));
    QByteArray bytes = read();
    QVERIFY(bytes.contains("\"lockPassword\": \"Secret1\""));
    write(bytes.replace("\"lockPassword\": \"Secret1\",", ""));
    const auto contents = EepromFile(path()).load();
    QVERIFY(contents.has_value());
    QVERIFY(contents->lockPassword.isEmpty());
    QVERIFY(contents->config == RouterConfig::factory());
}

void TestSimEepromFile::isItsOwnersAlone()
{
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther
        | QFileDevice::WriteOther;
    write("old");
    QVERIFY(
        QFile::setPermissions(path(), others | QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    QVERIFY(EepromFile(path()).save({RouterConfig::factory(), "Secret1"}));
    QVERIFY((QFile::permissions(path()) & others) == 0);
}

QTEST_APPLESS_MAIN(TestSimEepromFile)
#include "tst_simeepromfile.moc"
