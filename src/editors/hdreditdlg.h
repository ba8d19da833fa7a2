#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class HdrEditDlg;
}

/*! Asks for a channel's header override: two letters, in either case, but not the router's own. */
class HdrEditDlg : public QDialog
{
    Q_OBJECT

public:
    explicit HdrEditDlg(QWidget *parent);
    ~HdrEditDlg() override;

    /*! Puts \a hdr into the field. */
    void setHdr(const QString &hdr);

    /*! The header in upper case; empty until the dialog is accepted. */
    QString hdr() const { return accepted_hdr; }

public slots:
    void slotButOk();

private:
    QString complaintAbout(const QString &text) const;

    std::unique_ptr<Ui::HdrEditDlg> ui;
    QString accepted_hdr;
};
