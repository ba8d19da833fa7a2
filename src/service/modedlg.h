#pragma once

#include "service/keptbox.h"

#include <QDialog>

#include <memory>

namespace Ui {
class modeDlg;
}

/*! Asks for the router's mode, a short text whose meaning is the router's own. */
class modeDlg : public QDialog
{
    Q_OBJECT

public:
    explicit modeDlg(QWidget *parent);
    ~modeDlg() override;

    /*! The mode as typed; empty until the dialog is accepted. */
    QString mode() const { return accepted_mode; }

public slots:
    void slotOk();
    void slotCancel();

private:
    QString complaintAbout(const QString &text) const;

    std::unique_ptr<Ui::modeDlg> ui;
    KeptBox message_box;
    QString accepted_mode;
};
