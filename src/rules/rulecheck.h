#pragma once

#include <QStringList>

class RouterModel;
struct RuleDocument;

/*! What an installer should look at before the rules go on board. */
struct RuleCheck
{
    QStringList warnings; //!< most likely a mistake
    QStringList notes;    //!< can be meant so

    bool isClean() const { return warnings.isEmpty(); }

    static RuleCheck of(const RuleDocument &document);

    /*!
     * What of \a model the line can't carry to a router, in words: a sentence with it would mean
     * something else or be refused. Empty for what the window's editors can make.
     */
    static QStringList untransportable(const RouterModel &model);
};
