#pragma once

#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/sntdlg.h"
#include "support/boxanswer.h"
#include "support/indialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>

#include <functional>

/*! The hands of a user in an open filter editor. */
class FilterUser
{
public:
    /*! Presses a button and answers the box that this opens; false if it is not this one. */
    using Answer = std::function<bool(QAbstractButton *, const BoxAnswer::Box &)>;

    FilterUser(FilterDlg &opened, const Answer &answer) : dialog(opened), answerBox(answer) { }

    static void press(const QDialog &asking, QDialogButtonBox::StandardButton choice)
    {
        asking.findChild<QDialogButtonBox *>()->button(choice)->click();
    }

    static BoxAnswer::Box information(const QString &text,
                                      const QString &title = QStringLiteral("NMEA Sentence"))
    {
        return {title, text, QMessageBox::Information, QMessageBox::Ok, QMessageBox::Ok};
    }

    static BoxAnswer::Box deleteQuestion(const QString &name, bool yes)
    {
        return {QStringLiteral("NMEA Sentence"),
                QStringLiteral("Delete '%1' NMEA sentence ?").arg(name), QMessageBox::Question,
                QMessageBox::Ok | QMessageBox::Cancel, yes ? QMessageBox::Ok : QMessageBox::Cancel};
    }

    QPushButton *button(const char *name) const
    {
        return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    }
    QTableWidget *table() const { return dialog.findChild<QTableWidget *>(); }
    QString nameAt(int row) const { return table()->item(row, 1)->text(); }
    bool isChecked(int row) const { return table()->item(row, 0)->checkState() == Qt::Checked; }

    /*! The rows from the top; a '+' behind a name that is checked. */
    QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < table()->rowCount(); ++row)
            texts += isChecked(row) ? QString(nameAt(row) + QLatin1Char('+')) : nameAt(row);
        return texts;
    }

    /*! Makes the row of \a name the current one; false if there is none. */
    bool go(const QString &name)
    {
        for (int row = 0; row < table()->rowCount(); ++row) {
            if (nameAt(row) == name) {
                table()->setCurrentCell(row, 0);
                return true;
            }
        }
        return false;
    }

    /*! Turns the box of \a name by the space bar. */
    bool toggle(const QString &name)
    {
        if (!go(name))
            return false;
        QTest::keyClick(table(), Qt::Key_Space);
        return true;
    }

    void chooseType(bool black)
    {
        const char *name = black ? "radioButton_blacklist" : "radioButton_whitelist";
        dialog.findChild<QRadioButton *>(QString::fromLatin1(name))->click();
    }

    /*! Adds \a name, which the list takes. */
    bool add(const QString &name)
    {
        return inDialog<SntDlg>(button("pushButton_add"), [&name](SntDlg &entry) {
            entry.findChild<QLineEdit *>()->setText(name);
            press(entry, QDialogButtonBox::Ok);
        });
    }

    /*! Deletes \a name, which no filter uses, or thinks better of it. */
    bool remove(const QString &name, bool yes)
    {
        return go(name) && answerBox(button("pushButton_del"), deleteQuestion(name, yes));
    }

    /*! Deletes \a name, which the filters in \a used use, or thinks better of it. */
    bool removeUsed(const QString &name, const QStringList &used, bool yes)
    {
        if (!go(name))
            return false;
        QString lines;
        for (const QString &line : used)
            lines += line + QLatin1Char('\n');
        const QString question = QStringLiteral("NMEA sentence '%1' is used in other filters. \n"
                                                "Are you sure want delete from all filters?")
                                     .arg(name);
        bool isRight = false;
        const bool came =
            inDialog<DelSentenceDlg>(button("pushButton_del"), [&](DelSentenceDlg &asking) {
                isRight = asking.findChild<QTextEdit *>()->toPlainText() == lines
                    && asking.findChild<QLabel *>(QStringLiteral("label"))->text() == question;
                press(asking, yes ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
            });
        return came && isRight;
    }

    void ok() { button("pushButton_ok")->click(); }
    void cancel() { button("pushButton_cancel")->click(); }

    FilterDlg &dialog;

private:
    Answer answerBox;
};
