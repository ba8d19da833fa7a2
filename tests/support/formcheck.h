#pragma once

#include <QApplication>
#include <QDialog>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTest>

/*!
 * What the tests of forms share. Such a program runs once for each screen resolution: CTest gives
 * it the number of dots per inch, and in TK7_EXPECTED_SCALE the factor that the forms must then
 * have.
 */
namespace FormCheck {

/*! The factor that is expected, 1 where none is given. */
double expectedScale();

/*! Design lengths on this screen, each cut towards zero. */
int cut(int length);
QSize cut(QSize size);
QRect cut(const QRect &rect);

/*! The size of \a text, which may have several lines, in the font of \a widget. */
QSize textSize(const QWidget *widget, const QString &text);

/*! Whether \a child lies whole within its parent. */
bool isInsideParent(const QWidget *child);

/*! Whether \a place meets none of \a taken, to which it is added. */
bool takePlace(QList<QRect> &taken, const QRect &place);

/*! The columns of a table of places. */
void addPlaceColumns();

/*! A row of that table: \a object of class \a type has the design \a place and \a text. */
void addPlace(const char *dialog, const char *object, const char *type, const QRect &place,
              const char *text = nullptr);

/*!
 * Checks the object of the current row in \a window, its name, class and minimum size, its place,
 * and the text or title if it has such a property.
 */
void checkPlace(const QDialog &window);

/*! Checks name and title of \a dialog, that it is as large as \a designSize, and can't be resized.
 */
void checkFixedDialog(const QDialog &dialog, const QString &name, const QString &title,
                      QSize designSize);

} // namespace FormCheck

// QTEST_MAIN would draw the texts at 96 dots per inch on any screen.
#define TK7_FORM_TEST_MAIN(Test)                                                                   \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        QApplication application(argc, argv);                                                      \
        Test test;                                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
