#pragma once

#include <QDialog>
#include <QHash>

#include <memory>

class AisTargetInfoDlg;
class PaintPace;
class QAis;
class QAisTarget;

QT_BEGIN_NAMESPACE
class QTableWidgetItem;
QT_END_NAMESPACE

namespace Ui {
class AisTargetListDlg;
}

/*!
 * The targets of one input port: MMSI, ship name and range. A double click on a row opens one
 * information window that serves the whole list.
 */
class AisTargetListDlg : public QDialog
{
    Q_OBJECT

public:
    explicit AisTargetListDlg(QWidget *parent);
    ~AisTargetListDlg() override;

    /*! Lists the targets of \a ais, which isn't owned and must outlive the window. Called once. */
    void setAis(QAis *ais);

    /*! Writes all ranges anew; nothing while no own position is held. */
    void refreshRanges();

public slots:
    /*! \a pTarget must be a target of the port. */
    void slotAddTarget(QAisTarget *pTarget);
    /*! The target is about to leave; it must still be in the port's list. */
    void slotDeleteTarget(uint mmsi);
    void slotUpdateTarget(uint mmsi);
    /*! Empties all ranges. */
    void slotLostPosition();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    template <typename Change> void changeAndSort(const Change &change);
    void fillRow(int row, const QAisTarget &target);
    int rowOf(uint mmsi) const;
    bool goesUp(int row, const QString &text) const;
    void showTarget(int row);
    void showCurrentTarget();
    bool isInfoOf(const QAisTarget *target) const;

    std::unique_ptr<Ui::AisTargetListDlg> ui;
    QAis *m_ais = nullptr;
    QHash<uint, QTableWidgetItem *>
        m_cells;                        //!< those of the first column, by the MMSI that they read
    AisTargetInfoDlg *m_info = nullptr; //!< made at the first double click, then kept
    PaintPace *m_pace;                  //!< of the table
};
