#include "rules/rulesprogram.h"

#include "link/nmeaserialport.h"
#include "platform/console.h"
#include "rules/difference.h"
#include "rules/rulecheck.h"
#include "rules/ruledocument.h"
#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>

using Outcome = RouterSession::Outcome;

namespace {

constexpr int UploadAttempts = 3;

enum class Written { Well, NobodyReads, Badly };

Written writeOut(const QByteArray &bytes)
{
    errno = 0;
    const std::size_t size = std::size_t(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return Written::Well;
    return errno == EPIPE ? Written::NobodyReads : Written::Badly;
}

QString outcomeText(Outcome outcome, const RouterSession &session)
{
    switch (outcome) {
    case Outcome::Ok:
        break;
    case Outcome::PortError:
        return QStringLiteral(
            "the port can't be opened: is it there, does another program have it, "
            "may you use it?");
    case Outcome::NoRouter:
        return QStringLiteral("no router answers at any speed");
    case Outcome::Busy:
        return QStringLiteral("the router is busy with another control program");
    case Outcome::Lost:
        return QStringLiteral("the link to the router is lost");
    case Outcome::Incomplete:
        return QStringLiteral("the router's rules have not come whole, though asked for three "
                              "times; missing: %1")
            .arg(session.missing().isEmpty() ? QStringLiteral("the end mark")
                                             : session.missing().join(QLatin1String(", ")));
    case Outcome::SaveError:
        return QStringLiteral("the router could not save its rules");
    case Outcome::NoAnswer:
        return QStringLiteral("the router doesn't do what it is asked for");
    case Outcome::Stopped:
        return QStringLiteral("broken off");
    }
    return QString();
}

// What a restore that went wrong leaves behind, and what to do.
QString stateText(Outcome outcome, bool isSaving)
{
    if (!isSaving)
        return QStringLiteral("the router is in a mixed state, of old rules and new ones, until it "
                              "goes back to those in its own memory. Restore again, or switch it "
                              "off and on; \"compare\" tells");
    if (outcome == Outcome::SaveError)
        return QStringLiteral("it goes back to the old rules in its own memory. Restore again; if "
                              "that doesn't help, the router needs service");
    return QStringLiteral("the new rules have arrived; whether the router has saved them is not "
                          "known. \"compare\" tells");
}

QByteArray sheetOf(const RouterModel &model, const QString &format, const QString &title)
{
    if (format == QLatin1String("json"))
        return SheetWriters::json(model);
    const Sheet sheet = makeSheet(model);
    if (format == QLatin1String("markdown"))
        return SheetWriters::markdown(sheet, title);
    if (format == QLatin1String("html"))
        return SheetWriters::html(sheet, title);
    if (format == QLatin1String("csv"))
        return SheetWriters::csv(sheet);
    return SheetWriters::text(sheet);
}

} // namespace

int RulesProgram::run(const QStringList &arguments)
{
    using Command = CommandLine::Command;
    if (!m_line.parse(arguments)) {
        complain(m_line.error());
        m_progress.say(QStringLiteral("Try: tk7-rules --help"));
        return WrongUse;
    }
    switch (m_line.command()) {
    case Command::Help:
        return print(m_line.helpText().toUtf8(), Done);
    case Command::Version:
        return print(QByteArrayLiteral("tk7-rules ") + TK7_VERSION + '\n', Done);
    case Command::Show:
        return show();
    case Command::Diff:
        return diff();
    case Command::Check:
        return check();
    case Command::Ports:
        return ports();
    case Command::Backup:
        return backup();
    case Command::Restore:
        return restore();
    case Command::Compare:
        return compare();
    case Command::Record:
        return record();
    }
    return WrongUse;
}

void RulesProgram::complain(const QString &text)
{
    m_progress.say(QStringLiteral("tk7-rules: ") + Words::printable(text));
}

int RulesProgram::print(const QByteArray &bytes, int exitCode)
{
    m_progress.clear();
    if (writeOut(bytes) != Written::Badly)
        return exitCode;
    complain(QStringLiteral("the standard output takes no more: %1").arg(qt_error_string()));
    return WrongUse;
}

int RulesProgram::print(const QStringList &lines, int exitCode)
{
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += line.toUtf8() + '\n';
    return print(bytes, exitCode);
}

bool RulesProgram::load(const QString &path, RuleDocument &document)
{
    QString error;
    const auto read = RuleDocument::read(path, error);
    if (!read) {
        complain(QStringLiteral("%1: %2").arg(path, error));
        return false;
    }
    document = *read;
    return true;
}

bool RulesProgram::loadToRead(const QString &path, RuleDocument &document)
{
    if (!load(path, document))
        return false;
    for (const QString &remark : qAsConst(document.remarks))
        complain(QStringLiteral("%1: %2").arg(path, remark));
    return true;
}

int RulesProgram::show()
{
    RuleDocument document;
    const QString path = m_line.operand(0);
    if (!loadToRead(path, document))
        return WrongUse;
    return print(sheetOf(document.model, m_line.format(), QFileInfo(path).fileName()), Done);
}

int RulesProgram::diff()
{
    RuleDocument before;
    RuleDocument after;
    if (!loadToRead(m_line.operand(0), before) || !loadToRead(m_line.operand(1), after))
        return WrongUse;
    const QStringList changes = differences(before.model, after.model);
    return print(changes, changes.isEmpty() ? Done : Different);
}

int RulesProgram::check()
{
    RuleDocument document;
    if (!load(m_line.operand(0), document))
        return WrongUse;
    const RuleCheck found = RuleCheck::of(document);
    QStringList lines;
    for (const QString &warning : found.warnings)
        lines += QStringLiteral("warning: ") + Words::printable(warning);
    for (const QString &note : found.notes)
        lines += QStringLiteral("note: ") + Words::printable(note);
    return print(lines, found.isClean() ? Done : Different);
}

int RulesProgram::ports()
{
    QStringList names = NmeaSerialPort::scanPorts();
    names.sort(Qt::CaseSensitive);
    if (names.isEmpty())
        complain(QStringLiteral("no serial port was found"));
    return print(names, Done);
}

// Whatever is there and isn't a plain file stays: a device, a folder, a pipe.
bool RulesProgram::isFreeToWrite(const QString &path)
{
    const QFileInfo file(path);
    if (file.exists() && (!file.isFile() || !m_line.isForced())) {
        complain(file.isFile() ? QStringLiteral("%1 is there; --force writes over it").arg(path)
                               : QStringLiteral("%1 is no file").arg(path));
        return false;
    }
    if (!QFileInfo(file.absolutePath()).isDir()) {
        complain(QStringLiteral("%1: no such folder").arg(file.absolutePath()));
        return false;
    }
    return true;
}

int RulesProgram::write(const QString &path, const QByteArray &bytes)
{
    // Beside the old one, and then renamed: no moment sees a part of it.
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return Done;
    complain(QStringLiteral("%1: %2").arg(path, file.errorString()));
    return WrongUse;
}

// Before the first step: the progress, and an end when the user wants it.
void RulesProgram::follow(RouterSession &session)
{
    QObject::connect(&session, &RouterSession::progress, &session,
                     [this](const QString &step, int percent) { m_progress.show(step, percent); });
    auto *stop = new platform::StopSignal(&session);
    QObject::connect(stop, &platform::StopSignal::stopped, &session, &RouterSession::stop);
}

int RulesProgram::fail(Outcome outcome, const RouterSession &session)
{
    complain(outcomeText(outcome, session));
    return NoRouter;
}

Outcome RulesProgram::readRouter(RouterSession &session, RouterModel &model)
{
    const QString port =
        m_line.command() == CommandLine::Command::Restore ? m_line.operand(1) : m_line.operand(0);
    const Outcome outcome = session.open(port);
    return outcome == Outcome::Ok ? session.download(model) : outcome;
}

int RulesProgram::backup()
{
    const QString path = m_line.operand(1);
    if (!isFreeToWrite(path))
        return WrongUse;
    RouterSession session;
    follow(session);
    RouterModel model;
    const Outcome outcome = readRouter(session, model);
    session.close();
    if (outcome != Outcome::Ok)
        return fail(outcome, session);

    QString error;
    const auto bytes = RuleDocument::bytes(model, error);
    if (!bytes) {
        complain(QStringLiteral("a rule file can't hold the router's rules: %1").arg(error));
        return NoRouter;
    }
    return write(path, *bytes);
}

int RulesProgram::compare()
{
    RuleDocument document;
    if (!loadToRead(m_line.operand(1), document))
        return WrongUse;
    RouterSession session;
    follow(session);
    RouterModel model;
    const Outcome outcome = readRouter(session, model);
    session.close();
    if (outcome != Outcome::Ok)
        return fail(outcome, session);
    const QStringList changes = differences(document.model, model);
    if (!changes.isEmpty())
        complain(QStringLiteral("the router is not as the file says (in the file -> in the "
                                "router):"));
    return print(changes, changes.isEmpty() ? Done : Different);
}

int RulesProgram::restore()
{
    RuleDocument document;
    const QString path = m_line.operand(0);
    if (!load(path, document))
        return WrongUse;
    const QStringList obstacles = document.remarks + RuleCheck::untransportable(document.model);
    for (const QString &obstacle : obstacles)
        complain(QStringLiteral("%1: %2").arg(path, obstacle));
    if (!obstacles.isEmpty()) {
        complain(
            QStringLiteral("such a file is not restored; load it in the window, look, and save "
                           "it again"));
        return WrongUse;
    }
    RouterSession session;
    follow(session);
    const int result = restoreInto(session, document.model);
    session.close();
    return result;
}

int RulesProgram::restoreInto(RouterSession &session, const RouterModel &model)
{
    RouterModel present;
    Outcome outcome = readRouter(session, present);
    if (outcome != Outcome::Ok)
        return fail(outcome, session);
    if (m_line.isSave() && session.isLocked()) {
        complain(QStringLiteral(
            "the router is locked and would not save. Load the file in the window, which can "
            "unlock it"));
        return NoRouter;
    }
    const QStringList changes = differences(present, model);
    if (changes.isEmpty() && !m_line.isSave()) {
        complain(QStringLiteral("the router has these rules already"));
        return Done;
    }
    if (!isWanted(session, changes, outcome))
        return outcome == Outcome::Ok ? int(Different) : fail(outcome, session);

    QStringList left;
    outcome = sendUntilItFits(session, model, left);
    const bool isSaving = outcome == Outcome::Ok && left.isEmpty() && m_line.isSave();
    if (isSaving)
        outcome = session.saveToEeprom();
    m_progress.clear();
    if (outcome != Outcome::Ok) {
        fail(outcome, session);
        complain(stateText(outcome, isSaving));
        return NoRouter;
    }
    if (!left.isEmpty()) {
        complain(
            QStringLiteral("the router has not taken everything, and goes back to the rules in "
                           "its own memory. Left:"));
        for (const QString &line : qAsConst(left))
            m_progress.say(line);
        return Different;
    }
    if (!m_line.isSave())
        return holdOnTerminal(session);
    complain(QStringLiteral("restored, and saved in the router"));
    return Done;
}

// Nothing that is sent is acknowledged, so the router is asked what it has.
Outcome RulesProgram::sendUntilItFits(RouterSession &session, const RouterModel &model,
                                      QStringList &left)
{
    for (int attempt = 0; attempt < UploadAttempts; ++attempt) {
        Outcome outcome = session.upload(model);
        RouterModel present;
        if (outcome == Outcome::Ok)
            outcome = session.download(present);
        if (outcome != Outcome::Ok)
            return outcome;
        left = differences(present, model);
        if (left.isEmpty())
            break;
    }
    return Outcome::Ok;
}

// Shows what will change and asks. The connection lives on meanwhile; if it ends, `outcome` tells.
bool RulesProgram::isWanted(RouterSession &session, const QStringList &changes, Outcome &outcome)
{
    m_progress.clear();
    if (changes.isEmpty())
        m_progress.say(QStringLiteral("The router has these rules already."));
    else if (print(QStringList(QStringLiteral("These rules will change:")) + changes, Done) != Done)
        return false;
    if (m_line.isYes())
        return true;
    m_progress.ask(m_line.isSave() ? QStringLiteral("Restore and save in the router? [y/N] ")
                                   : QStringLiteral("Restore? [y/N] "));
    QString answer;
    platform::LineReader reader;
    QObject::connect(&reader, &platform::LineReader::lineRead, &session, [&](const QString &line) {
        answer = line.trimmed().toLower();
        session.resume();
    });
    outcome = session.hold();
    if (outcome != Outcome::Ok) {
        m_progress.say(QString()); // the question's line
        return false;
    }
    if (answer == QLatin1String("y") || answer == QLatin1String("yes"))
        return true;
    complain(QStringLiteral("nothing was changed"));
    return false;
}

// The end of the connection undoes what isn't saved. Whoever sits there can try the rules first.
int RulesProgram::holdOnTerminal(RouterSession &session)
{
    if (!m_line.isYes() && platform::isTerminal(platform::StandardStream::Input)) {
        m_progress.ask(QStringLiteral("The router works by these rules until you press Return. "));
        platform::LineReader reader;
        QObject::connect(&reader, &platform::LineReader::lineRead, &session,
                         &RouterSession::resume);
        const Outcome outcome = session.hold();
        if (outcome != Outcome::Ok)
            m_progress.say(QString()); // the question's line
        if (outcome != Outcome::Ok && outcome != Outcome::Stopped)
            return fail(outcome, session);
    }
    complain(QStringLiteral("restored, but not saved: without a connection the router goes back to "
                            "the rules in its own memory. --save makes them last"));
    return Done;
}

int RulesProgram::record()
{
    RouterSession session;
    follow(session);
    Outcome outcome = session.open(m_line.operand(0));
    m_progress.clear();
    if (outcome != Outcome::Ok)
        return fail(outcome, session);
    Written written = Written::Well;
    outcome = session.record(m_line.view(), m_line.milliseconds(), [&](const QString &line) {
        QByteArray text = Words::printable(line).toUtf8() + '\n';
        if (m_line.isTimed())
            text.prepend(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1()
                         + ' ');
        written = writeOut(text);
        return written == Written::Well;
    });
    session.close();
    if (written == Written::Badly) {
        complain(QStringLiteral("the standard output takes no more"));
        return WrongUse;
    }
    // Without --for Ctrl-C is how a recording ends.
    if (outcome == Outcome::Ok || (outcome == Outcome::Stopped && m_line.milliseconds() == 0))
        return Done;
    return fail(outcome, session);
}
