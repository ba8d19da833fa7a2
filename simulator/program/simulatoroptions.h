#pragma once

#include "simulator/router/faults.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace tk7sim {

class RouterSimulator;

/*! The command line of the program. */
class SimulatorOptions
{
public:
    enum class Outcome {
        Run,  //!< the options are good
        Help, //!< text() goes to the standard output, and the program ends
        Error //!< text() goes to the standard error, and the program ends
    };

    Outcome parse(const QStringList &arguments);
    QString text() const { return m_text; }

    //! Hands everything but the files to \a simulator.
    void applyTo(RouterSimulator *simulator) const;

    QString eepromFile() const { return m_eepromFile; }
    //! Ports, 0 to 11, and the files that they replay in an AIS test.
    const QList<QPair<int, QString>> &aisReplays() const { return m_aisReplays; }
    bool isQuiet() const { return m_quiet; }
    bool isVerbose() const { return m_verbose; }

private:
    Outcome read(const QCommandLineParser &parser);
    bool readFault(const QString &text);
    bool readAisReplay(const QString &text);
    bool readVersion(const QString &text);
    bool readNumber(const QCommandLineParser &parser, const QString &option, double maximum,
                    double *result);
    bool fail(const QString &text);
    static QString faultList();

    QString m_text;
    QString m_name;
    int m_speed = 0;
    double m_port = 0;
    int m_versionMajor = 0;
    int m_versionMinor = 0;
    QString m_mode;
    double m_bank = 0;
    double m_rate = 1;
    double m_vessels = 0;
    double m_seed = 1;
    double m_silence = 0;
    double m_handover = 0;
    double m_reboot = 0;
    bool m_keepSpeed = false;
    QString m_eepromFile;
    QList<QPair<Fault, double>> m_faults;
    QList<QPair<int, QString>> m_aisReplays;
    bool m_quiet = false;
    bool m_verbose = false;
};

} // namespace tk7sim
