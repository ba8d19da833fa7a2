#pragma once

#include <QStatusBar>

/*! A status bar whose contents can be laid out anew from outside, after their size has changed. */
class QMStatusBar : public QStatusBar
{
    Q_OBJECT

public:
    using QStatusBar::QStatusBar;

    void reformat() { QStatusBar::reformat(); }
};
