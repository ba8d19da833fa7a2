#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <optional>

/*!
 * Answers modal message boxes as a user would, after a look at the whole box.
 *
 * The boxes that a test expects are listed in their order; each is compared in title, text, icon
 * and buttons, in the default button and the parent if they are given, and then clicked. A box that
 * differs, or that nobody expected, is closed and kept in report(), so that a test never hangs in
 * it.
 */
class BoxAnswer : public QObject
{
    Q_OBJECT

public:
    struct Box
    {
        QString title;
        QString text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QMessageBox::StandardButtons buttons = QMessageBox::Ok;
        QMessageBox::StandardButton click = QMessageBox::Ok; //!< NoButton leaves the box open
        /*! Run in the event loop of a box that is left open. */
        std::function<void(QMessageBox &)> whileOpen = nullptr;
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton; //!< NoButton: any
        /*! Compared if there is one; a null pointer stands for a box without a parent. */
        std::optional<const QWidget *> parent = std::nullopt;
    };

    explicit BoxAnswer(QObject *parent = nullptr);

    /*! How often it looks for a box; with 0 in every turn of the event loop. */
    void setLookInterval(int milliseconds) { m_timer.setInterval(milliseconds); }

    BoxAnswer &expect(const Box &box);

    /*! How many of the expected boxes have come. */
    int answered() const { return m_answered; }

    /*! Whether every expected box has come and no other. */
    bool isDone() const { return m_problems.isEmpty() && m_answered == m_expected.size(); }

    /*! What was wrong, for the message of a failing test; tells of missing boxes too. */
    QString report() const;

private:
    void look();
    void answer(QMessageBox *box);

    QTimer m_timer;
    QList<Box> m_expected;
    int m_answered = 0;
    QStringList m_problems;
    QPointer<QMessageBox> m_leftOpen;
};
