#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>

/*! Which room of the simulator knows which: none of the tool, and none that knows it in its turn.
 */
class TestSimRooms : public QObject
{
    Q_OBJECT

private slots:
    void includes_data();
    void includes();
};

void TestSimRooms::includes_data()
{
    QTest::addColumn<QStringList>("known");
    const QStringList rooms = {"line", "instruments", "router", "program"};
    for (int i = 0; i < rooms.size(); ++i)
        QTest::newRow(qPrintable(rooms.at(i))) << QStringList(rooms.mid(0, i + 1));
}

void TestSimRooms::includes()
{
    QFETCH(QStringList, known);
    const QRegularExpression include(QStringLiteral("^#include \"(.*)/[a-z0-9_]+\\.h\"$"));
    int sources = 0;
    QDirIterator files(QStringLiteral(TK7_SIMULATOR_DIR "/") + known.constLast(), {"*.h", "*.cpp"});
    while (files.hasNext()) {
        QFile file(files.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        ++sources;
        const auto lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (!line.startsWith(QLatin1String("#include \"")))
                continue;
            const QString folder = include.match(line).captured(1);
            QVERIFY2(folder.startsWith(QLatin1String("simulator/"))
                         && known.contains(folder.section(QLatin1Char('/'), 1)),
                     qPrintable(file.fileName() + QStringLiteral(": ") + line));
        }
    }
    QVERIFY(sources >= 7);
}

QTEST_APPLESS_MAIN(TestSimRooms)
#include "tst_simrooms.moc"
