#pragma once

#include <QDialog>
#include <QTimer>

#include <memory>

class QAisTarget;

namespace Ui {
class AisTargetInfoDlg;
}

/*! One vessel, field by field: a target of a list, or the own ship of a port. */
class AisTargetInfoDlg : public QDialog
{
    Q_OBJECT

public:
    explicit AisTargetInfoDlg(QWidget *parent);
    ~AisTargetInfoDlg() override;

    /*!
     * Points the window at \a target, which it doesn't own and which must outlive it. The texts
     * come with the next refresh().
     */
    void setTarget(QAisTarget *target) { m_target = target; }
    QAisTarget *target() const { return m_target; }

    /*! Writes the target's present texts; nothing while it has no data. */
    void refresh();

private:
    void writeLabels();
    void showAge();

    std::unique_ptr<Ui::AisTargetInfoDlg> ui;
    QAisTarget *m_target = nullptr;
    QTimer m_ageTimer{this};
};
