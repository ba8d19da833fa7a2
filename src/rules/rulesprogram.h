#pragma once

#include "rules/commandline.h"
#include "rules/progressline.h"
#include "rules/routersession.h"

#include <QStringList>

struct RuleDocument;

/*! The commands of tk7-rules. Products go to the standard output, all other words to the error. */
class RulesProgram
{
public:
    enum ExitCode {
        Done = 0,      //!< or the same
        Different = 1, //!< or something to look at, or not what was wanted
        WrongUse = 2,  //!< or a bad file
        NoRouter = 3   //!< or busy, or the link was lost, or broken off
    };

    /*! Does what \a arguments say, the program's name first. Needs a QCoreApplication. */
    int run(const QStringList &arguments);

private:
    int show();
    int diff();
    int check();
    int ports();
    int backup();
    int restore();
    int compare();
    int record();

    bool load(const QString &path, RuleDocument &document);
    bool loadToRead(const QString &path, RuleDocument &document); //!< and tells what is odd in it
    bool isFreeToWrite(const QString &path);
    int write(const QString &path, const QByteArray &bytes);

    void follow(RouterSession &session);
    RouterSession::Outcome readRouter(RouterSession &session, RouterModel &model);
    bool isWanted(RouterSession &session, const QStringList &changes,
                  RouterSession::Outcome &outcome);
    int restoreInto(RouterSession &session, const RouterModel &model);
    RouterSession::Outcome sendUntilItFits(RouterSession &session, const RouterModel &model,
                                           QStringList &left);
    int holdOnTerminal(RouterSession &session);
    int fail(RouterSession::Outcome outcome, const RouterSession &session);

    int print(const QByteArray &bytes, int exitCode);
    int print(const QStringList &lines, int exitCode);
    void complain(const QString &text);

    CommandLine m_line;
    ProgressLine m_progress;
};
