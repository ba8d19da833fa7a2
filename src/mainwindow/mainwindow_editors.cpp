#include "editors/filterdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/sentencelist.h"
#include "editors/smartdlg.h"
#include "mainwindow/mainwindow.h"
#include "model/sentencebuilders.h"

#include <QCheckBox>
#include <QPushButton>

// The editors behind a channel's row. While one is open its event loop runs: the router can still
// change the model, and the link can end. A slot therefore looks its sender up first, and send()
// looks at the connection as it is once the editor has closed.

namespace {

constexpr int filterHalf = 6; // channels of one filter sentence
constexpr int listPart = 8;   // slots of one sentence of the list of names

static_assert(SentenceList::size == FilterSlotCount, "the editor works on the whole list");

} // namespace

void MainWindow::slotFilterSetClicked()
{
    const int channel = rowOf(channel_rows, &ChannelRow::filter_set, sender());
    if (channel < 0)
        return;
    ChannelRecord &record = channelRecord(channel);
    SentenceList list = {model.filter_list, model.filter_list_mask};
    FilterDlg dialog(this);
    connect(&dialog, &FilterDlg::signal_reqest_list, this, &MainWindow::slotRequestFilterList);
    filter_dialog = &dialog;
    dialog.setFilter(&list, record.filter_type != WhiteList, record.filter_mask);

    FilterHalves changed = {};
    if (dialog.exec() == QDialog::Accepted) {
        model.filter_list = list.names;
        model.filter_list_mask = list.mask;
        record.filter_type = dialog.filterType() ? BlackList : WhiteList;
        record.filter_mask = dialog.filterMask();
        sendRule();
        changed[current_output_port][size_t(channel / filterHalf)] = true;
        clearStaleFilterBits(changed);
    }
    // Also after a cancelled dialog: the router then hears the list that it has.
    if (dialog.listChanged())
        sendFilterList();
    sendFilters(changed);
}

// A deleted sentence leaves all filters that are on. One that is off loses its mask with the next
// press of its box.
void MainWindow::clearStaleFilterBits(FilterHalves &changed)
{
    for (size_t port = 0; port < OutputPortCount; ++port) {
        for (size_t channel = 0; channel < ChannelCount; ++channel) {
            ChannelRecord &record = model.output_ports[port].channels[channel];
            if (!record.filter_enabled || !(record.filter_mask & ~model.filter_list_mask))
                continue;
            record.filter_mask &= model.filter_list_mask;
            changed[port][channel / filterHalf] = true;
        }
    }
}

void MainWindow::sendFilterList()
{
    for (int first = 0; first < FilterSlotCount; first += listPart)
        send(MakeFilterListSentence(model, first));
}

void MainWindow::sendFilters(const FilterHalves &changed)
{
    for (size_t port = 0; port < changed.size(); ++port) {
        for (size_t half = 0; half < changed[port].size(); ++half) {
            if (changed[port][half])
                send(MakeFilterSentence(model, int(port), int(half) * filterHalf, false));
        }
    }
}

void MainWindow::slotRequestFilterList(uint mask)
{
    QStringList used;
    for (int port = 0; port < OutputPortCount; ++port) {
        for (int channel = 0; channel < ChannelCount; ++channel) {
            const ChannelRecord &record =
                model.output_ports[size_t(port)].channels[size_t(channel)];
            if (record.filter_enabled && (record.filter_mask & mask))
                used += tr("Output Port %1 -> input channel %2").arg(port).arg(channel);
        }
    }
    if (filter_dialog)
        filter_dialog->setUsedList(used);
}

void MainWindow::slotFilterCheckChanged(bool state)
{
    const int channel = rowOf(channel_rows, &ChannelRow::filter, sender());
    if (channel < 0)
        return;
    // An empty black list: a filter that was just switched on lets everything pass.
    ChannelRecord &record = channelRecord(channel);
    record.filter_enabled = state;
    record.filter_type = BlackList;
    record.filter_mask = 0;
    UpdateChannelRow(quint8(channel));
    sendRule();
    send(MakeFilterSentence(model, current_output_port, channel / filterHalf * filterHalf, false));
}

void MainWindow::slotHdrCheckChanged(bool state)
{
    const int channel = rowOf(channel_rows, &ChannelRow::hdr, sender());
    if (channel < 0)
        return;
    ChannelRecord &record = channelRecord(channel);
    record.hdr_enabled = state;
    if (!state) {
        record.hdr.clear();
    } else if (!editHeader(channel)) {
        record.hdr_enabled = false;
        channel_rows[size_t(channel)].hdr->setCheckState(Qt::Unchecked);
        return;
    }
    sendHeaders();
    UpdateChannelRow(quint8(channel));
}

void MainWindow::slotHdrSetClicked()
{
    const int channel = rowOf(channel_rows, &ChannelRow::hdr_set, sender());
    if (channel >= 0 && editHeader(channel))
        sendHeaders();
}

bool MainWindow::editHeader(int channel)
{
    ChannelRecord &record = channelRecord(channel);
    HdrEditDlg dialog(this);
    dialog.setHdr(record.hdr);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    record.hdr = dialog.hdr();
    UpdateChannelRow(quint8(channel));
    return true;
}

void MainWindow::sendHeaders()
{
    send(MakeHdrSentence(model, current_output_port, false));
    sendRule();
}

void MainWindow::slotSmartClicked()
{
    const int channel = rowOf(channel_rows, &ChannelRow::smart, sender());
    if (channel >= 0 && editSmartFunction(channel))
        sendRule();
}

bool MainWindow::editSmartFunction(int channel)
{
    ChannelRecord &record = channelRecord(channel);
    SmartDlg dialog(this);
    dialog.setFunction(record.smart_function, allowsSmartAis());
    if (dialog.exec() != QDialog::Accepted)
        return false;
    record.smart_function = dialog.function();
    UpdateChannelRow(quint8(channel));
    return true;
}

// Not connected, the firmware that will get the rules is not known: everything is on offer.
bool MainWindow::allowsSmartAis() const
{
    return !connected || supports(routerVersion(), RouterFunction::SmartAis);
}
