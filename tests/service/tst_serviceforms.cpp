#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "service/servicedlg.h"
#include "support/formcheck.h"
#include "widgets/uiscale.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <memory>

/*! The forms of the service dialogs. Runs at 96 and at 144 dots per inch. */
class tst_serviceforms : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void dialogs_data();
    void dialogs();
    void places_data();
    void places();
    void fonts();
    void table();
    void tableHeaders();
    void chipLabel();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void lockButtonFits_data();
    void lockButtonFits();
    void tableFits();
    void chipFits();
};

using namespace FormCheck;

namespace {

// A router that counts a thousand sentences a second reaches this after a day.
constexpr uint largeNumber = 88888888;
constexpr uint usualNumber = 8888;

std::unique_ptr<servicedlg> makeService()
{
    auto dialog = std::make_unique<servicedlg>(nullptr);
    dialog->setVersion(4, 0);
    dialog->setLockStatus(true, 5, true);
    QByteArray serial(16, 'W');
    dialog->slotVRSerial(&serial);
    return dialog;
}

std::unique_ptr<QDialog> make(const QString &name)
{
    if (name == QLatin1String("servicedlg"))
        return makeService();
    if (name == QLatin1String("EnterPasswordDlg"))
        return std::make_unique<EnterPasswordDlg>(nullptr);
    if (name == QLatin1String("passwordDlg"))
        return std::make_unique<passwordDlg>(nullptr);
    if (name == QLatin1String("modeDlg"))
        return std::make_unique<modeDlg>(nullptr);
    qFatal("no dialog %s", qPrintable(name));
    return nullptr;
}

} // namespace

void tst_serviceforms::initTestCase()
{
    QCOMPARE(ui_scale(), expectedScale());
}

void tst_serviceforms::dialogs_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("pointSize");

    const int usual = QApplication::font().pointSize();
    QTest::newRow("servicedlg") << "TK-7 Service" << QSize(385, 423) << 9;
    QTest::newRow("EnterPasswordDlg") << "TK-7 Unlock" << QSize(243, 90) << usual;
    QTest::newRow("passwordDlg") << "Lock Password" << QSize(443, 88) << 9;
    QTest::newRow("modeDlg") << "Router Mode" << QSize(202, 75) << 9;
}

void tst_serviceforms::dialogs()
{
    QFETCH(QString, title);
    QFETCH(QSize, size);
    const auto dialog = make(QString::fromLatin1(QTest::currentDataTag()));
    checkFixedDialog(*dialog, QString::fromLatin1(QTest::currentDataTag()), title, size);
    // A dialog as any other, without the button for help.
    QCOMPARE(dialog->windowFlags(), QDialog().windowFlags() & ~Qt::WindowContextHelpButtonHint);
    QTEST(dialog->font().pointSize(), "pointSize");
}

void tst_serviceforms::places_data()
{
    addPlaceColumns();
    const auto addButton = [&](const char *object, int y, int height, const char *text) {
        addPlace("servicedlg", object, "QPushButton", QRect(290, y, 91, height), text);
    };
    addPlace("servicedlg", "tableWidget", "QTableWidget", QRect(10, 10, 275, 385));
    addButton("pushButton_Clear", 10, 40, "Clear\nStatus");
    addButton("pushButton_AisTest", 60, 40, "AIS\nTest");
    addButton("pushButton_Fw_Update", 110, 40, "Firmware\nUpdate");
    addButton("pushButton_Lock", 160, 40, "Delete\nPassword");
    addButton("pushButton_Change_Password", 210, 40, "Change\nPassword");
    addButton("pushButton_View_Password", 260, 40, "View\nPassword");
    addButton("pushButton_Change_Mode", 310, 40, "Change\nMode");
    addButton("pushButton_Exit", 360, 37, "Exit");
    addPlace("servicedlg", "pushButton_ChipID", "QPushButton", QRect(10, 400, 61, 20), "CHIP ID:");
    addPlace("servicedlg", "label_ChipID", "QLabel", QRect(70, 400, 311, 20),
             "WWWW WWWW WWWW WWWW ");
    addPlace("EnterPasswordDlg", "label", "QLabel", QRect(50, 10, 171, 16),
             "Enter Unlock Password:");
    addPlace("EnterPasswordDlg", "lineEdit_password", "QLineEdit", QRect(10, 30, 221, 21), "");
    addPlace("EnterPasswordDlg", "pushButton_Ok", "QPushButton", QRect(10, 60, 75, 23), "Ok");
    addPlace("EnterPasswordDlg", "pushButton_Cancel", "QPushButton", QRect(155, 60, 75, 23),
             "Cancel");
    addPlace("passwordDlg", "label_lock_password", "QLabel", QRect(10, 10, 151, 31),
             "Enter Lock Password:    ");
    addPlace("passwordDlg", "lineEdit_lock_password", "QLineEdit", QRect(150, 10, 191, 27), "");
    addPlace("passwordDlg", "label_lock_password_2", "QLabel", QRect(10, 45, 151, 31),
             "Confirm Lock Password:");
    addPlace("passwordDlg", "lineEdit_confirm_password", "QLineEdit", QRect(150, 45, 191, 27), "");
    addPlace("passwordDlg", "pushButton_Ok", "QPushButton", QRect(350, 10, 71, 23), "Ok");
    addPlace("passwordDlg", "pushButton_Cancel", "QPushButton", QRect(350, 45, 71, 23), "Cancel");
    addPlace("modeDlg", "label", "QLabel", QRect(10, 10, 71, 21), "Enter Mode:");
    addPlace("modeDlg", "lineEdit_mode", "QLineEdit", QRect(90, 10, 101, 20), "");
    addPlace("modeDlg", "pushButton_Ok", "QPushButton", QRect(20, 40, 75, 23), "Ok");
    addPlace("modeDlg", "pushButton_Cancel", "QPushButton", QRect(100, 40, 75, 23), "Cancel");
}

void tst_serviceforms::places()
{
    QFETCH(QString, dialog);
    const auto window = make(dialog);
    window->show();
    checkPlace(*window);
}

void tst_serviceforms::fonts()
{
    const EnterPasswordDlg dialog(nullptr);
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label"));
    QLabel designed(label->text());
    designed.setMinimumWidth(label->minimumWidth());
    QFont font = dialog.font();
    font.setPointSize(10);
    designed.setFont(font);
    fitText(&designed); // smaller only if it wouldn't fit
    QCOMPARE(label->font().pointSizeF(), designed.font().pointSizeF());
    QCOMPARE(int(label->font().weight()), int(QFont::Normal));
}

void tst_serviceforms::table()
{
    const auto dialog = makeService();
    const auto *widget = dialog->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QCOMPARE(widget->rowCount(), 12);
    QCOMPARE(widget->columnCount(), 5);
    QCOMPARE(widget->focusPolicy(), Qt::NoFocus);
    QCOMPARE(widget->editTriggers(), QAbstractItemView::EditTriggers());
    QVERIFY(widget->alternatingRowColors());
    QCOMPARE(widget->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(widget->selectionBehavior(), QAbstractItemView::SelectRows);
    QVERIFY(!widget->wordWrap());
    QVERIFY(!widget->isCornerButtonEnabled());
    for (int row = 0; row < 12; ++row) {
        for (int column = 0; column < 5; ++column) {
            const QTableWidgetItem *item = widget->item(row, column);
            QVERIFY(item);
            QVERIFY(item->text().isEmpty());
            QCOMPARE(item->textAlignment(), int(Qt::AlignRight | Qt::AlignVCenter));
        }
    }
}

void tst_serviceforms::tableHeaders()
{
    const auto dialog = makeService();
    const auto *widget = dialog->findChild<QTableWidget *>();
    QStringList columns;
    for (int column = 0; column < widget->columnCount(); ++column)
        columns += widget->horizontalHeaderItem(column)->text();
    QCOMPARE(columns, QStringList({"print", "crs", "broken", "size", "tx_full"}));
    for (int row = 0; row < widget->rowCount(); ++row)
        QCOMPARE(widget->verticalHeaderItem(row)->text(), QString::number(row));
    for (const QHeaderView *header : {widget->horizontalHeader(), widget->verticalHeader()}) {
        QVERIFY(!header->highlightSections());
        QCOMPARE(header->sectionResizeMode(0), QHeaderView::Stretch);
    }
}

void tst_serviceforms::chipLabel()
{
    const servicedlg dialog(nullptr);
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"));
    QVERIFY(label->text().isEmpty());
    QCOMPARE(label->textInteractionFlags(),
             Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void tst_serviceforms::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("dialog");

    for (const char *name : {"servicedlg", "EnterPasswordDlg", "passwordDlg", "modeDlg"})
        QTest::newRow(name) << name;
}

// All texts are whole, and nothing lies on anything else. A label takes no more than its text.
void tst_serviceforms::nothingIsCutOff()
{
    constexpr QSize buttonFrame(6, 6);
    QFETCH(QString, dialog);
    const auto window = make(dialog);
    window->show();
    QList<QRect> taken;
    const QList<QWidget *> children =
        window->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget *widget : children) {
        const QByteArray nameBytes = widget->objectName().toLatin1();
        const char *name = nameBytes.constData();
        const QSize text = textSize(widget, widget->property("text").toString());
        QSize place = widget->size();
        int left = widget->x();
        if (qobject_cast<const QLabel *>(widget)) {
            const int letters = widget->fontMetrics()
                                    .tightBoundingRect(widget->property("text").toString())
                                    .height();
            QVERIFY2(text.width() <= widget->width() && letters <= widget->height(), name);
            const int indent = qMax(0, static_cast<const QLabel *>(widget)->indent());
            left += indent;
            place.setWidth(text.width());
        } else if (qobject_cast<const QPushButton *>(widget)) {
            const QSize needed = text + buttonFrame;
            QVERIFY2(needed.width() <= widget->width(), name);
            QVERIFY2(text.height() <= widget->height(), name);
        } else if (qobject_cast<const QLineEdit *>(widget)) {
            QVERIFY2(widget->fontMetrics().height() <= widget->height() - 2, name);
        }
        QVERIFY2(isInsideParent(widget), name);
        const QRect rect(QPoint(left, widget->y()), place);
        QVERIFY2(takePlace(taken, rect), name);
    }
}

void tst_serviceforms::lockButtonFits_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");

    QTest::newRow("LOCK") << false << 0;
    QTest::newRow("UNLOCK") << true << 0;
    QTest::newRow("Delete Password") << true << 2;
}

void tst_serviceforms::lockButtonFits()
{
    QFETCH(bool, password);
    QFETCH(int, level);
    servicedlg dialog(nullptr);
    dialog.setLockStatus(password, quint8(level), true);
    const auto *button = dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Lock"));
    QVERIFY(textSize(button, button->text()).width() + 6 <= button->minimumWidth());
}

// The table needs no scroll bars, its titles are whole, and so are numbers as they come; larger
// ones show whole as a tool tip.
void tst_serviceforms::tableFits()
{
    constexpr int textMargins = 7; // with the line between two cells
    const auto dialog = makeService();
    dialog->show();
    auto *widget = dialog->findChild<QTableWidget *>();
    dialog->slotStatusErrors(0, usualNumber, usualNumber, usualNumber, usualNumber, usualNumber);
    dialog->slotStatusErrors(1, largeNumber, largeNumber, largeNumber, largeNumber, largeNumber);
    QCOMPARE(widget->horizontalHeader()->length(), widget->viewport()->width());
    QCOMPARE(widget->verticalHeader()->length(), widget->viewport()->height());
    for (int column = 0; column < 5; ++column) {
        const QString title = widget->horizontalHeaderItem(column)->text();
        QVERIFY2(textSize(widget->horizontalHeader(), title).width() <= widget->columnWidth(column),
                 qPrintable(title));
        // Only what wouldn't fit gets a smaller font.
        QCOMPARE(widget->item(0, column)->font().pointSizeF(), 9.0);
        QVERIFY(widget->item(1, column)->font().pointSizeF() < 9.0);
        for (int row = 0; row <= 1; ++row) {
            const QTableWidgetItem *item = widget->item(row, column);
            const int width = QFontMetrics(item->font(), widget).size(0, item->text()).width();
            const bool isWhole = width + textMargins <= widget->columnWidth(column);
            QVERIFY(row == 1 || isWhole);
            QVERIFY(item->font().pointSizeF() >= 7.5);
            QVERIFY(isWhole || item->toolTip() == item->text());
        }
        QCOMPARE(widget->item(0, column)->toolTip(), QString());
    }
    QVERIFY(textSize(widget, QStringLiteral("0")).height() <= widget->rowHeight(0));
}

void tst_serviceforms::chipFits()
{
    servicedlg dialog(nullptr);
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"));
    QByteArray serial(16, char(0xdd));
    dialog.slotVRSerial(&serial);
    dialog.slotUpdateSerialView();
    QCOMPARE(label->text(), QStringLiteral("dddddddd ").repeated(4));
    QVERIFY(textSize(label, label->text()).width() <= label->minimumWidth());
}

TK7_FORM_TEST_MAIN(tst_serviceforms)
#include "tst_serviceforms.moc"
