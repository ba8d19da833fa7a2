#include "platform/console.h"
#include "rules/rulesprogram.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    platform::prepareStandardStreams();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tk7-rules"));
    return RulesProgram().run(QCoreApplication::arguments());
}
