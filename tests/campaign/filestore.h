#pragma once

#include "dice.h"

#include <QStringList>
#include <QTemporaryDir>

/*! The files that the user has at hand, in a folder of its own: good ones and bad ones. */
class FileStore
{
public:
    enum class Kind { Good, Torn, Hostile };

    FileStore();

    /*! A path under which rules can be saved: mostly a rule file, sometimes a place that refuses.
     */
    QString targetForRules(Dice &dice) const;
    /*! A rule file to load, sometimes one that doesn't exist. It is made now. */
    QString ruleFile(Dice &dice);
    /*! What the last rule file was. */
    Kind kindOfRules() const { return m_kind; }
    /*! A firmware file, made now: small, or bad in one of many ways. */
    QString firmware(Dice &dice);

private:
    QString write(const QString &name, const QByteArray &content) const;
    QByteArray goodRules(Dice &dice) const;

    QTemporaryDir m_folder;
    Kind m_kind = Kind::Good;
};
