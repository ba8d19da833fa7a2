#include "widgets/qmlineedit.h"

#include <QKeyEvent>
#include <QRegExpValidator>

namespace {

bool isForbidden(QChar character)
{
    static const QString sentenceMarks = QStringLiteral("!$*,");
    return sentenceMarks.contains(character);
}

} // namespace

QMLineEdit::QMLineEdit()
{
    setValidator(new QRegExpValidator(
        QRegExp(QStringLiteral("[a-z -Z]*"), Qt::CaseSensitive, QRegExp::RegExp), this));
    grabMouse();
    setDragEnabled(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    // A press outside must not reach the widget below as if it were a press on it.
    setAttribute(Qt::WA_NoMousePropagation);
    connect(this, &QLineEdit::textEdited, this, &QMLineEdit::dropForbidden);
}

void QMLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        emit editingFinished();
        return;
    }
    const QString typed = event->text();
    if (typed.size() == 1 && isForbidden(typed.at(0))) {
        event->ignore();
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

// Keys are refused one by one; this is for what is pasted.
void QMLineEdit::dropForbidden(const QString &edited)
{
    QString allowed = edited;
    for (int i = allowed.size() - 1; i >= 0; --i) {
        if (isForbidden(allowed.at(i)))
            allowed.remove(i, 1);
    }
    if (allowed != edited)
        setText(allowed);
}
