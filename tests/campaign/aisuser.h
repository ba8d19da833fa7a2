#pragma once

#include "dice.h"
#include "hand.h"

#include <QString>

QT_BEGIN_NAMESPACE
class QTableWidget;
QT_END_NAMESPACE

class aistestdlg;

/*! The user in front of the AIS test and the windows that it opens. */
class AisUser
{
public:
    AisUser(Hand &hand, Dice &dice) : m_hand(hand), m_dice(dice) { }

    /*! One step in \a dialog or one of its windows, told in words; empty if the user only waits. */
    QString step(aistestdlg *dialog);

private:
    QString pressView(QTableWidget *table);
    QString useWindow(QWidget *window);
    QString useTable(QTableWidget *table);

    Hand &m_hand;
    Dice &m_dice;
};
