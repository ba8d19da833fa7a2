#pragma once

#include <QByteArray>

namespace tk7sim {

/*!
 * The lock of a router: its password, and the level to which it is open.
 *
 * The password that a user has set opens it to ownerLevel. The service passwords of
 * serviceLevel() are this simulator's own and open it to the other levels; they are worth nothing
 * on a router without a lock.
 */
class LockStore
{
public:
    static constexpr int maxPasswordLength = 20;
    static constexpr int maxLevel = 5;
    static constexpr int ownerLevel = 2; //!< from here on the password may be set and deleted
    static constexpr int modeLevel = 4;  //!< from here on the mode may be set
    static constexpr int viewLevel = 5;  //!< from here on the password may be read

    //! True for 1 to maxPasswordLength digits and Latin letters.
    static bool isPassword(const QByteArray &text);
    //! The level to which the service password \a text opens a lock; 0: it is none.
    static int serviceLevel(const QByteArray &text);

    bool isEnabled() const { return m_enabled; }
    //! 0 locked, 1 to 5 open; without a meaning while there is no lock.
    int level() const { return m_level; }
    bool isLocked() const { return m_enabled && m_level == 0; }
    //! The user's password; empty if there is none.
    QByteArray password() const { return m_password; }

    //! Sets the lock by hand. A lock without a password is open to the service passwords alone.
    void set(bool enabled, int level, const QByteArray &password);

    //! True if the present level allows what needs \a level.
    bool allows(int level) const { return m_enabled && m_level >= level; }
    /*!
     * Sets the first password, which opens the lock to ownerLevel, or a new one, which leaves the
     * level. False, and nothing changed, if the level doesn't allow it, or if \a password isn't one
     * or belongs to the service.
     */
    bool setPassword(const QByteArray &password);
    //! Opens the lock to the level that belongs to \a password; a wrong one changes nothing.
    void unlock(const QByteArray &password);
    //! Takes password and lock away; false if the level doesn't allow it.
    bool remove();
    //! Locks again; false if there is nothing to lock.
    bool lock();

private:
    bool m_enabled = false;
    int m_level = 0;
    QByteArray m_password;
};

} // namespace tk7sim
