#pragma once

#include "simulator/instruments/aisreport.h"

#include <QMap>
#include <QStringList>
#include <QVector>

#include <array>
#include <memory>
#include <optional>

/*!
 * What the windows of an AIS test have to show, from what the vessels have said and not from the
 * sentences: the rules of the texts and of the tables, written anew and sharing no code with the
 * tool. Times are milliseconds of the day.
 */
class WorldModel
{
public:
    static constexpr int portCount = 12;
    static constexpr int infoRows = 19;

    /*! What has happened at least so often, so that a test can tell that it had something to see.
     */
    struct Events
    {
        int born = 0;
        int died = 0;
        int returned = 0; //!< born again
        int sourceChanges = 0;
        int lostPositions = 0;
        int hiddenInfos = 0;
        int changedAlarms = 0;
        int staleRanges = 0; //!< written though no own position was held
    };

    /*! \a report was heard whole at \a now. */
    void hear(const tk7sim::AisReport &report, int now);
    /*! Every timer has fired. */
    void tick(int now);

    void openList(int port);
    void openInfo(int port, uint mmsi);
    void openOwnInfo(int port);
    void openAlarms(int port);

    /*! The input ports in the order of their rows. */
    const QVector<int> &rows() const { return m_rows; }
    /*! The target of \a port that has been silent longest; 0: there is none. */
    uint longestSilent(int port, int now) const;
    const Events &events() const { return m_events; }

    /*! Every cell and the state of every button, a line for each row of each table. */
    QStringList describe() const;

private:
    struct Target
    {
        uint mmsi = 0;
        std::optional<tk7sim::AisPositionReport> position;
        std::optional<tk7sim::AisVoyageData> voyage;
        int heardAt = 0;
        bool hasRange = false;
        double range = 0;
    };
    using TargetPointer = std::shared_ptr<Target>;

    struct ListRow
    {
        QString name;
        QString range;
    };

    // Of what is shown, a null pointer or a false one below: never opened.
    struct Port
    {
        QVector<TargetPointer> targets;
        TargetPointer own = std::make_shared<Target>();
        QMap<int, tk7sim::AisAlarmState> alarms;
        double latitude = 0; // of the own position, minutes of arc
        double longitude = 0;
        int positionSource = 0;
        int positionAt = 0;
        uint messages = 0;

        QString messagesCell;
        QString targetsCell;
        QString rangeCell;
        QString bestRangeCell;
        double bestRange = -1;
        QMap<uint, ListRow> list;
        TargetPointer shown; // in the list's information window
        QStringList info;
        QStringList ownInfo;
        QMap<int, QStringList> alarmList;

        bool hasPosition = false;
        bool hasRow = false;
        bool isOwnEnabled = false;
        bool isListEnabled = false;
        bool isAlarmEnabled = false;
        bool isListOpen = false;
        bool isInfoVisible = false;
        bool isOwnInfoOpen = false;
        bool isAlarmListOpen = false;
    };

    static QStringList infoTexts(const Target &target);
    static QString rangeText(const Target &target);
    static QStringList alarmTexts(const tk7sim::AisAlarmState &alarm);
    static void fill(QStringList *window, const Target &target);

    Target &findOrAdd(Port &port, uint mmsi, bool *isNew);
    void requireRow(int number);
    void added(int number, const Target &target);
    void updated(int number, const Target &target);
    void ownUpdated(int number);
    void died(int number, const Target &target);
    void offerPosition(int source, double latitude, double longitude, int now);
    void measure(const Port &port, Target &target) const;
    void updateMaxRange(int number);
    void hearOwn(const tk7sim::AisReport &report, int now);
    void hearAlarm(const tk7sim::AisReport &report);
    void expire(int number, int now);
    void showAge(QStringList *window, const Target &target, int now) const;

    std::array<Port, portCount> m_ports;
    QVector<int> m_rows;
    QVector<QPair<int, uint>> m_everDied;
    Events m_events;
};
