#include "mainwindow/matrixstyle.h"

namespace MatrixStyle {

const QColor selectedPort(85, 40, 245);

const QString viewedButton =
    QStringLiteral("QPushButton{background-color: rgb(255,95,0); color: white; font-size: 8pt; "
                   "border-style: inset;  border-width: 1px;}"
                   "QPushButton:pressed{background-color: rgb(255,95,0); color: white; font-size: "
                   "8pt; border-style: outset; border-width: 1px;}");

const QString restingChannelButton = QStringLiteral(
    "QPushButton{background-color: white; border-style: inset; font-size: 8pt; border-width: 1px;}"
    "QPushButton:pressed{background-color: white; border-style: outset; font-size: 8pt; "
    "border-width: 1px;}");

const QString viewedPortLabel =
    QStringLiteral("QLabel{background-color: rgb(255,95,0); font-size: 8pt; border-style: inset;  "
                   "border-width: 1px;}"
                   "QLabel:pressed{background-color: rgb(255,95,0); font-size: 8pt; border-style: "
                   "outset; border-width: 1px;}");

const QString smartSet = QStringLiteral("QPushButton{background-color: rgb(255,199,1); }"
                                        "QPushButton:pressed{background-color: rgb(255,199,1); }");
const QString smartOff = QStringLiteral("QPushButton{}"
                                        "QPushButton:pressed{}");

const QString orangeText = QStringLiteral("QLabel { color : rgb(255,95,0); }");
const QString blueText = QStringLiteral("QLabel { color : rgb(5,0,180); }");

const QString errorCount = QStringLiteral("QLabel{color: red}");
const QString noErrorCount = QStringLiteral("QLabel{color: default}");

namespace {

const QString rs422Button =
    QStringLiteral("QPushButton{background-color: rgb(5,0,180); color: white; font-size: 8pt; "
                   "border-style: inset;  border-width: 1px;}"
                   "QPushButton:pressed{background-color: rgb(5,0,180); color: white; font-size: "
                   "8pt; border-style: outset; border-width: 1px;}");
const QString rs232Button =
    QStringLiteral("QPushButton{background-color: rgb(29,177,0); color: white; font-size: 8pt; "
                   "border-style: inset;  border-width: 1px;}"
                   "QPushButton:pressed{background-color: rgb(29,177,0); color: white; font-size: "
                   "8pt; border-style: outset; border-width: 1px;}");

// The last part, green in a blue label, is deliberate.
const QString rs422Label =
    QStringLiteral("QLabel{background-color: rgb(5,0,180); color: white; font-size: 8pt; "
                   "border-style: inset;  border-width: 1px;}"
                   "QLabel:pressed{background-color: rgb(5,0,180); color: white; font-size: 8pt; "
                   "border-style: outset; border-width: 1px;}"
                   "QLabel:pressed{background-color: rgb(29,177,0); color: white; font-size: 8pt; "
                   "border-style: outset; border-width: 1px;}");
const QString rs232Label =
    QStringLiteral("QLabel{background-color: rgb(29,177,0); color: white; font-size: 8pt; "
                   "border-style: inset;  border-width: 1px;}");

} // namespace

const QString &outputButton(PortKind kind)
{
    return kind == PortKind::Rs422 ? rs422Button : rs232Button;
}

const QString &inputLabel(PortKind kind)
{
    return kind == PortKind::Rs422 ? rs422Label : rs232Label;
}

} // namespace MatrixStyle
