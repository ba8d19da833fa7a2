#pragma once

#include <QString>

namespace tk7sim {

/*!
 * The published name of a terminal: a symbolic link in the folder "tk7-ports" of the user's runtime
 * folder, which only that user can enter.
 */
class PortLink
{
public:
    PortLink() = default;
    ~PortLink();
    PortLink(const PortLink &) = delete;
    PortLink &operator=(const PortLink &) = delete;

    //! The folder of the links; empty where the system has no runtime folder for this user.
    static QString folder();
    //! A file name without path, not hidden, of reasonable length.
    static bool isValidName(const QString &name);

    //! Points \a name to \a device, in place of an old link of that name. False, and errorString(),
    //! if the folder can't be used.
    bool publish(const QString &name, const QString &device);
    //! Takes the link away, unless it has come to point elsewhere.
    void remove();

    QString name() const { return m_name; }
    QString path() const { return m_path; }
    QString errorString() const { return m_error; }

private:
    bool fail(const QString &text);

    QString m_name;
    QString m_path;
    QString m_device;
    QString m_error;
};

} // namespace tk7sim
