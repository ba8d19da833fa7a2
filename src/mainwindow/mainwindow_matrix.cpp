#include "mainwindow/mainwindow.h"
#include "mainwindow/matrixstyle.h"
#include "model/sentencebuilders.h"
#include "model/viewcode.h"
#include "platform/pointer.h"
#include "ui_mainwindow.h"
#include "widgets/dragframe.h"
#include "widgets/qmlineedit.h"
#include "widgets/qmpushbutton.h"

#include <QDrag>
#include <QLabel>

#include <algorithm>

namespace {

// Places in design pixels.
constexpr int rowPitch = 40;
constexpr QPoint firstMainFrame(45, 5);
constexpr QPoint firstReserveFrame(151, 5);
constexpr QPoint firstInputFrame(2, 2);
constexpr QPoint firstSpeedLabel(98, 2);
constexpr QPoint labelPosition(4, 4);
constexpr QSize labelSize(88, 24);
constexpr QSize speedLabelSize(47, 31);
constexpr int labelFontSize = 8;

constexpr int portLabelStyle = int(QFrame::WinPanel) | int(QFrame::Raised);
constexpr int speedLabelStyle = int(QFrame::Box) | int(QFrame::Raised);

// Frame codes: what kind of frame in the high nibble, its number in the low one; 0 is no frame.
enum FrameKind { NoFrame = 0, MainFrame = 1, ReserveFrame = 2, InputFrame = 3 };

constexpr quint8 frameCode(FrameKind kind, int number)
{
    return quint8(kind << 4 | number);
}

constexpr FrameKind frameKind(quint8 code)
{
    return FrameKind(code >> 4);
}

constexpr quint8 frameNumber(quint8 code)
{
    return code & 0x0f;
}

constexpr bool isCell(FrameKind kind)
{
    return kind == MainFrame || kind == ReserveFrame;
}

quint8 &inputOf(ChannelRecord &record, FrameKind kind)
{
    return kind == MainFrame ? record.main_input : record.reserve_input;
}

void setFontSize(QWidget *widget, int pointSize)
{
    QFont font = widget->font();
    font.setPointSize(pointSize);
    widget->setFont(font);
}

void setBackground(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(widget->backgroundRole(), color);
    widget->setPalette(palette);
}

// Setting a sheet costs a style computation even when it is the one that is set.
void setSheet(QWidget *widget, const QString &sheet)
{
    if (widget->styleSheet() != sheet)
        widget->setStyleSheet(sheet);
}

} // namespace

void MainWindow::makeMatrix()
{
    unselected_color =
        output_rows[0].frame->palette().color(output_rows[0].frame->backgroundRole());
    for (int i = 0; i < ChannelCount; ++i) {
        const QPoint down(0, rowPitch * i);
        main_frames[size_t(i)] =
            makeDragFrame(ui->frame_input_channels_tabl, firstMainFrame + down);
        reserve_frames[size_t(i)] =
            makeDragFrame(ui->frame_input_channels_tabl, firstReserveFrame + down);
    }
    for (int i = 0; i < InputPortCount; ++i) {
        const QPoint down(0, rowPitch * i);
        DragFrame *home = makeDragFrame(ui->frame_input_ports, firstInputFrame + down);
        input_frames[size_t(i)] = home;

        InputRow &row = input_rows[size_t(i)];
        row.placeholder_label = new QLabel(tr(" PORT %1").arg(i), home);
        row.placeholder_label->setGeometry(QRect(labelPosition, labelSize));
        row.placeholder_label->setEnabled(false);
        setFontSize(row.placeholder_label, labelFontSize);

        row.speed_label =
            new QLabel(QString::number(model.output_ports[size_t(i)].speed), ui->frame_input_ports);
        row.speed_label->setGeometry(QRect(firstSpeedLabel + down, speedLabelSize));
        row.speed_label->setFrameStyle(speedLabelStyle);
        row.speed_label->setMidLineWidth(1);
        row.speed_label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        row.speed_label->setEnabled(false);
        row.speed_label->hide();
        setFontSize(row.speed_label, labelFontSize);
    }

    RefreshInputLabels();
    SetOutputPortColor(current_output_port, true);
    for (QFrame *bar :
         {ui->frame_color_left, ui->frame_color_up, ui->frame_color_down, ui->frame_color_right})
        setBackground(bar, MatrixStyle::selectedPort);
    SetViewColors(view_code);
    updateAllChannelRows();
}

DragFrame *MainWindow::makeDragFrame(QWidget *parent, QPoint position)
{
    auto *frame = new DragFrame(parent);
    frame->move(position);
    connect(frame, &DragFrame::signalReleaseEvent, this, &MainWindow::slotReleaseEvent);
    connect(frame, &DragFrame::signalPressEvent, this, &MainWindow::slotPressEvent);
    connect(frame, &DragFrame::signalEnterEvent, this, &MainWindow::slotEnterEvent);
    connect(frame, &DragFrame::signalDropEvent, this, &MainWindow::slotDropEvent);
    connect(frame, &DragFrame::signalInputPortEditName, this, &MainWindow::slotInputPortEditName);
    return frame;
}

quint8 MainWindow::FrameCode(const DragFrame *frame) const
{
    for (int i = 0; i < ChannelCount; ++i) {
        if (main_frames[size_t(i)] == frame)
            return frameCode(MainFrame, i);
        if (reserve_frames[size_t(i)] == frame)
            return frameCode(ReserveFrame, i);
        if (input_frames[size_t(i)] == frame)
            return frameCode(InputFrame, i);
    }
    return 0;
}

ChannelRecord &MainWindow::channelRecord(int channel)
{
    return model.output_ports[current_output_port].channels[size_t(channel)];
}

// Of what opens over the window the first sign is that it blocks it. A drag would keep the pointer
// for itself, and what has been pressed would wait for a release that goes elsewhere.
bool MainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked)
        letGoOfMouse();
    return QMainWindow::event(event);
}

void MainWindow::letGoOfMouse()
{
    QDrag::cancel();
    platform::takePointerFromDrag();
    if (pressed_frame)
        pressed_frame->letGo();
    if (name_editor)
        emit name_editor->editingFinished();
}

void MainWindow::slotPressEvent(DragFrame *dframe)
{
    pressed_frame = dframe;
}

void MainWindow::slotEnterEvent(DragFrame *dframe)
{
    const quint8 target = FrameCode(dframe);
    const FrameKind from = frameKind(FrameCode(pressed_frame));
    const FrameKind to = frameKind(target);

    bool accept = from != NoFrame && to != NoFrame;
    if (from == InputFrame && to == InputFrame)
        accept = false;
    if (accept && isCell(to)) {
        accept = current_output_port != NO_PORT
            && !isInputPort(inputOf(channelRecord(frameNumber(target)), to));
    }
    dframe->setAcceptEnter(accept);
}

// Takes the port out of the frame from which it is dragged.
bool MainWindow::takeDraggedPort(quint8 source, quint8 &port)
{
    switch (frameKind(source)) {
    case MainFrame:
    case ReserveFrame: {
        quint8 &input = inputOf(channelRecord(frameNumber(source)), frameKind(source));
        port = input;
        input = NO_PORT;
        return true;
    }
    case InputFrame:
        port = frameNumber(source);
        return true;
    default:
        return false;
    }
}

void MainWindow::slotDropEvent(DragFrame *dframe)
{
    const quint8 source = FrameCode(pressed_frame);
    quint8 target = FrameCode(dframe);
    quint8 port = NO_PORT;
    dframe->setAcceptDrop(false);
    if (!takeDraggedPort(source, port))
        return;

    const FrameKind to = frameKind(target);
    if (to == NoFrame)
        return;
    if (isCell(to))
        inputOf(channelRecord(frameNumber(target)), to) = port;
    else
        target = frameCode(InputFrame, port); // a label goes home, wherever it was dropped
    PlacePortLabel(port, target);

    if (isCell(frameKind(source))) {
        const quint8 channel = frameNumber(source);
        if (isEmpty(channelRecord(channel)))
            clearChannelOptions(channelRecord(channel));
        UpdateChannelRow(channel);
    }
    UpdateChannelRow(frameNumber(target));
    dframe->setAcceptDrop(true);
    sendRule();
}

void MainWindow::slotReleaseEvent(DragFrame *dframe)
{
    if (!connected)
        return;
    const quint8 code = FrameCode(dframe);
    const FrameKind kind = frameKind(code);
    if (kind == NoFrame)
        return;
    const quint8 port =
        isCell(kind) ? inputOf(channelRecord(frameNumber(code)), kind) : frameNumber(code);
    if (!isInputPort(port) || (kind == InputFrame && isPortShown(port)))
        return;
    // The new code comes back from the router.
    SetViewColors(view_code);
    send(MakeViewSentence(NO_PORT, port));
}

bool MainWindow::isPortShown(quint8 port) const
{
    const auto &channels = model.output_ports[current_output_port].channels;
    return std::any_of(channels.begin(), channels.end(), [port](const ChannelRecord &record) {
        return record.main_input == port || record.reserve_input == port;
    });
}

void MainWindow::slotOutputPortButttonClicked()
{
    const int port = rowOf(output_rows, &OutputRow::button, sender());
    if (port < 0)
        return;
    if (current_output_port < OutputPortCount)
        SetOutputPortColor(current_output_port, false);
    SetOutputPortColor(quint8(port), true);
    current_output_port = quint8(port);
    RefreshInputLabels();
    updateAllChannelRows();
    send(MakeViewSentence(port, NO_PORT));
}

void MainWindow::slotChannelButtonClicked()
{
    const int channel = rowOf(channel_rows, &ChannelRow::view, sender());
    if (channel >= 0)
        send(MakeViewSentence(current_output_port, channel));
}

void MainWindow::SetOutputPortColor(quint8 port, bool selected)
{
    if (port >= OutputPortCount)
        return;
    setBackground(output_rows[port].frame, selected ? MatrixStyle::selectedPort : unselected_color);
    if (selected)
        ui->label_cur_ch_out->setText(tr("< OUTPUT PORT %1 >").arg(port));
}

void MainWindow::SetViewColors(quint8 code)
{
    const ViewCode view(code);
    for (int i = 0; i < OutputPortCount; ++i) {
        setSheet(output_rows[size_t(i)].button,
                 view == ViewCode::output(i) ? MatrixStyle::viewedButton
                                             : MatrixStyle::outputButton(outputPortKind(i)));
    }
    // Whichever output port the code names.
    const quint8 channel = code >> 4 < NO_PORT ? code & 0x0f : NO_PORT;
    for (int i = 0; i < ChannelCount; ++i) {
        setSheet(channel_rows[size_t(i)].view,
                 channel == i ? MatrixStyle::viewedButton : MatrixStyle::restingChannelButton);
    }
    for (int i = 0; i < InputPortCount; ++i) {
        setSheet(input_rows[size_t(i)].port_label,
                 view == ViewCode::input(i) ? MatrixStyle::viewedPortLabel
                                            : MatrixStyle::inputLabel(inputPortKind(i)));
    }
}

void MainWindow::PlacePortLabel(quint8 port, quint8 code)
{
    if (port >= InputPortCount)
        return;
    DragFrame *frame = nullptr;
    switch (frameKind(code)) {
    case MainFrame:
        frame = main_frames[frameNumber(code)];
        break;
    case ReserveFrame:
        frame = reserve_frames[frameNumber(code)];
        break;
    case InputFrame:
        frame = input_frames[port];
        break;
    default:
        return;
    }

    InputRow &row = input_rows[port];
    const bool isNew = !row.port_label;
    if (isNew)
        row.port_label = new QLabel(frame);
    QLabel *label = row.port_label;
    label->setParent(frame);
    if (label->isVisible())
        label->hide();
    if (isNew) {
        label->resize(labelSize);
        label->move(labelPosition);
        label->setLineWidth(1);
        label->setMidLineWidth(1);
        label->setFrameStyle(portLabelStyle);
    }
    SetPortLabelText(label, port, model.input_ports[port].input_name);
    setFontSize(label, labelFontSize);
    label->setEnabled(true);
    label->show();
    row.label_place = code;
}

void MainWindow::SetPortLabelText(QLabel *label, quint8 port, const QString &name)
{
    const QString text =
        name.isEmpty() ? tr("PORT %1").arg(port) : QStringLiteral("%1. %2").arg(port).arg(name);
    label->setText(text);
    input_rows[port].placeholder_label->setText(QLatin1Char(' ') + text);
}

// A port has one label: of several channels that name it the last one shows it.
void MainWindow::RefreshInputLabels()
{
    for (quint8 port = 0; port < InputPortCount; ++port) {
        quint8 place = frameCode(InputFrame, port);
        for (quint8 channel = 0; channel < ChannelCount; ++channel) {
            const ChannelRecord &record = channelRecord(channel);
            if (record.main_input == port)
                place = frameCode(MainFrame, channel);
            else if (record.reserve_input == port)
                place = frameCode(ReserveFrame, channel);
        }
        PlacePortLabel(port, place);
    }
}

// Shows a model that came as a whole, by a download or from a file.
void MainWindow::refreshMatrix()
{
    if (current_output_port < OutputPortCount)
        SetOutputPortColor(current_output_port, true);
    RefreshInputLabels();
    UpdateOutputPortButtons();
    updateAllChannelRows();
}

void MainWindow::updateAllChannelRows()
{
    for (quint8 channel = 0; channel < ChannelCount; ++channel)
        UpdateChannelRow(channel);
}

void MainWindow::UpdateChannelRow(quint8 channel)
{
    if (channel >= ChannelCount)
        return;
    const ChannelRow &row = channel_rows[channel];
    const ChannelRecord &record = channelRecord(channel);
    const bool inUse = !isEmpty(record);
    const bool hasFilter = inUse && record.filter_enabled;
    const bool hasHeader = inUse && record.hdr_enabled;

    row.filter->setEnabled(inUse);
    row.filter->setChecked(hasFilter);
    row.filter_set->setEnabled(hasFilter);
    row.crs->setEnabled(inUse);
    row.crs->setChecked(inUse && record.crs_enabled);
    row.hdr->setEnabled(inUse);
    row.hdr->setChecked(hasHeader);
    row.hdr_set->setEnabled(hasHeader);
    row.hdr_text->setEnabled(hasHeader);
    row.hdr_text->setText(hasHeader ? record.hdr : QString());
    row.smart->setEnabled(inUse);
    SetSmartButtonColor(channel, inUse);
}

void MainWindow::SetSmartButtonColor(quint8 channel, bool b_enable)
{
    if (channel >= ChannelCount)
        return;
    const bool isSet = b_enable && channelRecord(channel).smart_function != 0;
    setSheet(channel_rows[channel].smart, isSet ? MatrixStyle::smartSet : MatrixStyle::smartOff);
}

void MainWindow::slotCrsCheckChanged(bool state)
{
    const int channel = rowOf(channel_rows, &ChannelRow::crs, sender());
    if (channel < 0)
        return;
    channelRecord(channel).crs_enabled = state;
    UpdateChannelRow(quint8(channel));
    sendRule();
}

void MainWindow::slotReturnInputPorts()
{
    for (quint8 channel = 0; channel < ChannelCount; ++channel) {
        ChannelRecord &record = channelRecord(channel);
        record.main_input = NO_PORT;
        record.reserve_input = NO_PORT;
        clearChannelOptions(record);
        UpdateChannelRow(channel);
    }
    RefreshInputLabels();
    sendRule();
}
