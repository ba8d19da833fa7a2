#include "user.h"

#include "mainwindow/mainwindow.h"
#include "widgets/qmlineedit.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QScrollArea>
#include <QTimer>

#include <algorithm>
#include <iterator>

namespace {

const QString nameLetters =
    QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 -/&<>");

} // namespace

// A port is chosen and the router connected rather sooner than later: everything else is of more
// interest then.
const User::Row User::rows[] = {
    {"end the name", 1000, true, &User::isEditingName, &User::finishName},
    {"choose port", 400, false, &User::isPortListed, &User::openPorts},
    {"choose port", 2, false, &User::isFree, &User::openPorts},
    {"rescan", 200, false, &User::isPortMissing, &User::rescan},
    {"rescan", 4, false, &User::isFree, &User::rescan},
    {"connect", 400, false, &User::canConnect, &User::connectRouter},
    {"connect", 4, false, &User::isFree, &User::connectRouter},
    {"disconnect", 4, false, &User::isConnected, &User::disconnectRouter},
    {"select output", 30, false, &User::always, &User::selectOutput},
    {"drag", 60, true, &User::always, &User::drag},
    {"return inputs", 5, true, &User::always, &User::returnInputs},
    {"name input", 8, true, &User::always, &User::nameInput},
    {"name output", 8, true, &User::always, &User::nameOutput},
    {"change speed", 12, true, &User::always, &User::changeSpeed},
    {"turn filter", 14, true, &User::always, &User::turnFilter},
    {"turn checksum test", 12, true, &User::always, &User::turnCrs},
    {"turn header", 12, true, &User::always, &User::turnHeader},
    {"edit filter", 16, true, &User::always, &User::setFilter},
    {"edit header", 8, true, &User::always, &User::setHeader},
    {"edit smart function", 12, true, &User::always, &User::setSmart},
    {"save in router", 5, false, &User::isConnected, &User::saveInRouter},
    {"save to file", 6, false, &User::always, &User::saveFile},
    {"load from file", 5, true, &User::always, &User::loadFile},
    {"view input", 12, false, &User::always, &User::viewInput},
    {"view channel", 12, false, &User::always, &User::viewChannel},
    {"pause", 5, false, &User::always, &User::pause},
    {"fold", 5, false, &User::always, &User::fold},
    {"widen", 4, false, &User::always, &User::widen},
    {"service", 25, false, &User::isConnected, &User::openService},
    {"lock", 5, false, &User::isConnected, &User::pressLock},
    {"resize", 3, false, &User::always, &User::resize},
    {"strike keys", 3, false, &User::always, &User::strikeAnyKey},
};

User::User(MainWindow &window, ScreenCheck &screen, Hand &hand, Dice &dice)
    : m_window(window), m_screen(screen), m_hand(hand), m_dice(dice)
{
}

bool User::isConnected() const
{
    return m_window.isConnected();
}

bool User::isFree() const
{
    const auto *button = m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    return !m_window.isConnected() && button->isEnabled();
}

bool User::canConnect() const
{
    return isFree() && !m_port.isEmpty() && ports()->currentText() == m_port;
}

bool User::isPortListed() const
{
    return isFree() && ports()->currentText() != m_port && ports()->findText(m_port) >= 0;
}

bool User::isPortMissing() const
{
    return !m_window.isConnected() && !m_port.isEmpty() && ports()->findText(m_port) < 0;
}

QComboBox *User::ports() const
{
    return m_window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
}

QMLineEdit *User::nameEditor() const
{
    const auto editors = m_window.findChildren<QMLineEdit *>();
    const auto shown =
        std::find_if(editors.begin(), editors.end(), [](auto *e) { return e->isVisible(); });
    return shown == editors.end() ? nullptr : *shown;
}

User::Deed User::step(const QString &port)
{
    m_port = port;
    int sum = 0;
    for (const Row &row : rows)
        sum += (this->*row.can)() ? row.weight : 0;
    int place = m_dice.below(sum);
    for (const Row &row : rows) {
        if (!(this->*row.can)())
            continue;
        place -= row.weight;
        if (place < 0)
            return {QString::fromLatin1(row.name), (this->*row.run)(), row.changesModel};
    }
    return {};
}

// What lies outside the window of a scroll area is scrolled into it.
void User::show(QWidget *widget)
{
    for (QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(parent))
            area->ensureWidgetVisible(widget);
    }
}

QString User::click(const char *name)
{
    auto *widget = m_window.findChild<QWidget *>(QString::fromLatin1(name));
    if (!widget)
        qFatal("no widget %s", name);
    show(widget);
    m_hand.click(widget);
    return QString();
}

// One of the twelve widgets of this name, mostly one that is enabled.
QString User::clickOne(const char *pattern)
{
    constexpr int tries = 12;
    int number = m_dice.below(ChannelCount);
    for (int i = 0; i < tries; ++i) {
        if (m_screen.matrix().widget<QWidget>(pattern, number)->isEnabled())
            break;
        number = (number + 1) % ChannelCount;
    }
    auto *widget = m_screen.matrix().widget<QWidget>(pattern, number);
    show(widget);
    m_hand.click(widget);
    return QString::number(number);
}

User::Deed User::pressConnect()
{
    m_hand.click(m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect")));
    return {QStringLiteral("connect"), QString(), false};
}

User::Deed User::stepInSearch()
{
    constexpr int patience = 80; // per cent: the search has its time, too
    if (m_dice.chance(patience))
        return {};
    const auto deed = [](const char *text) {
        return Deed{QStringLiteral("in the search"), QString::fromLatin1(text), false};
    };
    QWidget *dialog = QApplication::activePopupWidget();
    auto *connectButton = m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    auto *rescanButton =
        m_window.findChild<QPushButton *>(QStringLiteral("pushButton_rescan_ports"));
    switch (m_dice.below(6)) {
    case 0:
        m_hand.strike(Qt::Key_Escape);
        return deed("Escape");
    case 1:
        m_hand.click(m_window.findChild<QWidget *>(QStringLiteral("label_input_ports")));
        return deed("press beside");
    case 2:
        m_hand.doubleClick(connectButton, connectButton->rect().center());
        return deed("double click on Connect");
    case 3:
        m_hand.click(rescanButton);
        m_hand.click(connectButton);
        return deed("rescan and connect");
    case 4:
        // As a program for the blind does it, which asks no window system.
        QTimer::singleShot(0, rescanButton, [rescanButton, connectButton] {
            rescanButton->click();
            connectButton->click();
        });
        return deed("rescan and connect by another program");
    default:
        QTimer::singleShot(0, dialog, [dialog] { dialog->close(); });
        return deed("close");
    }
}

QString User::connectRouter()
{
    constexpr int impatience = 30;
    auto *button = m_window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    if (!m_dice.chance(impatience))
        return click("pushButton_connect");
    m_hand.doubleClick(button, button->rect().center());
    return QStringLiteral("by a double click");
}

QString User::disconnectRouter()
{
    return click("pushButton_connect");
}

QString User::openPorts()
{
    return click("comboBox_connect_port");
}

QString User::rescan()
{
    return click("pushButton_rescan_ports");
}

QString User::selectOutput()
{
    const int port = m_dice.below(OutputPortCount);
    QWidget *button = m_screen.matrix().outputButton(port);
    show(button);
    m_hand.click(button);
    return QString::number(port);
}

// A frame of any column; one in which a label lies if asked for.
DragFrame *User::anyFrame(bool withLabel)
{
    constexpr int tries = 50;
    const MatrixView &matrix = m_screen.matrix();
    DragFrame *frame = nullptr;
    for (int i = 0; i < tries; ++i) {
        const auto &column = m_dice.pick(std::array{&matrix.main, &matrix.reserve, &matrix.homes});
        frame = m_dice.pick(*column);
        const QWidget *label = frame->childAt(frame->rect().center());
        if (!withLabel || (label && label->isEnabled()))
            break;
    }
    return frame;
}

// Mostly what makes sense: a label, and to a cell.
QString User::drag()
{
    constexpr int sensible = 90;
    constexpr int atOnce = 70;
    const MatrixView &matrix = m_screen.matrix();
    DragFrame *source = anyFrame(m_dice.chance(sensible));
    m_target = m_dice.chance(sensible)
        ? m_dice.pick(*m_dice.pick(std::array{&matrix.main, &matrix.main, &matrix.reserve}))
        : anyFrame(false);
    show(m_target);
    show(source);
    m_hand.lift(source);
    m_isDragging = true;
    QString text =
        QStringLiteral("%1 to %2").arg(matrix.codeOf(source)).arg(matrix.codeOf(m_target));
    if (m_dice.chance(atOnce))
        goOnDragging();
    return text;
}

User::Deed User::beginDrag()
{
    DragFrame *source = anyFrame(true);
    m_target = anyFrame(false);
    show(source);
    m_hand.lift(source);
    m_hand.carry(m_target);
    m_isDragging = true;
    return {QStringLiteral("hold a label"), QString::number(m_screen.matrix().codeOf(source)),
            true};
}

User::Deed User::goOnDragging()
{
    constexpr int thinkAgain = 10;
    m_isDragging = false;
    Deed deed{QStringLiteral("drop"), QString(), true};
    if (!m_target)
        return deed;
    m_hand.carry(m_target);
    if (m_dice.chance(thinkAgain)) {
        m_hand.strike(Qt::Key_Escape);
        deed.text = QStringLiteral("Escape");
    }
    m_hand.letGo(m_target);
    return deed;
}

QString User::returnInputs()
{
    return click("pushButton_return_input");
}

QString User::nameInput()
{
    DragFrame *frame = anyFrame(true);
    show(frame);
    m_hand.click(frame, Qt::RightButton);
    return QString::number(m_screen.matrix().codeOf(frame));
}

QString User::nameOutput()
{
    const int port = m_dice.below(OutputPortCount);
    QWidget *button = m_screen.matrix().outputButton(port);
    show(button);
    m_hand.click(button, Qt::RightButton);
    return QString::number(port);
}

QString User::finishName()
{
    const QString name = m_dice.text(m_dice.below(10), nameLetters);
    m_hand.selectAll();
    m_hand.type(name);
    const int choice = m_dice.below(10);
    if (choice < 7) {
        m_hand.strike(Qt::Key_Return, QStringLiteral("\r"));
        return QStringLiteral("\"%1\"").arg(name);
    }
    if (choice < 9) {
        m_hand.strike(Qt::Key_Escape);
        return QStringLiteral("\"%1\", Escape").arg(name);
    }
    m_hand.click(m_window.findChild<QWidget *>(QStringLiteral("label_input_ports")));
    return QStringLiteral("\"%1\", and a click elsewhere").arg(name);
}

QString User::changeSpeed()
{
    return clickOne("comboBox_output_port_%1");
}

QString User::turnFilter()
{
    return clickOne("checkBox_channel_%1_filter");
}

QString User::turnCrs()
{
    return clickOne("checkBox_channel_%1_crs");
}

QString User::turnHeader()
{
    return clickOne("checkBox_channel_%1_hdr");
}

QString User::setFilter()
{
    return clickOne("pushButton_channel_%1_filter_set");
}

QString User::setHeader()
{
    return clickOne("pushButton_channel_%1_hdr_set");
}

QString User::setSmart()
{
    return clickOne("pushButton_channel_%1_smart");
}

QString User::saveInRouter()
{
    return click("pushButton_SaveEEPROM");
}

QString User::saveFile()
{
    return click("pushButton_SaveFile");
}

QString User::loadFile()
{
    return click("pushButton_LoadFile");
}

QString User::viewInput()
{
    DragFrame *frame = anyFrame(true);
    show(frame);
    m_hand.click(frame);
    return QString::number(m_screen.matrix().codeOf(frame));
}

QString User::viewChannel()
{
    return clickOne("pushButton_channel_%1");
}

QString User::pause()
{
    return click("pushButton_play");
}

QString User::fold()
{
    for (const char *name : {"pushButton_view_small", "pushButton_view_big"}) {
        auto *button = m_window.findChild<QWidget *>(QString::fromLatin1(name));
        if (button->isVisible()) {
            m_hand.click(button);
            return QString::fromLatin1(name);
        }
    }
    return QString();
}

QString User::widen()
{
    return click("pushButton_view_speed");
}

QString User::openService()
{
    return click("pushButton_Service");
}

QString User::pressLock()
{
    return click("label_lock");
}

QString User::resize()
{
    const int height = m_dice.between(200, 900);
    m_window.resize(m_window.width(), height);
    return QString::number(m_window.height());
}

// Keys that belong to nobody.
QString User::strikeAnyKey()
{
    for (const int key : {Qt::Key_Tab, Qt::Key_F1, Qt::Key_Escape, Qt::Key_Insert})
        m_hand.strike(key);
    return QString();
}
