#include "mainwindow/mainwindow.h"
#include "widgets/pngicon.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    // The window scales itself by the screen's resolution, which a Qt that scales as well, as Qt 6 does,
    // would hide. What the user has set counts, and programs started from here inherit nothing.
    constexpr const char *scaling = "QT_ENABLE_HIGHDPI_SCALING";
    const bool isSet = qEnvironmentVariableIsSet(scaling);
    if (!isSet)
        qputenv(scaling, "0");
    QApplication application(argc, argv);
    if (!isSet)
        qunsetenv(scaling);
    QApplication::setWindowIcon(pngIcon(QStringLiteral(":/icons/tk7-control.png")));
    QApplication::setDesktopFileName(QStringLiteral("tk7-control"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
