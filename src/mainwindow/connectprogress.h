#pragma once

#include <QProgressDialog>

/*!
 * The progress of the search for the router, over the window that it keeps the user from. Neither
 * key nor press nor the window manager closes it, and it comes back if the system hides it: only
 * the end of the search, or finish(), ends it.
 */
class ConnectProgress : public QProgressDialog
{
    Q_OBJECT

public:
    explicit ConnectProgress(QWidget *parent);

    /*!
     * Shows \a progress of 100 on the bar; at 100 the search has ended, and finish() follows.
     * QProgressDialog::setValue() of a modal dialog would run the event loop, in which the search
     * can end and the dialog go.
     */
    void showProgress(int progress);

    /*! Takes it off the screen for good. */
    void finish();

public slots:
    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    bool m_isFinished = false;
};
