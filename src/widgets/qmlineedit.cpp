#include "widgets/qmlineedit.h"

#include "platform/qtversion.h"

#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>

namespace {

const QRegularExpression &sentenceMarks()
{
    static const QRegularExpression marks(QStringLiteral("[!$*,]"));
    return marks;
}

bool hasForbidden(const QString &text)
{
    return text.contains(sentenceMarks());
}

QString allowed(QString text)
{
    return text.remove(sentenceMarks());
}

} // namespace

QMLineEdit::QMLineEdit()
{
    setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[a-z -Z]*")), this));
    grabMouse();
    setDragEnabled(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    // A press outside must not reach the widget below as if it were a press on it.
    setAttribute(Qt::WA_NoMousePropagation);
    connect(this, &QLineEdit::editingFinished, this, [this] { is_over = true; });
    // The wheel goes past a grabbed mouse.
    qApp->installEventFilter(this);
}

void QMLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        emit editingFinished();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        const bool isSelection = event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
        if (pastesAllowed(isSelection ? QClipboard::Selection : QClipboard::Clipboard))
            return;
    }
    if (hasForbidden(event->text())) {
        event->ignore();
        return;
    }
    // Of a text that the validator refuses the base handler raises nothing.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !hasAcceptableInput()) {
        emit editingFinished();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void QMLineEdit::mousePressEvent(QMouseEvent *event)
{
    const QPoint pos = event->pos();
    if (pos.x() >= 0 && pos.y() >= 0 && pos.x() <= width() && pos.y() <= height()) {
        QLineEdit::mousePressEvent(event);
        return;
    }
    event->ignore();
    emit editingFinished();
}

// The middle button pastes what is selected elsewhere, where the system has that.
void QMLineEdit::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton && pastesAllowed(QClipboard::Selection))
        return;
    QLineEdit::mouseReleaseEvent(event);
}

// Inserts what is allowed of a text that isn't wholly so, and returns whether it is such a text.
bool QMLineEdit::pastesAllowed(QClipboard::Mode mode)
{
    const QString text = QApplication::clipboard()->text(mode);
    if (!hasForbidden(text))
        return false;
    insert(allowed(text));
    return true;
}

void QMLineEdit::dropEvent(QDropEvent *event)
{
    QMimeData text;
    text.setText(allowed(event->mimeData()->text()));
    QDropEvent drop = platform::dropOf(&text, event);
    QLineEdit::dropEvent(&drop);
    event->setDropAction(drop.dropAction());
    event->setAccepted(drop.isAccepted());
}

void QMLineEdit::inputMethodEvent(QInputMethodEvent *event)
{
    QInputMethodEvent input(event->preeditString(), event->attributes());
    input.setCommitString(allowed(event->commitString()), event->replacementStart(),
                          event->replacementLength());
    QLineEdit::inputMethodEvent(&input);
    event->setAccepted(input.isAccepted());
}

// What ends the edit otherwise mostly takes the focus away as well, which must not end it twice.
void QMLineEdit::end()
{
    if (!is_over)
        emit editingFinished();
}

void QMLineEdit::focusOutEvent(QFocusEvent *event)
{
    {
        // It tells of the end only if the text was edited and the validator likes it.
        const QSignalBlocker blocker(this);
        QLineEdit::focusOutEvent(event);
    }
    end();
}

// Tab ends the edit; where the focus goes then is not for the tab order to say.
bool QMLineEdit::focusNextPrevChild(bool)
{
    end();
    return true;
}

bool QMLineEdit::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Wheel && object != this && object->isWidgetType())
        end();
    return QLineEdit::eventFilter(object, event);
}
