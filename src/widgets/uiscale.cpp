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
    fitText(label, label->minimumWidth());
}

void fitText(QLabel *label, int width)
{
    constexpr qreal smallestFont = 7.5;
    constexpr qreal step = 0.25;
    constexpr int smallestStretch = 80; // per cent
    // Not its size hint, which is never less than the minimum width.
    const auto textWidth = [label] { return label->fontMetrics().size(0, label->text()).width(); };
    QFont font = label->font();
    while (textWidth() > width && font.pointSizeF() > smallestFont) {
        font.setPointSizeF(font.pointSizeF() - step);
        label->setFont(font);
    }
    // Narrower letters can be read where smaller ones can't.
    for (int stretch = 99; textWidth() > width && stretch >= smallestStretch; --stretch) {
        font.setStretch(stretch);
        label->setFont(font);
    }
}
