#pragma once

#include <QColor>
#include <QString>

/*!
 * The style sheets and the colour of the matrix, to the letter. The program has them too; they
 * stand here again because a test that read them from there would agree with any change.
 */
namespace MatrixLooks {

inline const QString viewedButton = QStringLiteral(
    "QPushButton{background-color: rgb(255,95,0); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(255,95,0); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
inline const QString restingChannel = QStringLiteral(
    "QPushButton{background-color: white; border-style: inset; font-size: 8pt; border-width: 1px;}"
    "QPushButton:pressed{background-color: white; border-style: outset; font-size: 8pt; "
    "border-width: 1px;}");
inline const QString rs422Output = QStringLiteral(
    "QPushButton{background-color: rgb(5,0,180); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(5,0,180); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
inline const QString rs232Output = QStringLiteral(
    "QPushButton{background-color: rgb(29,177,0); color: white; font-size: 8pt; border-style: "
    "inset;  border-width: 1px;}QPushButton:pressed{background-color: rgb(29,177,0); color: white; "
    "font-size: 8pt; border-style: outset; border-width: 1px;}");
inline const QString viewedInput = QStringLiteral(
    "QLabel{background-color: rgb(255,95,0); font-size: 8pt; border-style: inset;  border-width: "
    "1px;}QLabel:pressed{background-color: rgb(255,95,0); font-size: 8pt; border-style: outset; "
    "border-width: 1px;}");
inline const QString rs422Input = QStringLiteral(
    "QLabel{background-color: rgb(5,0,180); color: white; font-size: 8pt; border-style: inset;  "
    "border-width: 1px;}QLabel:pressed{background-color: rgb(5,0,180); color: white; font-size: "
    "8pt; border-style: outset; border-width: 1px;}QLabel:pressed{background-color: rgb(29,177,0); "
    "color: white; font-size: 8pt; border-style: outset; border-width: 1px;}");
inline const QString rs232Input = QStringLiteral(
    "QLabel{background-color: rgb(29,177,0); color: white; font-size: 8pt; border-style: inset;  "
    "border-width: 1px;}");
inline const QString smartSet =
    QStringLiteral("QPushButton{background-color: rgb(255,199,1); }"
                   "QPushButton:pressed{background-color: rgb(255,199,1); }");
inline const QString smartOff = QStringLiteral("QPushButton{}QPushButton:pressed{}");

inline const QColor violet(85, 40, 245);

} // namespace MatrixLooks
