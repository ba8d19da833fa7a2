#pragma once

#include "ais/aissentence.h"

#include <QDialog>
#include <QTimer>

#include <array>
#include <memory>

QT_BEGIN_NAMESPACE
class QPushButton;
class QTableWidgetItem;
QT_END_NAMESPACE

class AisAlarmListDlg;
class AisTargetInfoDlg;
class AisTargetListDlg;

namespace Ui {
class aistestdlg;
}

/*!
 * The window of the AIS test: a row for each input port that has brought AIS data, with its
 * counters, its greatest ranges and the buttons that open its lists. It owns the decoders of the
 * twelve ports; all data of a test die with it.
 *
 * Knows no link: the router's sentences enter by slotAISMessage() and slotAISPosition().
 */
class aistestdlg : public QDialog
{
    Q_OBJECT

public:
    explicit aistestdlg(QWidget *parent);
    ~aistestdlg() override;

public slots:
    // What the decoders report
    void slotAddTarget(uint port_number, uint mmsi);
    /*! Runs while the target is still in the port's list. */
    void slotDeleteTarget(uint port_number, uint mmsi);
    void slotUpdateTarget(uint port_number, uint mmsi);
    void slotUpdateOwnTarget(uint port_number);
    void slotUpdateAlarm(uint port_number, quint8 id);

    void slotDlgTimer();
    void slotOwnClick();
    void slotTargetClick();

    /*! Takes in "$VRAIM", "$VRAIO" and "$VRAIA"; ignores any other text. */
    void slotAISMessage(QString message);
    /*! Takes in "$VRAIP", the router's own position. */
    void slotAISPosition(QString message);
    /*! Offers a position from \a port, or from QAis::RouterSource, to all ports. */
    void slotNewOwnPosition(uint port, QGpsKrd *Pos);
    void slotLostPosition(uint port);
    void slotAlarmClick();

private:
    template <typename Type> using PerPort = std::array<Type, AisPortCount>;

    void wirePort(QAis &ais);
    void requireRow(uint port);
    QPushButton *addViewButton(int row, int column, void (aistestdlg::*slot)());
    void writeCell(uint port, int column, const QString &text);
    void updateMaxRange(uint port);
    int portOfSender(const PerPort<QPushButton *> &buttons) const;

    // By input port, 0 to 11.
    AisPorts m_ais;
    PerPort<QTableWidgetItem *> m_rowItem = {};    //!< in column 0; null: no row yet
    PerPort<AisTargetListDlg *> m_targetList = {}; //!< this and the next two: null until opened
    PerPort<AisTargetInfoDlg *> m_ownInfo = {};
    PerPort<AisAlarmListDlg *> m_alarmList = {};
    PerPort<QPushButton *> m_ownButton = {};
    PerPort<QPushButton *> m_targetButton = {};
    PerPort<QPushButton *> m_alarmButton = {};
    QTimer m_dlgTimer{this};
    PerPort<double> m_allTimeMaxRange; //!< nautical miles; -1.0: none so far

    std::unique_ptr<Ui::aistestdlg> ui;
};
