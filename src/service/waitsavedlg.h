#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class WaitSaveDlg;
}

/*!
 * The frameless box that stands while the router saves its rules in its EEPROM: until its owner
 * takes it away, whatever the user does.
 */
class WaitSaveDlg : public QDialog
{
    Q_OBJECT

public:
    explicit WaitSaveDlg(QWidget *parent);
    ~WaitSaveDlg() override;

public slots:
    void slotExitDlg();
    /*! Neither Escape nor the window manager closes it. */
    void reject() override { }

private:
    std::unique_ptr<Ui::WaitSaveDlg> ui;
};
