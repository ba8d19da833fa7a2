#pragma once

#include "aisuser.h"
#include "dice.h"
#include "filestore.h"
#include "hand.h"

#include <QString>

QT_BEGIN_NAMESPACE
class QAbstractButton;
class QDialog;
class QDialogButtonBox;
class QMessageBox;
class QFileDialog;
class QProgressDialog;
QT_END_NAMESPACE

class EnterPasswordDlg;
class FilterDlg;
class HdrEditDlg;
class SmartDlg;
class SntDlg;
class modeDlg;
class passwordDlg;
class servicedlg;

/*!
 * The user in front of a dialog or a popup: does one thing in it, and nothing at times.
 *
 * Dialogs that it doesn't know are treated by what is in them: a button, a row of a list, Escape.
 */
class DialogUser
{
public:
    DialogUser(Hand &hand, Dice &dice, FileStore &files);

    /*! One step in \a dialog, told in words; empty if the user only waits. */
    QString step(QWidget *dialog);
    /*! Leaves \a dialog by the shortest way. */
    QString leave(QWidget *dialog);
    /*! One step in the open list of a combo box, in which \a wanted is the best choice. */
    QString chooseFromList(QWidget *popup, const QString &wanted);

private:
    QString answerBox(QMessageBox *box);
    QString chooseFile(QFileDialog *dialog);
    QString editFilter(FilterDlg *dialog);
    QString enterText(QDialog *dialog, const QString &text);
    QString chooseSmart(SmartDlg *dialog);
    QString service(servicedlg *dialog);
    QString watchUpdate(QProgressDialog *dialog);
    QString poke(QWidget *dialog);
    QString pressOneOf(const QList<QAbstractButton *> &buttons);
    QString press(QAbstractButton *button);
    QString password();

    Hand &m_hand;
    Dice &m_dice;
    FileStore &m_files;
    AisUser m_aisUser;
};
