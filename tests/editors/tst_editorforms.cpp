#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/sentencelist.h"
#include "editors/smartdlg.h"
#include "editors/sntdlg.h"
#include "support/formcheck.h"
#include "widgets/uiscale.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

#include <memory>

/*! The forms of the five editors. Runs at 96 and at 144 dots per inch. */
class tst_editorforms : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void dialogs_data();
    void dialogs();
    void places_data();
    void places();
    void layouts_data();
    void layouts();
    void buttonBoxes_data();
    void buttonBoxes();
    void fields_data();
    void fields();
    void filterTable();
    void filterTabOrder();
    void filterFocus();
    void textIsReadOnly();
    void isShownInEnglish();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void filterColumnsFit();
};

using namespace FormCheck;

namespace {

// The list of a filter dialog outlives it.
SentenceList &longList()
{
    static SentenceList list;
    for (int slot = 0; slot < SentenceList::size; ++slot)
        list.put(slot, slot % 2 ? QStringLiteral("WW%1").arg(QChar('A' + slot)) : QString("WMW"));
    return list;
}

// A dialog with the widest that it can have to show.
std::unique_ptr<QDialog> make(const QString &name)
{
    if (name == QLatin1String("FilterDlg")) {
        auto dialog = std::make_unique<FilterDlg>(nullptr);
        dialog->setFilter(&longList(), true, 0xffffffff);
        return dialog;
    }
    if (name == QLatin1String("SntDlg")) {
        auto dialog = std::make_unique<SntDlg>();
        dialog->findChild<QLineEdit *>()->setText(QStringLiteral("WWW"));
        return dialog;
    }
    if (name == QLatin1String("DelSentenceDlg")) {
        auto dialog = std::make_unique<DelSentenceDlg>();
        dialog->setSentence(QStringLiteral("WWW"));
        dialog->setList({QStringLiteral("Output Port 11 -> input channel 11")});
        return dialog;
    }
    if (name == QLatin1String("HdrEditDlg")) {
        auto dialog = std::make_unique<HdrEditDlg>(nullptr);
        dialog->setHdr(QStringLiteral("WW"));
        return dialog;
    }
    if (name == QLatin1String("SmartDlg")) {
        auto dialog = std::make_unique<SmartDlg>(nullptr);
        dialog->setFunction(2, false);
        return dialog;
    }
    qFatal("no dialog %s", qPrintable(name));
    return nullptr;
}

struct Shown
{
    const QWidget *widget;
    QSize needed; //!< for the whole text
    QSize taken;  //!< of the widget's place; a label takes no more of it than its text
};

QList<Shown> shownBy(const QDialog &dialog)
{
    constexpr QSize buttonFrame(6, 6);
    constexpr QSize fieldFrame(8, 4);
    QList<Shown> all;
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        const QSize text = textSize(label, label->text());
        all += {label, text, QSize(text.width(), label->height())};
    }
    for (const QLineEdit *field : dialog.findChildren<QLineEdit *>())
        all += {field, textSize(field, field->text()) + fieldFrame, field->size()};
    for (const QPushButton *button : dialog.findChildren<QPushButton *>()) {
        const QSize icon(button->icon().isNull() ? 0 : button->iconSize().width(), 0);
        all += {button, textSize(button, button->text()) + icon + buttonFrame, button->size()};
    }
    for (const QRadioButton *button : dialog.findChildren<QRadioButton *>()) {
        const QSize text = textSize(button, button->text());
        all += {button, QSize(button->sizeHint().width(), text.height()), button->size()};
    }
    for (const auto *area : dialog.findChildren<QAbstractScrollArea *>()) {
        if (area->parentWidget() == &dialog)
            all += {area, QSize(), area->size()};
    }
    return all;
}

} // namespace

void tst_editorforms::initTestCase()
{
    QCOMPARE(ui_scale(), expectedScale());
}

void tst_editorforms::dialogs_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QSize>("size");

    QTest::newRow("FilterDlg") << "NMEA Filter" << QSize(260, 289);
    QTest::newRow("SntDlg") << "Sentence" << QSize(224, 77);
    QTest::newRow("DelSentenceDlg") << "NMEA Sentence" << QSize(286, 147);
    QTest::newRow("HdrEditDlg") << "NMEA Header" << QSize(209, 75);
    QTest::newRow("SmartDlg") << "SMART" << QSize(142, 235);
}

void tst_editorforms::dialogs()
{
    QFETCH(QString, title);
    QFETCH(QSize, size);
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    checkFixedDialog(*dialog, QString::fromLatin1(QTest::currentDataTag()), title, size);
    // Qt adds the system menu of its own accord; there is no button in the title bar.
    QCOMPARE(dialog->windowFlags(), QDialog(nullptr, Qt::WindowTitleHint).windowFlags());
    QVERIFY(dialog->windowFlags() & Qt::WindowTitleHint);
    QVERIFY(!(dialog->windowFlags()
              & (Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint
                 | Qt::WindowContextHelpButtonHint)));
    QCOMPARE(dialog->font().pointSize(), 8);
}

void tst_editorforms::places_data()
{
    addPlaceColumns();
    addPlace("FilterDlg", "filterTableWidget", "QTableWidget", QRect(4, 4, 131, 281));
    addPlace("FilterDlg", "groupBox", "QGroupBox", QRect(140, 4, 115, 69), "Filter type");
    addPlace("FilterDlg", "radioButton_whitelist", "QRadioButton", QRect(10, 20, 81, 20),
             "White List");
    addPlace("FilterDlg", "radioButton_blacklist", "QRadioButton", QRect(10, 40, 81, 20),
             "Black List");
    addPlace("FilterDlg", "verticalLayoutWidget", "QWidget", QRect(140, 84, 114, 186));
    addPlace("SntDlg", "label", "QLabel", QRect(10, 10, 161, 21), "Enter new NMEA sentence:");
    addPlace("SntDlg", "lineEdit", "QLineEdit", QRect(170, 10, 41, 21), "WWW");
    addPlace("SntDlg", "buttonBox", "QDialogButtonBox", QRect(30, 40, 161, 32));
    addPlace("DelSentenceDlg", "label", "QLabel", QRect(4, 4, 277, 41),
             "NMEA sentence 'WWW' is used in other filters. \n"
             "Are you sure want delete from all filters?");
    addPlace("DelSentenceDlg", "textEdit", "QTextEdit", QRect(4, 50, 279, 61));
    addPlace("DelSentenceDlg", "buttonBox", "QDialogButtonBox", QRect(62, 112, 174, 32));
    addPlace("HdrEditDlg", "label", "QLabel", QRect(10, 10, 161, 21), "Enter new NMEA Header:");
    addPlace("HdrEditDlg", "lineEdit", "QLineEdit", QRect(170, 10, 31, 21), "WW");
    addPlace("HdrEditDlg", "buttonBox_2", "QDialogButtonBox", QRect(20, 40, 174, 32));
    addPlace("SmartDlg", "groupBox", "QGroupBox", QRect(10, 10, 121, 191), "Smart Function");
    addPlace("SmartDlg", "verticalLayoutWidget", "QWidget", QRect(10, 20, 105, 161));
    addPlace("SmartDlg", "buttonBox", "QDialogButtonBox", QRect(10, 203, 121, 32));
}

void tst_editorforms::places()
{
    QFETCH(QString, dialog);
    const auto window = make(dialog);
    window->show();
    checkPlace(*window);
}

void tst_editorforms::layouts_data()
{
    QTest::addColumn<QStringList>("objects");
    QTest::addColumn<QStringList>("texts");

    QTest::newRow("FilterDlg") << QStringList(
        {"pushButton_ok", "pushButton_cancel", "pushButton_add",
         "pushButton_del"}) << QStringList({"Ok", "Cancel", "Add\nSentence", "Delete\nSentence"});
    QTest::newRow("SmartDlg") << QStringList({"radioButton_off", "radioButton_gps",
                                              "radioButton_hdt", "radioButton_depth",
                                              "radioButton_arpa", "radioButton_ais"})
                              << QStringList({"OFF", "GPS", "HEADING", "DEPTH", "ARPA", "AIS"});
}

void tst_editorforms::layouts()
{
    QFETCH(QStringList, objects);
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    dialog->show();
    const auto *layout = dialog->findChild<QVBoxLayout *>(QStringLiteral("verticalLayout"));
    QVERIFY(layout);
    QCOMPARE(layout->parentWidget()->objectName(), QStringLiteral("verticalLayoutWidget"));
    QStringList found;
    QStringList texts;
    int below = 0;
    for (int i = 0; i < layout->count(); ++i) {
        const auto *button = qobject_cast<QAbstractButton *>(layout->itemAt(i)->widget());
        QVERIFY(button);
        found += button->objectName();
        texts += button->text();
        QVERIFY2(button->y() >= below, qPrintable(button->objectName()));
        below = button->y() + button->height();
        // Scaled like everything else: of the height that the layout gives them in the design.
#ifdef Q_OS_WIN
        constexpr int designHeight = 17;
#else
        constexpr int designHeight = 19;
#endif
        QVERIFY2(button->minimumHeight() >= cut(designHeight), qPrintable(button->objectName()));
    }
    QVERIFY(below <= layout->parentWidget()->height());
    QCOMPARE(found, objects);
    QTEST(texts, "texts");
}

void tst_editorforms::buttonBoxes_data()
{
    QTest::addColumn<QString>("object");

    QTest::newRow("SntDlg") << "buttonBox";
    QTest::newRow("DelSentenceDlg") << "buttonBox";
    QTest::newRow("HdrEditDlg") << "buttonBox_2";
    QTest::newRow("SmartDlg") << "buttonBox";
}

void tst_editorforms::buttonBoxes()
{
    QFETCH(QString, object);
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    const auto *box = dialog->findChild<QDialogButtonBox *>(object);
    QVERIFY(box);
    QCOMPARE(box->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QCOMPARE(box->orientation(), Qt::Horizontal);
}

void tst_editorforms::fields_data()
{
    QTest::addColumn<int>("length");

    QTest::newRow("SntDlg") << 3;
    QTest::newRow("HdrEditDlg") << 2;
}

void tst_editorforms::fields()
{
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    const auto *field = dialog->findChild<QLineEdit *>(QStringLiteral("lineEdit"));
    QTEST(field->maxLength(), "length");
    QCOMPARE(field->inputMethodHints(), Qt::ImhUppercaseOnly | Qt::ImhLatinOnly);
}

void tst_editorforms::filterTable()
{
    const FilterDlg dialog(nullptr);
    const auto *table = dialog.findChild<QTableWidget *>(QStringLiteral("filterTableWidget"));
    QCOMPARE(table->columnCount(), 2);
    QCOMPARE(table->rowCount(), 0);
    QVERIFY(table->horizontalHeader()->isHidden());
    QVERIFY(!table->verticalHeader()->isHidden());
    QCOMPARE(table->verticalHeader()->minimumSectionSize(), 30);
    QCOMPARE(table->editTriggers(), QAbstractItemView::EditTriggers());
    QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(table->alternatingRowColors());
    QVERIFY(table->isSortingEnabled());
    QVERIFY(!table->showDropIndicator());
    QCOMPARE(table->horizontalHeader()->minimumSectionSize(), 1); // else a style can widen them
    QCOMPARE(table->columnWidth(0), cut(25));
    QCOMPARE(table->columnWidth(1), cut(60));
    QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), 1);
    QCOMPARE(table->horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);
}

void tst_editorforms::filterTabOrder()
{
    const FilterDlg dialog(nullptr);
    const QStringList order = {"pushButton_ok",        "pushButton_cancel", "pushButton_add",
                               "pushButton_del",       "filterTableWidget", "radioButton_whitelist",
                               "radioButton_blacklist"};
    QStringList found;
    const QWidget *first = dialog.findChild<QWidget *>(order.first());
    const QWidget *widget = first;
    do {
        if (order.contains(widget->objectName()))
            found += widget->objectName();
        widget = widget->nextInFocusChain();
    } while (widget != first);
    QCOMPARE(found, order);
}

void tst_editorforms::filterFocus()
{
    const auto dialog = make(QStringLiteral("FilterDlg"));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    QCOMPARE(dialog->focusWidget()->objectName(), QStringLiteral("filterTableWidget"));
}

void tst_editorforms::textIsReadOnly()
{
    const DelSentenceDlg dialog;
    QVERIFY(dialog.findChild<QTextEdit *>(QStringLiteral("textEdit"))->isReadOnly());
}

void tst_editorforms::isShownInEnglish()
{
    const FilterDlg dialog(nullptr);
    QCOMPARE(dialog.locale().language(), QLocale::English);
    QVERIFY(dialog.testAttribute(Qt::WA_SetLocale));
}

void tst_editorforms::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("dialog");

    for (const char *name : {"FilterDlg", "SntDlg", "DelSentenceDlg", "HdrEditDlg", "SmartDlg"})
        QTest::newRow(name) << name;
}

// With the widest contents: all texts are whole, and nothing lies on anything else.
void tst_editorforms::nothingIsCutOff()
{
    QFETCH(QString, dialog);
    const auto window = make(dialog);
    window->show();
    QList<QRect> taken;
    for (const Shown &shown : shownBy(*window)) {
        const QWidget *widget = shown.widget;
        const QByteArray nameBytes = widget->objectName().toLatin1();
        const char *name = nameBytes.constData();
        const QSize needed = shown.needed;
        QVERIFY2(needed.width() <= widget->width() && needed.height() <= widget->height(), name);
        QVERIFY2(isInsideParent(widget), name);

        const QRect place(widget->mapTo(window.get(), QPoint()), shown.taken);
        QVERIFY2(takePlace(taken, place), name);
    }
    for (const QGroupBox *group : window->findChildren<QGroupBox *>())
        QVERIFY(textSize(group, group->title()).width() <= group->width());
}

void tst_editorforms::filterColumnsFit()
{
    constexpr int margins = 8;
    const auto dialog = make(QStringLiteral("FilterDlg"));
    dialog->show();
    const auto *table = dialog->findChild<QTableWidget *>();
    QCOMPARE(table->rowCount(), 32);
    QVERIFY(table->columnWidth(0) + table->columnWidth(1) <= table->viewport()->width());
    QVERIFY(table->style()->pixelMetric(QStyle::PM_IndicatorWidth) + margins
            <= table->columnWidth(0));
    for (int row = 0; row < table->rowCount(); ++row) {
        const int needed = textSize(table, table->item(row, 1)->text()).width() + margins;
        QVERIFY(needed <= table->columnWidth(1));
    }
}

TK7_FORM_TEST_MAIN(tst_editorforms)
#include "tst_editorforms.moc"
