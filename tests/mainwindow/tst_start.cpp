#include "mainwindow/mainwindow.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFile>
#include <QIcon>
#include <QTest>

/*! What the start of the window doesn't do, because it takes long and nobody needs it yet. */
class tst_start : public QObject
{
    Q_OBJECT

private slots:
    void noPlugInForPictures();
    void noListBehindASpeed();
};

namespace {

bool isPictureReaderLoaded()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("/imageformats/");
}

void showWindow(MainWindow &window)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.repaint();
}

} // namespace

void tst_start::noPlugInForPictures()
{
    MainWindow window;
    showWindow(window);
    QVERIFY(!isPictureReaderLoaded());

    const QIcon icon(QStringLiteral(":/icons/player_play.png"));
    QVERIFY(!icon.pixmap(24).isNull());
    if (!isPictureReaderLoaded())
        QSKIP("Here is no plug-in that could have been loaded.");
}

// A combo box makes its list as soon as its font changes.
void tst_start::noListBehindASpeed()
{
    MainWindow window;
    showWindow(window);
    const auto boxes = window.findChildren<QComboBox *>();
    QVERIFY(boxes.size() > 12);
    for (QComboBox *box : boxes)
        QVERIFY2(!box->findChild<QAbstractItemView *>(), qPrintable(box->objectName()));
    QFont font = boxes[0]->font();
    font.setPointSize(font.pointSize() + 1);
    boxes[0]->setFont(font);
    QVERIFY(boxes[0]->findChild<QAbstractItemView *>());
}

QTEST_MAIN(tst_start)
#include "tst_start.moc"
