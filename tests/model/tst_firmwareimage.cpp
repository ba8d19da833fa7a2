#include "model/firmwareimage.h"

#include <QBuffer>
#include <QTest>

using FirmwareImage::ReadResult;

Q_DECLARE_METATYPE(ReadResult)

/*! Reading a firmware file, and what it says of itself. */
class tst_firmwareimage : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void endsEarly_data();
    void endsEarly();
    void describes_data();
    void describes();
};

namespace {

QByteArray image(int size)
{
    QByteArray bytes("fwVR48");
    while (bytes.size() < size)
        bytes.append(char(bytes.size()));
    bytes.truncate(size);
    return bytes;
}

// A file that is cut while it is read: it is said to be larger than it is.
class CutFile : public QIODevice
{
public:
    CutFile(const QByteArray &content, qint64 size) : m_content(content), m_size(size)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const int from = int(pos());
        const int count = int(qMin(maxSize, qint64(m_content.size() - from)));
        if (count <= 0)
            return -1;
        memcpy(data, m_content.constData() + from, size_t(count));
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_content;
    qint64 m_size;
};

} // namespace

void tst_firmwareimage::reads_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<ReadResult>("result");

    QTest::newRow("0 bytes") << QByteArray() << ReadResult::NotFirmware;
    QTest::newRow("5 bytes") << image(5) << ReadResult::NotFirmware;
    for (const int size : {6, 17, 18, 31, 32, 33, 64, 1000000})
        QTest::addRow("%d bytes", size) << image(size) << ReadResult::Ok;
    QTest::newRow("1000001 bytes") << image(1000001) << ReadResult::TooBig;
    QTest::newRow("another magic") << QByteArray("fwVR49xx") << ReadResult::NotFirmware;
}

void tst_firmwareimage::reads()
{
    QFETCH(QByteArray, content);
    QFETCH(ReadResult, result);
    QBuffer device(&content);
    QVERIFY(device.open(QIODevice::ReadOnly));
    QByteArray buffer("before");
    QCOMPARE(FirmwareImage::read(device, buffer), result);
    QCOMPARE(buffer, result == ReadResult::TooBig ? QByteArray("before") : content);
}

void tst_firmwareimage::endsEarly_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("left");

    QTest::newRow("nothing left") << 100 << 0;
    QTest::newRow("inside the magic") << 100 << 3;
    QTest::newRow("behind the magic") << 100 << 6;
    QTest::newRow("one byte short") << 100 << 99;
    QTest::newRow("largest file, half") << 1000000 << 500000;
}

void tst_firmwareimage::endsEarly()
{
    QFETCH(int, size);
    QFETCH(int, left);
    CutFile device(image(left), size);
    QByteArray buffer;
    QCOMPARE(FirmwareImage::read(device, buffer), ReadResult::ReadError);
}

void tst_firmwareimage::describes_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");

    const QByteArray head("fwVR4812345678");
    const auto add = [&](const char *name, const QByteArray &fields, const QString &text) {
        QTest::newRow(name) << head + fields << text;
    };
    add("3.5, no mode", QByteArray("\3\5\0\0", 4), QStringLiteral("3.5"));
    add("mode of one character", QByteArray("\3\5X\0", 4), QStringLiteral("3.5 mode X"));
    add("mode of two characters", QByteArray("\3\5XY", 4), QStringLiteral("3.5 mode XY"));
    add("second character without a first", QByteArray("\3\5\0Y", 4), QStringLiteral("3.5"));
    add("9.0", QByteArray("\11\0\0\0", 4), QStringLiteral("9.0"));
    add("10 is the character behind 9", QByteArray("\12\0\0\0", 4), QStringLiteral(":.0"));
    add("255", QByteArray("\377\0\0\0", 4), QStringLiteral(u"\u012f.0"));
    add("mode beyond ASCII", QByteArray("\3\5\351\0", 4), QStringLiteral(u"3.5 mode \u00e9"));
    add("ends behind the header", QByteArray(), QStringLiteral("0.0"));
    add("ends behind the major version", QByteArray("\3"), QStringLiteral("3.0"));
    add("ends behind the minor version", QByteArray("\3\5"), QStringLiteral("3.5"));
    add("ends behind the first character", QByteArray("\3\5X"), QStringLiteral("3.5 mode X"));
    QTest::newRow("nothing but the magic") << QByteArray("fwVR48") << "0.0";
    QTest::newRow("empty") << QByteArray() << "0.0";
}

void tst_firmwareimage::describes()
{
    QFETCH(QByteArray, content);
    QTEST(FirmwareImage::describe(content), "text");
}

QTEST_APPLESS_MAIN(tst_firmwareimage)
#include "tst_firmwareimage.moc"
