#include "service/textcheck.h"

#include <QTest>

Q_DECLARE_METATYPE(TextFault)

/*! What may be a password or a mode. */
class tst_textcheck : public QObject
{
    Q_OBJECT

private slots:
    void check_data();
    void check();
    void everyCharacter();
};

void tst_textcheck::check_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<TextFault>("fault");

    QTest::newRow("one character") << "a" << 20 << TextFault::None;
    QTest::newRow("as long as it may be") << QString(20, 'a') << 20 << TextFault::None;
    QTest::newRow("one more") << QString(21, 'a') << 20 << TextFault::TooLong;
    QTest::newRow("too long and wrong") << QString(21, '-') << 20 << TextFault::TooLong;
    QTest::newRow("as long as it may be and wrong")
        << QString(20, '-') << 20 << TextFault::WrongCharacters;
    QTest::newRow("empty") << QString() << 20 << TextFault::WrongCharacters;
    QTest::newRow("blank in front") << " abc" << 20 << TextFault::WrongCharacters;
    QTest::newRow("blank behind") << "abc " << 20 << TextFault::WrongCharacters;
    QTest::newRow("star") << "a*b" << 20 << TextFault::WrongCharacters;
    QTest::newRow("comma") << "a,b" << 20 << TextFault::WrongCharacters;
    QTest::newRow("umlaut") << QStringLiteral(u"gr\u00fcn") << 20 << TextFault::WrongCharacters;
    QTest::newRow("Cyrillic") << QStringLiteral(u"\u0430") << 20 << TextFault::WrongCharacters;
    QTest::newRow("Arabic digit") << QStringLiteral(u"\u0661") << 20 << TextFault::WrongCharacters;
    QTest::newRow("full-width letter")
        << QStringLiteral(u"\uff21") << 20 << TextFault::WrongCharacters;
    QTest::newRow("line end") << "abc\n" << 20 << TextFault::WrongCharacters;
}

void tst_textcheck::check()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    QFETCH(TextFault, fault);
    QCOMPARE(checkText(text, length), fault);
}

void tst_textcheck::everyCharacter()
{
    const QString allowed =
        QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    QString found;
    for (int code = 0; code <= 0xffff; ++code) {
        if (checkText(QString(QChar(code)), 1) == TextFault::None)
            found += QChar(code);
    }
    QCOMPARE(found, allowed);
}

QTEST_APPLESS_MAIN(tst_textcheck)
#include "tst_textcheck.moc"
