#pragma once

#include <QCheckBox>

/*! The check boxes of channel 0. Adds nothing to QCheckBox. */
class QMCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;
};
