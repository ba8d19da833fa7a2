#include "mainwindow/mainwindow.h"
#include "model/sentencebuilders.h"
#include "widgets/dragframe.h"
#include "widgets/qmcombobox.h"
#include "widgets/qmlineedit.h"
#include "widgets/qmpushbutton.h"

#include <QEvent>
#include <QLabel>

#include <algorithm>

namespace {

constexpr int editorFontSize = 8;
constexpr int lastOneDigitPort = 9;

} // namespace

// The blanks line the numbers up in a proportional font.
QString MainWindow::OutputPortButtonText(quint8 port) const
{
    const QString &name = model.output_ports[port].output_name;
    if (!name.isEmpty())
        return QStringLiteral("%1. %2").arg(port).arg(name);
    return (port > lastOneDigitPort ? tr("PORT  %1") : tr("PORT   %1")).arg(port);
}

void MainWindow::UpdateOutputPortButtons()
{
    for (quint8 port = 0; port < OutputPortCount; ++port)
        showOutputPortText(port);
}

// An ampersand of the name is no shortcut.
void MainWindow::showOutputPortText(quint8 port)
{
    const QString text = OutputPortButtonText(port);
    output_rows[port].button->setText(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
}

void MainWindow::slotPortSpeedChanged(QString str)
{
    const int port = rowOf(output_rows, &OutputRow::speed, sender());
    if (port < 0)
        return;
    const quint32 speed = str.toUInt();
    if (speed == 0)
        return;
    model.output_ports[size_t(port)].speed = speed;
    input_rows[size_t(port)].speed_label->setText(QString::number(speed));
    send(MakeSpeedSentence(port, speed));
}

// Of the speeds: a wheel that only passes over one must not change it, it scrolls the column.
bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus()) {
        event->ignore();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

QMLineEdit *MainWindow::openNameEditor(QWidget *place, void (MainWindow::*accept)())
{
    if (name_editor)
        emit name_editor->editingFinished();
    focus_before_name = focusWidget();
    auto *editor = new QMLineEdit; // deleted by slotEditPortNameFinish
    name_editor = editor;
    editor->setMaxLength(PortNameLength);
    connect(editor, &QLineEdit::editingFinished, this, &MainWindow::slotEditPortNameFinish);
    connect(editor, &QLineEdit::returnPressed, this, accept);
    editor->setFixedSize(place->size());
    editor->setParent(place);
    return editor;
}

void MainWindow::slotInputPortEditName(DragFrame *dframe)
{
    const quint8 code = FrameCode(dframe);
    if (code == 0)
        return;
    const auto holds = [code](const InputRow &row) { return row.label_place == code; };
    const auto found = std::find_if(input_rows.begin(), input_rows.end(), holds);
    if (found == input_rows.end())
        return;
    edit_port = quint8(found - input_rows.begin());
    QMLineEdit *editor = openNameEditor(dframe, &MainWindow::slotEditPortNameOk);
    const QString &name = model.input_ports[edit_port].input_name;
    if (!name.isEmpty())
        editor->setText(name);
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
}

void MainWindow::slotOutputPortButtonRightClicked()
{
    const int port = rowOf(output_rows, &OutputRow::button, sender());
    edit_port = port < 0 ? NO_PORT : quint8(port);
    if (port < 0)
        return;
    QMLineEdit *editor =
        openNameEditor(output_rows[edit_port].button, &MainWindow::slotEditOutputPortNameOk);
    editor->setText(model.output_ports[edit_port].output_name);
    QFont font = editor->font();
    font.setPointSize(editorFontSize);
    editor->setFont(font);
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
}

void MainWindow::slotEditPortNameOk()
{
    auto *editor = qobject_cast<QLineEdit *>(sender());
    if (!editor || edit_port >= InputPortCount)
        return;
    model.input_ports[edit_port].input_name = editor->text();
    SetPortLabelText(input_rows[edit_port].port_label, edit_port, editor->text());
    editor->deleteLater();
}

void MainWindow::slotEditOutputPortNameOk()
{
    auto *editor = qobject_cast<QLineEdit *>(sender());
    if (!editor || edit_port >= OutputPortCount)
        return;
    model.output_ports[edit_port].output_name = editor->text();
    showOutputPortText(edit_port);
}

void MainWindow::slotEditPortNameFinish()
{
    auto *editor = qobject_cast<QWidget *>(sender());
    if (!editor)
        return;
    editor->releaseMouse();
    if (focusWidget() == editor) {
        editor->clearFocus();
        if (focus_before_name)
            focus_before_name->setFocus(Qt::OtherFocusReason);
    }
    editor->hide();
    editor->deleteLater();
    name_editor.clear();
}
