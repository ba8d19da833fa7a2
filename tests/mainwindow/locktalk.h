#pragma once

#include "scriptedbench.h"

#include "service/enterpassworddlg.h"

#include <QLineEdit>
#include <QPushButton>

/*! What the tests of the lock share: its statuses, its boxes, and a password that is typed. */

inline const QString unlockTitle = QStringLiteral("Unlock TK-7");
inline const QString unlockedText = QStringLiteral("Router TK-7 unlocked successfully");

inline BoxAnswer::Box wrongPassword()
{
    return {unlockTitle, QStringLiteral("Wrong Unlock Password"), QMessageBox::Warning};
}

inline BoxAnswer::Box unlocked(const QString &welcome = QString())
{
    return {unlockTitle, welcome + unlockedText, QMessageBox::Information};
}

inline QByteArray status(bool password, int level)
{
    return "$VRLCK," + QByteArray(password ? "1" : "0") + ',' + QByteArray::number(level);
}

inline void setStatus(ScriptedBench &bench, bool password, int level)
{
    bench.say(status(password, level));
    bench.waitUntilHeard();
}

inline QPushButton *button(const QWidget &dialog, const char *name)
{
    auto *found = dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    if (!found)
        qFatal("no button %s", name);
    return found;
}

inline void type(const QWidget &dialog, const char *field, const QString &text)
{
    auto *edit = dialog.findChild<QLineEdit *>(QString::fromLatin1(field));
    edit->clear();
    QTest::keyClicks(edit, text);
}

inline void typeUnlock(const EnterPasswordDlg &dialog, const QString &password)
{
    type(dialog, "lineEdit_password", password);
    button(dialog, "pushButton_Ok")->click();
}
