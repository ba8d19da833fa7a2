#pragma once

#include <QComboBox>

/*! The speed of an output port. Adds nothing to QComboBox. */
class QMComboBox : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;
};
