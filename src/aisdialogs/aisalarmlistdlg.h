#pragma once

#include <QDialog>

#include <memory>

class QAis;

namespace Ui {
class AisAlarmListDlg;
}

/*! The alarms of the AIS station on one input port. */
class AisAlarmListDlg : public QDialog
{
    Q_OBJECT

public:
    explicit AisAlarmListDlg(QWidget *parent);
    ~AisAlarmListDlg() override;

    /*! Whose alarms these are; \a ais isn't owned and must outlive the window. */
    void setAis(QAis *ais);

    /*! Lists all alarms anew. */
    void rebuild();

    /*!
     * Brings the row of alarm \a id up to date, or appends it. Returns whether anything was
     * written; false as well when the port has no such alarm.
     */
    bool showAlarm(quint8 id);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int rowOf(const QString &idText) const;
    int appendRow(const QString &idText);

    QAis *m_ais = nullptr;
    std::unique_ptr<Ui::AisAlarmListDlg> ui;
};
