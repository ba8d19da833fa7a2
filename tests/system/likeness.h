#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QVector>

/*! What a part of the window looks like, and what it stands for. */
struct Sight
{
    QImage picture;
    QByteArray meaning;
};

/*! The same to the eye. Gradients that are laid at different heights differ by a rounding. */
bool lookAlike(const QImage &a, const QImage &b);

/*!
 * Parts of one \a kind look alike if, and only if, they stand for the same. The first two that
 * break that, by their numbers; an empty text if none do.
 */
QString likenessProblem(const char *kind, const QVector<Sight> &sights);

/*! The same, one by one. */
bool lookAlike(const QVector<QImage> &a, const QVector<QImage> &b);

/*!
 * What is written in \a cell, in shades of gray on white and without the ground around it, so that
 * it can be compared with the same text on another ground. The ground has the colour of the first
 * pixel. A null image if nothing is written.
 */
QImage inkOf(const QImage &cell);
