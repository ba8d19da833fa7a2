#pragma once

#include "service/keptbox.h"

#include <QDialog>

#include <memory>

namespace Ui {
class EnterPasswordDlg;
}

/*! Asks for the password that unlocks the router. */
class EnterPasswordDlg : public QDialog
{
    Q_OBJECT

public:
    explicit EnterPasswordDlg(QWidget *parent);
    ~EnterPasswordDlg() override;

    /*! The password as typed; empty until the dialog is accepted. */
    QString password() const { return accepted_password; }

public slots:
    void slotOk();
    void slotCancel();

private:
    std::unique_ptr<Ui::EnterPasswordDlg> ui;
    QString accepted_password;
    KeptBox message_box;
};
