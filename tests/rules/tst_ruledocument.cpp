#include "model/randommodel.h"
#include "model/richmodel.h"
#include "rules/difference.h"
#include "rules/ruledocument.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>

Q_DECLARE_METATYPE(RouterModel)

/*! Rule files that are torn, odd, or good. */
class TestRuleDocument : public QObject
{
    Q_OBJECT

private slots:
    void readsWhatIsWritten();
    void tornAtEveryLength_data();
    void tornAtEveryLength();
    void damaged_data();
    void damaged();
    void files();
    void refusesWhatAFileCantHold_data();
    void refusesWhatAFileCantHold();
};

namespace {

constexpr int PortStart = 3; // of output 0: behind the magic
constexpr int ChannelBytes = 9;
constexpr int SpeedPlace = PortStart + 12 * ChannelBytes;

QByteArray bytesOf(const RouterModel &model)
{
    QString error;
    const auto bytes = RuleDocument::bytes(model, error);
    return bytes ? *bytes : QByteArray();
}

} // namespace

void TestRuleDocument::readsWhatIsWritten()
{
    constexpr quint32 rounds = 200;
    for (quint32 seed = 0; seed < rounds; ++seed) {
        const RouterModel model = randomModel(seed);
        QString error;
        const auto document = RuleDocument::parse(bytesOf(model), error);
        QVERIFY2(document, qPrintable(error));
        QCOMPARE(document->remarks, QStringList());
        QCOMPARE(differences(model, document->model), QStringList());
    }
}

void TestRuleDocument::tornAtEveryLength_data()
{
    QTest::addColumn<QByteArray>("whole");
    RouterModel longNames = richModel();
    for (auto &port : longNames.input_ports)
        port.input_name = QStringLiteral("ABCDEFGH");
    QTest::newRow("nobody has set it up") << bytesOf(RouterModel());
    QTest::newRow("every field in use") << bytesOf(richModel());
    QTest::newRow("long names at the end") << bytesOf(longNames);
}

void TestRuleDocument::tornAtEveryLength()
{
    QFETCH(QByteArray, whole);
    QVERIFY(whole.size() > 1375);
    QString error;
    QVERIFY(RuleDocument::parse(whole, error));
    for (int length = 0; length < whole.size(); ++length) {
        error.clear();
        QVERIFY2(!RuleDocument::parse(whole.left(length), error),
                 qPrintable(QString::number(length)));
        QCOMPARE(error, QStringLiteral("torn, or not a rule file"));
    }
}

void TestRuleDocument::damaged_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("remark");
    const int channel = PortStart + 5 * ChannelBytes;
    QTest::newRow("bit 7 of the flags")
        << channel << QByteArray("\x80") << "Output 0, channel 5: a bit without a meaning is set";
    QTest::newRow("of the first channel")
        << PortStart << QByteArray("\x80") << "Output 0, channel 0: a bit without a meaning is set";
    QTest::newRow("of the last channel") << PortStart + 11 * ChannelBytes << QByteArray("\x80")
                                         << "Output 0, channel 11: a bit without a meaning is set";
    QTest::newRow("header flag without a header")
        << channel << QByteArray("\x04")
        << "Output 0, channel 5: the header is on, but blank, and read as none";
    QTest::newRow("header without its flag")
        << channel + 7 << QByteArray("GP")
        << "Output 0, channel 5: the header is off, but not blank, and read as on";
    QTest::newRow("half a header")
        << channel + 7 << QByteArray("G ") << "Output 0, channel 5: half a header, read as none";
    QTest::newRow("speed of no port")
        << SpeedPlace << QByteArray("\xb0\x04\x00\x00", 4)
        << "Output and input 0: 1200 baud, a speed that no port has; read as 4800";
}

void TestRuleDocument::damaged()
{
    QFETCH(int, place);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, remark);
    QByteArray file = bytesOf(RouterModel());
    file.replace(place, bytes.size(), bytes);
    QString error;
    const auto document = RuleDocument::parse(file, error);
    QVERIFY2(document, qPrintable(error));
    QCOMPARE(document->remarks, QStringList(remark));
}

void TestRuleDocument::files()
{
    const QTemporaryDir folder;
    QString error;
    QVERIFY(!RuleDocument::read(folder.filePath(QStringLiteral("none.vrr")), error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!RuleDocument::read(folder.path(), error));

    const QString path = folder.filePath(QStringLiteral("rules.vrr"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytesOf(richModel()));
    file.flush();
    auto document = RuleDocument::read(path, error);
    QVERIFY(document);
    QCOMPARE(document->remarks, QStringList());

    file.write("more");
    file.flush();
    document = RuleDocument::read(path, error);
    QVERIFY(document);
    QCOMPARE(document->remarks,
             QStringList(QStringLiteral("Behind its end: 4 bytes that are not read")));

    file.write(QByteArray(100000, '\0'));
    file.close();
    QVERIFY(!RuleDocument::read(path, error));
    QCOMPARE(error, QStringLiteral("torn, or not a rule file"));
}

void TestRuleDocument::refusesWhatAFileCantHold_data()
{
    QTest::addColumn<RouterModel>("model");
    QTest::addColumn<QString>("word");
    const auto row = [](const char *name, const std::function<void(RouterModel &)> &change,
                        const char *word) {
        RouterModel model;
        change(model);
        QTest::newRow(name) << model << QString::fromLatin1(word);
    };
    row(
        "a name that isn't ASCII",
        [](RouterModel &m) { m.input_ports[4].input_name = QString(QChar(0xe9)); }, "Input 4");
    row(
        "a name with a NUL",
        [](RouterModel &m) { m.input_ports[4].input_name = QString(QChar(0)) + 'A'; }, "");
    row(
        "a name of nine letters",
        [](RouterModel &m) { m.output_ports[2].output_name = QStringLiteral("ABCDEFGHI"); }, "");
    row(
        "a header that is on and empty",
        [](RouterModel &m) { m.output_ports[2].channels[1].hdr_enabled = true; }, "header");
    row(
        "a sentence name of two letters",
        [](RouterModel &m) { m.setFilterString(3, QStringLiteral("AB")); }, "sentence name");
}

void TestRuleDocument::refusesWhatAFileCantHold()
{
    QFETCH(RouterModel, model);
    QFETCH(QString, word);
    QString error;
    QVERIFY(!RuleDocument::bytes(model, error));
    QVERIFY2(!error.isEmpty() && error.contains(word), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestRuleDocument)
#include "tst_ruledocument.moc"
