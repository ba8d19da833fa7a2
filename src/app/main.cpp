#include "mainwindow/mainwindow.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tk7-control.png")));
    QApplication::setDesktopFileName(QStringLiteral("tk7-control"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
