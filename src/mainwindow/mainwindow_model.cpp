#include "mainwindow/mainwindow.h"
#include "widgets/qmcombobox.h"

#include <QLabel>

// The slots through which the router fills the model. A number that is out of range changes
// nothing. The screen follows at the end of the download.

void MainWindow::slotVRNewRule(quint8 port, int channel, quint8 rules, quint8 flags)
{
    model.setRule(port, channel, rules, flags);
}

void MainWindow::slotVRNewFilterMask(quint8 port, int channel, uint filter_mask)
{
    model.setFilterMask(port, channel, filter_mask);
}

void MainWindow::slotVRNewHdr(quint8 port, int channel, QString hdr)
{
    model.setHdr(port, channel, hdr);
}

void MainWindow::slotVRNewFilterStr(quint8 index, QString flt)
{
    model.setFilterString(index, flt);
}

void MainWindow::slotVRNewPortName(bool b_type, quint8 port, QString port_name)
{
    model.setPortName(b_type, port, port_name);
}

void MainWindow::slotVRNewPortSpeed(quint8 port, uint spd)
{
    const int index = portSpeedIndex(spd);
    if (index < 0 || port >= OutputPortCount)
        return;
    // A change of the index leads to slotPortSpeedChanged, which sends the speed back.
    output_rows[port].speed->setCurrentIndex(index);
    model.setPortSpeed(port, spd);
    input_rows[port].speed_label->setText(QString::number(spd));
}
