#include "mainwindow/mainwindow.h"
#include "widgets/pngicon.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setWindowIcon(pngIcon(QStringLiteral(":/icons/tk7-control.png")));
    QApplication::setDesktopFileName(QStringLiteral("tk7-control"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
