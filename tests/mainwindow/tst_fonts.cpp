#include "ais/qais.h"
#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/aistestdlg.h"
#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/smartdlg.h"
#include "editors/sntdlg.h"
#include "mainwindow/mainwindow.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "service/servicedlg.h"
#include "service/waitsavedlg.h"
#include "support/formcheck.h"

#include <QFontInfo>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QTest>

#include <functional>
#include <memory>

/*! No text of any window is smaller than can be read. Runs at 96 and at 144 dots per inch. */
class tst_fonts : public QObject
{
    Q_OBJECT

private slots:
    void readable_data();
    void readable();
    void alarms();
    void counters();
    void mode();
};

using Make = std::function<std::unique_ptr<QWidget>()>;
Q_DECLARE_METATYPE(Make)

namespace {

constexpr qreal smallest = 7.5; // points

template <typename Window> Make maker()
{
    return [] { return std::make_unique<Window>(nullptr); };
}

template <> Make maker<MainWindow>()
{
    return [] { return std::make_unique<MainWindow>(); };
}

QString textOf(const QWidget &widget)
{
    for (const char *property : {"text", "title", "currentText"}) {
        const QString text = widget.property(property).toString();
        if (!text.isEmpty())
            return text;
    }
    return QString();
}

void verifyItem(const QTableWidgetItem *item)
{
    if (item && item->data(Qt::FontRole).isValid())
        QVERIFY2(item->font().pointSizeF() >= smallest, qPrintable(item->text()));
}

void verifyTexts(const QWidget &window)
{
    const auto widgets = window.findChildren<QWidget *>();
    QVERIFY(!widgets.isEmpty());
    for (const QWidget *widget : widgets) {
        // A sign rather than a text, ">>" on a bar twelve pixels wide.
        if (widget->objectName() == QLatin1String("pushButton_return_input"))
            continue;
        widget->ensurePolished(); // a style sheet may have a font of its own
        const qreal size = QFontInfo(widget->font()).pointSizeF();
        const QByteArray what = widget->objectName().toLatin1() + ' ' + textOf(*widget).toUtf8()
            + ' ' + QByteArray::number(size);
        QVERIFY2(size >= smallest, what.constData());
    }
    const auto tables = window.findChildren<QTableWidget *>();
    for (const QTableWidget *table : tables) {
        for (int column = 0; column < table->columnCount(); ++column) {
            verifyItem(table->horizontalHeaderItem(column));
            for (int row = 0; row < table->rowCount(); ++row)
                verifyItem(table->item(row, column));
        }
    }
}

} // namespace

void tst_fonts::readable_data()
{
    QTest::addColumn<Make>("make");

    QTest::newRow("main window, status panel") << maker<MainWindow>();
    QTest::newRow("FilterDlg") << maker<FilterDlg>();
    QTest::newRow("SntDlg") << maker<SntDlg>();
    QTest::newRow("DelSentenceDlg") << maker<DelSentenceDlg>();
    QTest::newRow("HdrEditDlg") << maker<HdrEditDlg>();
    QTest::newRow("SmartDlg") << maker<SmartDlg>();
    QTest::newRow("servicedlg") << maker<servicedlg>();
    QTest::newRow("EnterPasswordDlg") << maker<EnterPasswordDlg>();
    QTest::newRow("passwordDlg") << maker<passwordDlg>();
    QTest::newRow("modeDlg") << maker<modeDlg>();
    QTest::newRow("WaitSaveDlg") << maker<WaitSaveDlg>();
    QTest::newRow("aistestdlg") << maker<aistestdlg>();
    QTest::newRow("AisTargetListDlg") << maker<AisTargetListDlg>();
    QTest::newRow("AisTargetInfoDlg") << maker<AisTargetInfoDlg>();
    QTest::newRow("AisAlarmListDlg") << maker<AisAlarmListDlg>();
}

void tst_fonts::readable()
{
    QFETCH(Make, make);
    const std::unique_ptr<QWidget> window = make();
    window->show();
    verifyTexts(*window);
}

// Texts that come while a window is open may not make it smaller either.
void tst_fonts::alarms()
{
    QAis ais;
    ais.updateAlarm(255, 23, 59, 59, false, false, QString(60, QLatin1Char('W')));
    AisAlarmListDlg list(nullptr);
    list.setAis(&ais);
    list.rebuild();
    list.show();
    QVERIFY(list.findChild<QTableWidget *>()->item(0, 0));
    verifyTexts(list);
}

void tst_fonts::counters()
{
    servicedlg service(nullptr);
    service.show();
    for (uint port = 0; port < 12; ++port)
        service.slotStatusErrors(port, 4294967295, 4294967295, 4294967295, 4294967295, 4294967295);
    verifyTexts(service);
}

void tst_fonts::mode()
{
    MainWindow window;
    window.show();
    window.slotVRMode(QStringLiteral("WWWWWWWW"));
    verifyTexts(window);
}

TK7_FORM_TEST_MAIN(tst_fonts)
#include "tst_fonts.moc"
