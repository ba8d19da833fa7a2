#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/sentencelist.h"
#include "editors/smartdlg.h"
#include "editors/sntdlg.h"
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

private:
    int cut(int length) const { return int(length * m_scale); }
    QSize cut(QSize size) const { return {cut(size.width()), cut(size.height())}; }
    QRect cut(const QRect &rect) const
    {
        return {QPoint(cut(rect.x()), cut(rect.y())), cut(rect.size())};
    }

    double m_scale = 1;
};

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

QSize textSize(const QWidget *widget, const QString &text)
{
    return widget->fontMetrics().size(0, text);
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
    // CTest runs this program once for each resolution.
    m_scale = qEnvironmentVariable("TK7_EXPECTED_SCALE", QStringLiteral("1")).toDouble();
    QCOMPARE(ui_scale(), m_scale);
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
    QFETCH(QSize, size);
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(dialog->objectName(), QString::fromLatin1(QTest::currentDataTag()));
    QTEST(dialog->windowTitle(), "title");
    // Qt adds the system menu of its own accord; there is no button in the title bar.
    QCOMPARE(dialog->windowFlags(), QDialog(nullptr, Qt::WindowTitleHint).windowFlags());
    QVERIFY(dialog->windowFlags() & Qt::WindowTitleHint);
    QVERIFY(!(dialog->windowFlags()
              & (Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint
                 | Qt::WindowContextHelpButtonHint)));
    QCOMPARE(dialog->font().pointSize(), 8);
    QCOMPARE(dialog->size(), cut(size));
    QCOMPARE(dialog->minimumSize(), cut(size));
    QCOMPARE(dialog->maximumSize(), cut(size));
}

void tst_editorforms::places_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("text");

    const auto add = [](const char *dialog, const char *object, const char *type, QRect place,
                        const char *text = nullptr) {
        QTest::addRow("%s, %s", dialog, object) << dialog << object << type << place << text;
    };
    add("FilterDlg", "filterTableWidget", "QTableWidget", QRect(4, 4, 131, 281));
    add("FilterDlg", "groupBox", "QGroupBox", QRect(140, 4, 115, 69), "Filter type");
    add("FilterDlg", "radioButton_whitelist", "QRadioButton", QRect(10, 20, 81, 20), "White List");
    add("FilterDlg", "radioButton_blacklist", "QRadioButton", QRect(10, 40, 81, 20), "Black List");
    add("FilterDlg", "verticalLayoutWidget", "QWidget", QRect(140, 84, 114, 186));
    add("SntDlg", "label", "QLabel", QRect(10, 10, 161, 21), "Enter new NMEA sentence:");
    add("SntDlg", "lineEdit", "QLineEdit", QRect(170, 10, 41, 21), "WWW");
    add("SntDlg", "buttonBox", "QDialogButtonBox", QRect(30, 40, 161, 32));
    add("DelSentenceDlg", "label", "QLabel", QRect(4, 4, 277, 41),
        "NMEA sentence 'WWW' is used in other filters. \n"
        "Are you sure want delete from all filters?");
    add("DelSentenceDlg", "textEdit", "QTextEdit", QRect(4, 50, 279, 61));
    add("DelSentenceDlg", "buttonBox", "QDialogButtonBox", QRect(62, 112, 174, 32));
    add("HdrEditDlg", "label", "QLabel", QRect(10, 10, 161, 21), "Enter new NMEA Header:");
    add("HdrEditDlg", "lineEdit", "QLineEdit", QRect(170, 10, 31, 21), "WW");
    add("HdrEditDlg", "buttonBox_2", "QDialogButtonBox", QRect(20, 40, 174, 32));
    add("SmartDlg", "groupBox", "QGroupBox", QRect(10, 10, 121, 191), "Smart Function");
    add("SmartDlg", "verticalLayoutWidget", "QWidget", QRect(10, 20, 105, 161));
    add("SmartDlg", "buttonBox", "QDialogButtonBox", QRect(10, 203, 121, 32));
}

void tst_editorforms::places()
{
    QFETCH(QString, dialog);
    QFETCH(QString, object);
    QFETCH(QRect, place);
    QFETCH(QString, text);
    const auto window = make(dialog);
    window->show();
    const auto *widget = window->findChild<QWidget *>(object);
    QVERIFY(widget);
    QTEST(QString::fromLatin1(widget->metaObject()->className()), "type");
    QCOMPARE(widget->geometry(), cut(place));
    QCOMPARE(widget->minimumSize(), cut(place.size()));
    for (const char *property : {"text", "title"}) {
        if (widget->property(property).isValid())
            QCOMPARE(widget->property(property).toString(), text);
    }
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
        constexpr int designHeight = 19;
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
        QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()), name);

        const QRect place(widget->mapTo(window.get(), QPoint()), shown.taken);
        for (const QRect &other : qAsConst(taken))
            QVERIFY2(!other.intersects(place), name);
        taken += place;
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

// QTEST_MAIN would draw the texts at 96 dots per inch on any screen.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    tst_editorforms test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_editorforms.moc"
