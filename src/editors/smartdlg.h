#pragma once

#include <QDialog>

#include <array>
#include <memory>

QT_BEGIN_NAMESPACE
class QRadioButton;
QT_END_NAMESPACE

namespace Ui {
class SmartDlg;
}

/*! Asks for a channel's smart function: 0 none, 1 GPS, 2 heading, 3 depth, 4 ARPA, 5 AIS. */
class SmartDlg : public QDialog
{
    Q_OBJECT

public:
    explicit SmartDlg(QWidget *parent);
    ~SmartDlg() override;

    /*!
     * Shows \a value. A value without a button, 6 or 7, shows as none and is kept unless the dialog
     * is accepted. AIS can be chosen only if \a allowAis is set, but shows as chosen in any case.
     */
    void setFunction(quint8 value, bool allowAis);

    /*! The value that was set, or chosen once the dialog is accepted. */
    quint8 function() const { return smart_function; }

public slots:
    void slotButOk();

private:
    static constexpr int functionCount = 6;

    std::unique_ptr<Ui::SmartDlg> ui;
    std::array<QRadioButton *, functionCount> buttons; //!< by the function's number
    quint8 smart_function = 0;
};
