#include "service/passwordrule.h"

#include "service/textcheck.h"

#include <QCoreApplication>

namespace PasswordRule {

namespace {

constexpr int maxLength = 20;

} // namespace

QString boxTitle()
{
    return QCoreApplication::translate("PasswordRule", "Password error");
}

QString complaintAbout(const QString &password)
{
    switch (checkText(password, maxLength)) {
    case TextFault::TooLong:
        return QCoreApplication::translate("PasswordRule",
                                           "Password can be up to %1 characters long")
            .arg(maxLength);
    case TextFault::WrongCharacters:
        return QCoreApplication::translate(
            "PasswordRule", "The password can only contain numbers and Latin characters");
    case TextFault::None:
        break;
    }
    return QString();
}

} // namespace PasswordRule
