#include "dialoguser.h"

#include "aisdialogs/aistestdlg.h"
#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/smartdlg.h"
#include "editors/sntdlg.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "service/servicedlg.h"
#include "service/waitsavedlg.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>

namespace {

constexpr int decided = 30;  // per cent of the steps in which the user has seen enough
constexpr int patience = 20; // per cent of the steps in which the user just looks

const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
const QString anything = letters + QStringLiteral("0123456789 ,*$!-");

QList<QAbstractButton *> buttonsOf(const QWidget *dialog)
{
    QList<QAbstractButton *> usable;
    const auto buttons = dialog->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->isVisible() && button->isEnabled() && button->window() == dialog)
            usable += button;
    }
    return usable;
}

QString nameOf(const QAbstractButton *button)
{
    return button->text().isEmpty() ? button->objectName()
                                    : button->text().simplified().remove(QLatin1Char('&'));
}

// The buttons that end a dialog.
QList<QAbstractButton *> endsOf(const QWidget *dialog)
{
    QList<QAbstractButton *> ends;
    const auto buttons = buttonsOf(dialog);
    for (QAbstractButton *button : buttons) {
        const QString name = nameOf(button).toLower();
        if (name == QLatin1String("ok") || name == QLatin1String("cancel"))
            ends += button;
    }
    return ends;
}

} // namespace

DialogUser::DialogUser(Hand &hand, Dice &dice, FileStore &files)
    : m_hand(hand), m_dice(dice), m_files(files), m_aisUser(hand, dice)
{
}

QString DialogUser::step(QWidget *dialog)
{
    if (auto *box = qobject_cast<QMessageBox *>(dialog))
        return answerBox(box);
    if (auto *files = qobject_cast<QFileDialog *>(dialog))
        return chooseFile(files);
    if (auto *progress = qobject_cast<QProgressDialog *>(dialog))
        return watchUpdate(progress);
    if (qobject_cast<WaitSaveDlg *>(dialog))
        return QString();
    if (auto *open = qobject_cast<servicedlg *>(dialog))
        return service(open);
    if (auto *test = qobject_cast<aistestdlg *>(dialog))
        return m_aisUser.step(test);
    if (m_dice.chance(patience))
        return QString();
    if (auto *filter = qobject_cast<FilterDlg *>(dialog))
        return editFilter(filter);
    if (auto *header = qobject_cast<HdrEditDlg *>(dialog))
        return enterText(header,
                         m_dice.chance(70) ? m_dice.text(2, letters)
                                           : m_dice.text(m_dice.below(4), anything));
    if (auto *name = qobject_cast<SntDlg *>(dialog))
        return enterText(name,
                         m_dice.chance(70) ? m_dice.text(3, letters)
                                           : m_dice.text(m_dice.below(5), anything));
    if (auto *smart = qobject_cast<SmartDlg *>(dialog))
        return chooseSmart(smart);
    if (auto *ask = qobject_cast<EnterPasswordDlg *>(dialog))
        return enterText(ask, password());
    if (auto *ask = qobject_cast<passwordDlg *>(dialog))
        return enterText(ask, password());
    if (auto *ask = qobject_cast<modeDlg *>(dialog))
        return enterText(ask, m_dice.text(m_dice.below(5), anything));
    return poke(dialog);
}

QString DialogUser::leave(QWidget *dialog)
{
    if (auto *box = qobject_cast<QMessageBox *>(dialog))
        return press(box->buttons().constLast());
    if (auto *progress = qobject_cast<QProgressDialog *>(dialog)) {
        const auto buttons = buttonsOf(progress);
        return buttons.isEmpty() ? QString() : press(buttons.constFirst());
    }
    m_hand.strike(Qt::Key_Escape);
    return QStringLiteral("Escape");
}

QString DialogUser::press(QAbstractButton *button)
{
    m_hand.click(button);
    return QStringLiteral("press \"%1\"").arg(nameOf(button));
}

QString DialogUser::pressOneOf(const QList<QAbstractButton *> &buttons)
{
    return buttons.isEmpty() ? QString() : press(m_dice.pick(buttons));
}

// Mostly yes, and mostly not at once.
QString DialogUser::answerBox(QMessageBox *box)
{
    constexpr int yes = 70;
    constexpr int disconnect = 25;
    const int choice = m_dice.below(100);
    if (choice < patience)
        return QString();
    if (choice < patience + 5) {
        m_hand.strike(Qt::Key_Escape);
        return QStringLiteral("Escape");
    }
    if (choice < patience + 10) {
        m_hand.strike(Qt::Key_Return);
        return QStringLiteral("Return");
    }
    const bool isFarewell = box->text().contains(QLatin1String("disconnected"));
    const bool isYes = m_dice.chance(isFarewell ? disconnect : yes);
    for (QAbstractButton *button : box->buttons()) {
        const auto role = box->buttonRole(button);
        const bool accepts = role == QMessageBox::AcceptRole || role == QMessageBox::YesRole;
        if (accepts == isYes)
            return press(button);
    }
    return press(box->buttons().constFirst());
}

QString DialogUser::chooseFile(QFileDialog *dialog)
{
    constexpr int thinkAgain = 15;
    auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    if (!name || m_dice.chance(thinkAgain)) {
        m_hand.strike(Qt::Key_Escape);
        return QStringLiteral("Escape");
    }
    QString path;
    if (dialog->acceptMode() == QFileDialog::AcceptSave)
        path = m_files.targetForRules(m_dice);
    else if (dialog->nameFilters().join(QLatin1Char(' ')).contains(QLatin1String("efw")))
        path = m_files.firmware(m_dice);
    else
        path = m_files.ruleFile(m_dice);
    // Not letter by letter, for the list of completions that would open.
    name->setText(path);
    m_hand.strike(Qt::Key_Return);
    return path.section(QLatin1Char('/'), -1);
}

QString DialogUser::editFilter(FilterDlg *dialog)
{
    auto *table = dialog->findChild<QTableWidget *>();
    const int choice = m_dice.below(10);
    if (choice < 4 && table->rowCount() > 0) {
        const int row = m_dice.below(table->rowCount());
        QTableWidgetItem *item = table->item(row, 0);
        table->scrollToItem(item);
        m_hand.click(table->viewport(), table->visualItemRect(item).center());
        m_hand.strike(Qt::Key_Space, QStringLiteral(" "));
        return QStringLiteral("turn row %1").arg(row);
    }
    if (choice == 4 && table->rowCount() > 0) {
        m_hand.click(
            table->viewport(),
            table->visualItemRect(table->item(m_dice.below(table->rowCount()), 1)).center());
        return QStringLiteral("choose a row");
    }
    return pressOneOf(m_dice.chance(decided) ? endsOf(dialog) : buttonsOf(dialog));
}

// Into all fields, mostly the same; then a button.
QString DialogUser::enterText(QDialog *dialog, const QString &text)
{
    constexpr int sure = 80;
    const auto fields = dialog->findChildren<QLineEdit *>();
    for (QLineEdit *field : fields) {
        m_hand.click(field);
        m_hand.selectAll();
        m_hand.type(m_dice.chance(90) ? text : m_dice.text(3, letters));
    }
    QAbstractButton *chosen = nullptr;
    const bool isSure = m_dice.chance(sure);
    for (QAbstractButton *button : buttonsOf(dialog)) {
        const bool isOk = nameOf(button).compare(QLatin1String("ok"), Qt::CaseInsensitive) == 0;
        if (!chosen || isOk == isSure)
            chosen = button;
    }
    return QStringLiteral("\"%1\", %2").arg(text, chosen ? press(chosen) : QString());
}

QString DialogUser::chooseSmart(SmartDlg *dialog)
{
    return pressOneOf(m_dice.chance(decided) ? endsOf(dialog) : buttonsOf(dialog));
}

// The password by which the router is locked, or another.
QString DialogUser::password()
{
    static const QString known[] = {QStringLiteral("Harbour1"), QStringLiteral("Harbour1"),
                                    QStringLiteral("Tidewell"), QStringLiteral("a")};
    if (m_dice.chance(70))
        return m_dice.pick(known);
    return m_dice.text(m_dice.below(25), anything);
}

QString DialogUser::service(servicedlg *dialog)
{
    constexpr int watchTheNumbers = 50;
    constexpr int aisTest = 20;
    if (m_dice.chance(watchTheNumbers))
        return QString();
    if (m_dice.chance(aisTest))
        return press(dialog->findChild<QAbstractButton *>(QStringLiteral("pushButton_AisTest")));
    return pressOneOf(buttonsOf(dialog));
}

QString DialogUser::watchUpdate(QProgressDialog *dialog)
{
    constexpr int impatient = 3;
    if (!m_dice.chance(impatient))
        return QString();
    return pressOneOf(buttonsOf(dialog));
}

QString DialogUser::poke(QWidget *dialog)
{
    constexpr int chooseARow = 30;
    constexpr int goAway = 10;
    if (m_dice.chance(goAway)) {
        m_hand.strike(Qt::Key_Escape);
        return QStringLiteral("Escape");
    }
    const auto views = dialog->findChildren<QAbstractItemView *>();
    if (!views.isEmpty() && m_dice.chance(chooseARow)) {
        QAbstractItemView *view = m_dice.pick(views);
        const int rows = view->model() ? view->model()->rowCount() : 0;
        if (view->isVisible() && rows > 0) {
            const int row = m_dice.below(rows);
            const QModelIndex index = view->model()->index(row, 0);
            view->scrollTo(index);
            m_hand.click(view->viewport(), view->visualRect(index).center());
            return QStringLiteral("choose row %1").arg(row);
        }
    }
    return pressOneOf(buttonsOf(dialog));
}

QString DialogUser::chooseFromList(QWidget *popup, const QString &wanted)
{
    constexpr int sure = 85;
    const auto *view = popup->findChild<QAbstractItemView *>();
    const int rows = view ? view->model()->rowCount() : 0;
    if (rows == 0 || m_dice.chance(10)) {
        m_hand.strike(Qt::Key_Escape);
        return QStringLiteral("Escape");
    }
    int row = m_dice.below(rows);
    for (int i = 0; i < rows && m_dice.chance(sure); ++i) {
        if (view->model()->index(i, 0).data().toString() == wanted)
            row = i;
    }
    const QModelIndex index = view->model()->index(row, 0);
    const_cast<QAbstractItemView *>(view)->scrollTo(index);
    m_hand.click(view->viewport(), view->visualRect(index).center());
    return index.data().toString();
}
