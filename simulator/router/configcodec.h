#pragma once

#include "simulator/line/sentence.h"
#include "simulator/router/routerconfig.h"

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>

namespace tk7sim {

/*! What a sentence of the tool changes in a configuration. */
struct ConfigChange
{
    bool batch = false; //!< takes effect with the mark at the batch's end, not at once
    QByteArray place;   //!< what it changes; a later change of the same place takes its place
    std::function<void(RouterConfig &)> apply;
};

/*! True if sentences of this \a code change the configuration. */
bool isConfigCode(const QByteArray &code);
/*!
 * The change that \a sentence asks for; nothing if any of its fields is out of range or missing:
 * a sentence is taken as a whole or not at all.
 */
std::optional<ConfigChange> parseConfigSentence(const Sentence &sentence);
/*! All sentences of a download of \a config, without checksums, in the router's order. */
QList<QByteArray> configBodies(const RouterConfig &config);

} // namespace tk7sim
