#pragma once

#include <QWidget>

class QLabel;

/*!
 * Every window is designed for a screen of 96 dots per inch; on another screen its size and the
 * places of its children are multiplied by ui_scale().
 */

/*! The primary screen's logical dots per inch over 96. Computed anew by each call. */
double ui_scale();

/*! \a length in design pixels on this screen, cut towards zero. */
int scaled(int length, double factor);

/*!
 * Moves \a widget to its position times \a factor and sets its minimum size to its size times
 * \a factor, all cut towards zero.
 */
void scaleWidget(QWidget *widget, float factor);

/*!
 * Makes the font of \a label smaller, down to 7.5 points, and then its letters narrower until its
 * text fits its minimum width: the fonts of a machine can be wider than those of the design.
 */
void fitText(QLabel *label);

/*! The same for a label whose text must not take more than \a width pixels. */
void fitText(QLabel *label, int width);

/*!
 * Runs scaleWidget() for all descendants of \a window of the given types, type by type. The popups of
 * its combo boxes are windows of their own and size themselves.
 */
template <typename... Types> void scaleChildren(QWidget *window, float factor)
{
    const auto scaleType = [window, factor](auto *type) {
        using Type = std::remove_pointer_t<decltype(type)>;
        const auto children = window->findChildren<Type *>();
        for (Type *child : children) {
            if (child->window() == window->window())
                scaleWidget(child, factor);
        }
    };
    (scaleType(static_cast<Types *>(nullptr)), ...);
}
