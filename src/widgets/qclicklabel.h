#pragma once

#include <QLabel>

/*! A label that tells of every mouse press. */
class QClickLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
};
