#pragma once

#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

/*!
 * Answers modal file dialogs as a user would who types a name and presses Enter.
 *
 * The dialogs that a test expects are listed in their order; each is compared in caption, filters
 * and mode first. One that differs, or that nobody expected, is cancelled and kept in report().
 * Only the dialogs of Qt can be answered: the native ones are switched off while an answer lives.
 * They keep their settings in a file of its own: with one for all programs each would wait for the
 * others' locks, and a test would change what the user has set.
 */
class FileDialogAnswer : public QObject
{
    Q_OBJECT

public:
    struct Dialog
    {
        QString caption;
        QStringList filters;
        QFileDialog::AcceptMode mode = QFileDialog::AcceptOpen;
        QString fileName;                 //!< empty cancels the dialog
        std::function<void()> onFinished; //!< called when the dialog has its answer
        std::function<void()> whileOpen;  //!< called before the answer is given
    };

    explicit FileDialogAnswer(QObject *parent = nullptr);
    ~FileDialogAnswer() override;

    FileDialogAnswer &expect(const Dialog &dialog);

    /*! How many of the expected dialogs have come. */
    int answered() const { return m_answered; }

    /*! What was wrong, for the message of a failing test; empty if every dialog has come. */
    QString report() const;

private:
    void look();
    void answer(QFileDialog *dialog);

    QTemporaryDir m_settings;
    QTimer m_timer;
    QList<Dialog> m_expected;
    int m_answered = 0;
    QStringList m_problems;
    QPointer<QFileDialog> m_seen;
};
