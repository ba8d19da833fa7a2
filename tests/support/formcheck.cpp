#include "support/formcheck.h"

#include <QFontMetrics>

double FormCheck::expectedScale()
{
    return qEnvironmentVariable("TK7_EXPECTED_SCALE", QStringLiteral("1")).toDouble();
}

int FormCheck::cut(int length)
{
    return int(length * expectedScale());
}

QSize FormCheck::cut(QSize size)
{
    return {cut(size.width()), cut(size.height())};
}

QRect FormCheck::cut(const QRect &rect)
{
    return {QPoint(cut(rect.x()), cut(rect.y())), cut(rect.size())};
}

QSize FormCheck::textSize(const QWidget *widget, const QString &text)
{
    return widget->fontMetrics().size(0, text);
}

bool FormCheck::isInsideParent(const QWidget *child)
{
    return child->parentWidget()->rect().contains(child->geometry());
}

bool FormCheck::takePlace(QList<QRect> &taken, const QRect &place)
{
    for (const QRect &other : qAsConst(taken)) {
        if (other.intersects(place))
            return false;
    }
    taken += place;
    return true;
}

void FormCheck::addPlaceColumns()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("text");
}

void FormCheck::addPlace(const char *dialog, const char *object, const char *type,
                         const QRect &place, const char *text)
{
    QTest::addRow("%s, %s", dialog, object) << dialog << object << type << place << text;
}

void FormCheck::checkPlace(const QDialog &window)
{
    QFETCH(QString, object);
    QFETCH(QRect, place);
    QFETCH(QString, text);
    const auto *widget = window.findChild<QWidget *>(object);
    QVERIFY(widget);
    QTEST(QString::fromLatin1(widget->metaObject()->className()), "type");
    QCOMPARE(widget->geometry(), cut(place));
    QCOMPARE(widget->minimumSize(), cut(place.size()));
    for (const char *property : {"text", "title"}) {
        if (widget->property(property).isValid())
            QCOMPARE(widget->property(property).toString(), text);
    }
}

void FormCheck::checkFixedDialog(const QDialog &dialog, const QString &name, const QString &title,
                                 QSize designSize)
{
    QCOMPARE(dialog.objectName(), name);
    QCOMPARE(dialog.windowTitle(), title);
    QCOMPARE(dialog.size(), cut(designSize));
    QCOMPARE(dialog.minimumSize(), cut(designSize));
    QCOMPARE(dialog.maximumSize(), cut(designSize));
}
