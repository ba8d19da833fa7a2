#pragma once

#include "service/keptbox.h"

#include <QDialog>

#include <memory>

namespace Ui {
class passwordDlg;
}

/*! Asks twice for the router's new lock password. */
class passwordDlg : public QDialog
{
    Q_OBJECT

public:
    explicit passwordDlg(QWidget *parent);
    ~passwordDlg() override;

    /*! The password as typed; empty until the dialog is accepted. */
    QString password() const { return accepted_password; }

public slots:
    void slotOk();
    void slotCancel();

private:
    QString complaintAbout(const QString &text) const;

    QString accepted_password;
    std::unique_ptr<Ui::passwordDlg> ui;
    KeptBox message_box;
};
