#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class SntDlg;
}

/*! Asks for a new sentence name: three letters, in either case. */
class SntDlg : public QDialog
{
    Q_OBJECT

public:
    explicit SntDlg(QWidget *parent = nullptr);
    ~SntDlg() override;

    /*! The name in upper case; empty until the dialog is accepted. */
    QString sentence() const { return accepted_sentence; }

public slots:
    void slotButOk();

private:
    std::unique_ptr<Ui::SntDlg> ui;
    QString accepted_sentence;
};
