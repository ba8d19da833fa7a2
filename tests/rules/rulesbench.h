#pragma once

#include "model/routermodel.h"
#include "simulator/router/routersimulator.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

/*!
 * The program beside a simulated router, and a folder for its files.
 *
 * The router is silent but for what it is asked. Its port is named by its path, so that any number
 * of benches work side by side.
 */
class RulesBench
{
public:
    RulesBench();
    ~RulesBench();

    tk7sim::RouterSimulator router;
    QProcess program;
    QTemporaryDir folder;

    QString port() const { return router.deviceName(); }

    /*! The path of \a name in the folder. */
    QString path(const char *name) const { return folder.filePath(QString::fromLatin1(name)); }

    /*! Lets the router have \a model, saved. */
    void giveRouter(const RouterModel &model);

    /*! A rule file with \a model in the folder; its path. */
    QString writeFile(const char *name, const RouterModel &model) const;

    /*! Starts the program. A word "PORT" stands for the router's port. */
    void start(const QStringList &words);

    /*! Waits for the end of the program, and returns its exit code; -1 if it crashed or hangs. */
    int finish();

    int run(const QStringList &words)
    {
        start(words);
        return finish();
    }

    /*! What the program has printed, after its end. */
    QString out() const { return QString::fromUtf8(m_out); }
    QString err() const { return QString::fromUtf8(m_err); }

    /*! Sends \a number, SIGINT and the like. */
    void signal(int number) const;

    /*! The sentences that the router has heard at its own speed. */
    QByteArrayList heard() const;

    /*! How often the router has heard a sentence that begins with \a head. */
    int count(const char *head) const;

private:
    QByteArray m_out;
    QByteArray m_err;
};

/*! What the tests of the program have in common. */
namespace RulesFixture {

inline const QString Port = QStringLiteral("PORT");

inline QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

/*! A ship with a few routes, so that differences are few lines. */
inline RouterModel shipModel()
{
    RouterModel model;
    model.output_ports[3].output_name = QStringLiteral("ECDIS 1");
    model.output_ports[3].speed = 38400;
    model.output_ports[3].channels[2].main_input = 4;
    model.input_ports[4].input_name = QStringLiteral("DEPTH");
    model.input_ports[5].input_name = QStringLiteral("LOG");
    return model;
}

inline RouterModel changedModel()
{
    RouterModel model = shipModel();
    model.output_ports[3].channels[2].main_input = 5;
    return model;
}

inline const QString Change =
    QStringLiteral("Output 3 ECDIS 1, channel 2: main input 4 DEPTH -> 5 LOG\n");

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QStringList namesIn(const RulesBench &bench)
{
    return QDir(bench.folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace RulesFixture
