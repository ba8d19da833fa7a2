#include "simulator/router/lockstore.h"

#include "simulator/line/sentence.h"

#include <algorithm>
#include <iterator>

namespace tk7sim {

namespace {

struct ServicePassword
{
    const char *text;
    int level;
};

// In the simulator only, and in its documentation.
constexpr ServicePassword servicePasswords[] = {
    {"simlevel1", 1}, {"simlevel3", 3}, {"simlevel4", 4}, {"simlevel5", 5}};

} // namespace

bool LockStore::isPassword(const QByteArray &text)
{
    return !text.isEmpty() && text.size() <= maxPasswordLength && isAlphanumeric(text);
}

int LockStore::serviceLevel(const QByteArray &text)
{
    const auto *row = std::find_if(std::begin(servicePasswords), std::end(servicePasswords),
                                   [&](const ServicePassword &p) { return text == p.text; });
    return row == std::end(servicePasswords) ? 0 : row->level;
}

void LockStore::set(bool enabled, int level, const QByteArray &password)
{
    m_enabled = enabled;
    m_level = level;
    m_password = password;
}

bool LockStore::setPassword(const QByteArray &password)
{
    const bool isAllowed = !m_enabled || allows(ownerLevel);
    if (!isAllowed || !isPassword(password) || serviceLevel(password) != 0) {
        return false;
    }
    set(true, m_enabled ? m_level : ownerLevel, password);
    return true;
}

void LockStore::unlock(const QByteArray &password)
{
    if (!m_enabled) {
        return;
    }
    const int level = serviceLevel(password);
    if (level != 0) {
        m_level = level;
    } else if (isPassword(password) && password == m_password) {
        m_level = ownerLevel;
    }
}

bool LockStore::remove()
{
    if (!allows(ownerLevel)) {
        return false;
    }
    set(false, 0, QByteArray());
    return true;
}

bool LockStore::lock()
{
    if (!m_enabled || m_level == 0) {
        return false;
    }
    m_level = 0;
    return true;
}

} // namespace tk7sim
