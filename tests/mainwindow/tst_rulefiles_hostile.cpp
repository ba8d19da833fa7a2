#include "rulefilebench.h"

#include "model/rulefile.h"

#include <QBuffer>

// Files that are no rule files any more, through the window, each by a file dialog and a box.

using namespace RuleFileBytes;

namespace {

/*! Loads \a bytes, expecting the box that is due, and looks at what holds whatever they are. */
QString loadHostile(RuleFileBench &bench, const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    RouterModel expected = bench.window.routerModel();
    const bool isGood = RuleFile::read(buffer, expected);
    if (isGood)
        bench.expectLoaded();
    else
        bench.expectWarning(
            loadTitle, QStringLiteral("Error load rules from %1").arg(bench.path("rules.vrr")));
    bench.loadBytes(bytes);
    if (!bench.report().isEmpty())
        return bench.report();
    if (bench.window.routerModel() != expected)
        return QStringLiteral("another model than the reader's");
    for (int port = 0; port < MatrixView::size; ++port) {
        const QLabel *label = bench.matrix->labels[std::size_t(port)];
        const DragFrame *frame = bench.matrix->frame(bench.matrix->placeOf(port));
        if (!frame || !frame->rect().contains(label->geometry()))
            return QStringLiteral("label %1 lies in no frame").arg(port);
    }
    for (int i = 0; i < MatrixView::size; ++i) {
        const ChannelRecord &channel = expected.output_ports[0].channels[std::size_t(i)];
        const bool isEmptyRow = bench.matrix->row(i).startsWith(QStringLiteral("-------"));
        if (isGood && isEmptyRow != isEmpty(channel))
            return QStringLiteral("row %1 is %2").arg(i).arg(bench.matrix->row(i));
    }
    return QString();
}

} // namespace

class TestHostileRuleFiles : public QObject
{
    Q_OBJECT

public:
    static void initMain()
    {
        qputenv("QT_QPA_PLATFORM", "minimal");
        qputenv("QT_FONT_DPI", "96");
    }

private slots:
    void cutAtEveryLength();
    void everyByteFlipped();
};

void TestHostileRuleFiles::cutAtEveryLength()
{
    RuleFileBench bench;
    const QByteArray good = dataFile("rules-rich.vrr");
    for (int size = 0; size <= good.size(); ++size) {
        const QString report = loadHostile(bench, good.left(size));
        QVERIFY2(report.isEmpty(), qPrintable(QString::number(size) + ": " + report));
    }
    QVERIFY(bench.heard().isEmpty());
}

void TestHostileRuleFiles::everyByteFlipped()
{
    RuleFileBench bench;
    const QByteArray good = dataFile("rules-rich.vrr");
    for (int offset = 0; offset < good.size(); ++offset) {
        QByteArray bytes = good;
        bytes[offset] = char(~bytes.at(offset));
        const QString report = loadHostile(bench, bytes);
        QVERIFY2(report.isEmpty(), qPrintable(QString::number(offset) + ": " + report));
    }
    QVERIFY(bench.heard().isEmpty());
}

QTEST_MAIN(TestHostileRuleFiles)
#include "tst_rulefiles_hostile.moc"
