#pragma once

#include "matrixview.h"

#include "../model/rulefilebytes.h"
#include "model/routermodel.h"
#include "model/sentencebuilders.h"
#include "support/filedialoganswer.h"

#include <QComboBox>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

const QString loadTitle = QStringLiteral("Load Rules");

inline void makeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

/*! Gives \a window the router \a model, as a download would. */
inline void fill(MainWindow &window, const RouterModel &model)
{
    for (quint8 port = 0; port < OutputPortCount; ++port) {
        const OutputPortRecord &output = model.output_ports[port];
        for (int c = 0; c < ChannelCount; ++c) {
            const ChannelRecord &channel = output.channels[std::size_t(c)];
            window.slotVRNewRule(port, c, rulesByte(channel), flagsByte(channel));
            window.slotVRNewFilterMask(port, c, channel.filter_mask);
            window.slotVRNewHdr(port, c, channel.hdr);
        }
        window.slotVRNewPortSpeed(port, output.speed);
        window.slotVRNewPortName(true, port, output.output_name);
        window.slotVRNewPortName(false, port, model.input_ports[port].input_name);
    }
    for (quint8 slot = 0; slot < FilterSlotCount; ++slot) {
        const bool isTaken = model.filter_list_mask >> slot & 1;
        window.slotVRNewFilterStr(slot, isTaken ? model.filter_list[slot] : QString());
    }
}

inline bool isPort(int input)
{
    return input < MatrixView::size;
}

/*! A channel's row as MatrixView::row() is to tell it. */
inline QString rowOf(const ChannelRecord &channel)
{
    if (!isPort(channel.main_input) && !isPort(channel.reserve_input))
        return QStringLiteral("-------\"\"");
    return QStringLiteral("F%1C%2H%3S\"%4\"%5")
        .arg(channel.filter_enabled ? QStringLiteral("+s") : QStringLiteral("-"),
             channel.crs_enabled ? QStringLiteral("+") : QString(),
             channel.hdr_enabled ? QStringLiteral("+ts") : QStringLiteral("--"), channel.hdr,
             channel.smart_function == 0 ? QString() : QStringLiteral("!"));
}

/*! The code of the frame in which the label of input port \a port is to lie. */
inline int placeOf(int port, const OutputPortRecord &shown)
{
    int place = 48 + port;
    for (int c = 0; c < MatrixView::size; ++c) {
        const ChannelRecord &channel = shown.channels[std::size_t(c)];
        if (channel.main_input == port)
            place = 16 + c;
        else if (channel.reserve_input == port)
            place = 32 + c;
    }
    return place;
}

/*! A window, its router, and a folder for rule files. */
struct RuleFileBench : WindowBench
{
    RuleFileBench() { matrix = std::make_unique<MatrixView>(window); }

    QString path(const QString &name) const { return folder.filePath(name); }

    FileDialogAnswer::Dialog saveDialog(const QString &fileName) const
    {
        return {QStringLiteral("Save rules"),
                {QStringLiteral("TK-7 data (*.vrr)")},
                QFileDialog::AcceptSave,
                fileName,
                {},
                {}};
    }

    FileDialogAnswer::Dialog loadDialog(const QString &fileName) const
    {
        return {QStringLiteral("Load rules"),
                {QStringLiteral("TK-7 data (*.vrr)"), QStringLiteral("*.*")},
                QFileDialog::AcceptOpen,
                fileName,
                {},
                {}};
    }

    /*! Presses the button and gives the answer; the boxes are for the test to expect. */
    void save(const QString &fileName)
    {
        dialogs.expect(saveDialog(fileName));
        find<QPushButton>("pushButton_SaveFile")->click();
    }

    void load(const QString &fileName)
    {
        dialogs.expect(loadDialog(fileName));
        find<QPushButton>("pushButton_LoadFile")->click();
    }

    void loadBytes(const QByteArray &bytes)
    {
        makeFile(path("rules.vrr"), bytes);
        load(path("rules.vrr"));
    }

    void expectLoaded()
    {
        boxes.expect({QStringLiteral("TK-7 Router"), QStringLiteral("Load rules complete"),
                      QMessageBox::Information});
    }

    void expectWarning(const QString &title, const QString &text)
    {
        boxes.expect({title, text, QMessageBox::Warning});
    }

    void expectReplaceQuestion(const QString &name)
    {
        boxes.expect({QStringLiteral("Save rules"),
                      QStringLiteral("%1 already exists.\nDo you want to replace it?").arg(name),
                      QMessageBox::Warning, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes});
    }

    /*! What of boxes and file dialogs was not as expected; empty if all was. */
    QString report() const { return boxes.report() + dialogs.report(); }

    /*! What on the screen differs from \a model, with output port \a port selected. */
    QString differences(const RouterModel &model, int port) const
    {
        QStringList lines;
        const auto compare = [&lines](const char *what, int number, const QString &shown,
                                      const QString &expected) {
            if (shown != expected) {
                lines += QStringLiteral("%1 %2: %3 instead of %4")
                             .arg(QLatin1String(what))
                             .arg(number)
                             .arg(shown, expected);
            }
        };
        compare("heading", port, find<QLabel>("label_cur_ch_out")->text(),
                QStringLiteral("< OUTPUT PORT %1 >").arg(port));
        const OutputPortRecord &shown = model.output_ports[std::size_t(port)];
        for (int i = 0; i < MatrixView::size; ++i) {
            const OutputPortRecord &output = model.output_ports[std::size_t(i)];
            const QString speed = QString::number(output.speed);
            const QString &name = model.input_ports[std::size_t(i)].input_name;
            const QString blanks(i > 9 ? 2 : 3, QLatin1Char(' '));
            compare("row", i, matrix->row(i), rowOf(shown.channels[std::size_t(i)]));
            compare("place of label", i, QString::number(matrix->placeOf(i)),
                    QString::number(::placeOf(i, shown)));
            compare("label", i, matrix->labels[std::size_t(i)]->text(),
                    name.isEmpty() ? QStringLiteral("PORT %1").arg(i)
                                   : QStringLiteral("%1. %2").arg(i).arg(name));
            compare("output button", i, matrix->outputButton(i)->text(),
                    output.output_name.isEmpty()
                        ? QStringLiteral("PORT") + blanks + QString::number(i)
                        : QStringLiteral("%1. %2").arg(i).arg(output.output_name));
            compare("speed", i,
                    matrix->widget<QComboBox>("comboBox_output_port_%1", i)->currentText(), speed);
        }
        return lines.join(QLatin1Char('\n'));
    }

    QTemporaryDir folder;
    FileDialogAnswer dialogs;
    std::unique_ptr<MatrixView> matrix;
};
