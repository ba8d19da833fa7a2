#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class WaitSaveDlg;
}

/*! The frameless box that stands while the router saves its rules in its EEPROM. */
class WaitSaveDlg : public QDialog
{
    Q_OBJECT

public:
    explicit WaitSaveDlg(QWidget *parent);
    ~WaitSaveDlg() override;

public slots:
    void slotExitDlg();

private:
    std::unique_ptr<Ui::WaitSaveDlg> ui;
};
