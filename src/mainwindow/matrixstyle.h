#pragma once

#include "model/routermodel.h"

#include <QColor>
#include <QString>

/*!
 * Colours and style sheets of the main window. Every colour has one meaning: orange is under view
 * in the monitor, blue an RS-422 port, green an RS-232 port, violet the selected output port,
 * yellow a channel with a smart function.
 */
namespace MatrixStyle {

extern const QColor selectedPort;

extern const QString viewedButton;
extern const QString restingChannelButton;
extern const QString viewedPortLabel;
extern const QString smartSet;
extern const QString smartOff;
extern const QString orangeText;
extern const QString blueText;
extern const QString errorCount;
extern const QString noErrorCount;

const QString &outputButton(PortKind kind);
const QString &inputLabel(PortKind kind);

} // namespace MatrixStyle
