#pragma once

#include "model/routermodel.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

/*!
 * A rule file, read with more suspicion than in the window: what is torn is refused, and what isn't
 * as the writer writes it is told.
 */
struct RuleDocument
{
    RouterModel model;

    /*! What the file holds and the reader passes over or corrects, in words. */
    QStringList remarks;

    /*! The content of a file. Nothing, and \a error, if it is torn or no rule file. */
    static std::optional<RuleDocument> parse(const QByteArray &bytes, QString &error);

    /*! The file \a path; a pipe will do as well. */
    static std::optional<RuleDocument> read(const QString &path, QString &error);

    /*!
     * The bytes of a file with \a model. Nothing, and \a error, if they wouldn't bring back every
     * field as it is: a router can hold texts that a file can't.
     */
    static std::optional<QByteArray> bytes(const RouterModel &model, QString &error);
};
