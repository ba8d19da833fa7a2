#pragma once

#include "simulator/router/routerconfig.h"

#include <QString>

#include <optional>

namespace tk7sim {

/*! What an EEPROM holds. */
struct EepromContents
{
    RouterConfig config;
    QByteArray lockPassword; //!< empty: no lock
};

/*!
 * A file that keeps a router's EEPROM between runs of the simulator.
 *
 * It is JSON, with every field by name, so that it can be read and edited by hand. A file is taken
 * as a whole or not at all. Names are Latin-1. Only the file's owner may read it, as the lock
 * password stands in it.
 */
class EepromFile
{
public:
    //! No file: load() and save() succeed and do nothing.
    EepromFile() = default;
    explicit EepromFile(const QString &path);

    bool isNull() const { return m_path.isEmpty(); }
    bool exists() const;
    //! The contents of the file; nothing, and errorString(), if it can't be read or holds
    //! anything else.
    std::optional<EepromContents> load();
    //! Replaces the file in one step: after a fault the old one is still there, whole.
    bool save(const EepromContents &contents);
    QString errorString() const { return m_error; }

private:
    QString m_path;
    QString m_error;
};

} // namespace tk7sim
