#include "mainwindow/connectprogress.h"

#include <QKeyEvent>
#include <QProgressBar>
#include <QTimer>

namespace {

constexpr int progressMaximum = 100;
constexpr int progressFontSize = 8;
constexpr QRgb progressColor = 0xff00ceff;

} // namespace

ConnectProgress::ConnectProgress(QWidget *parent)
    : QProgressDialog(tr("Connecting TK-7...       "), QString(), 0, progressMaximum, parent,
                      Qt::Popup)
{
    QPalette colors;
    colors.setColor(QPalette::Window, QColor(progressColor));
    colors.setColor(QPalette::Button, Qt::white);
    setPalette(colors);
    setAutoFillBackground(true);
    setValue(0);
    setMinimumDuration(0);
    QFont small = font();
    small.setPointSize(progressFontSize);
    setFont(small);
    setWindowModality(Qt::WindowModal);
}

void ConnectProgress::showProgress(int progress)
{
    findChild<QProgressBar *>()->setValue(progress);
    // The box that may come next could not be reached behind it.
    if (progress >= maximum())
        finish();
}

void ConnectProgress::finish()
{
    m_isFinished = true;
    hide();
}

void ConnectProgress::done(int) { }

void ConnectProgress::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

// A popup gets the presses beside it, too, and would close.
void ConnectProgress::mousePressEvent(QMouseEvent *) { }

void ConnectProgress::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

void ConnectProgress::hideEvent(QHideEvent *event)
{
    QProgressDialog::hideEvent(event);
    // Later: it is still on its way out.
    if (!m_isFinished)
        QTimer::singleShot(0, this, [this] { setVisible(!m_isFinished); });
}
