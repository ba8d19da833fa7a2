#include "widgets/uiscale.h"

#include "platform/screen.h"

#include <QLabel>

double ui_scale()
{
    constexpr double designResolution = 96.0;
    return platform::logicalDotsPerInch() / designResolution;
}

int scaled(int length, double factor)
{
    return int(length * factor);
}

void scaleWidget(QWidget *widget, float factor)
{
    const auto cut = [factor](int length) { return int(float(length) * factor); };
    widget->move(cut(widget->x()), cut(widget->y()));
    widget->setMinimumSize(cut(widget->width()), cut(widget->height()));
}

void fitText(QLabel *label)
{
    constexpr qreal smallestFont = 6;
    constexpr qreal step = 0.25;
    QFont font = label->font();
    while (label->sizeHint().width() > label->minimumWidth() && font.pointSizeF() > smallestFont) {
        font.setPointSizeF(font.pointSizeF() - step);
        label->setFont(font);
    }
}
