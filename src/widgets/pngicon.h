#pragma once

#include <QIcon>

/*!
 * The icon in the PNG file \a path, drawn as one that QIcon has read itself.
 *
 * Before QIcon reads a file it loads every plug-in for pictures that is installed, and the
 * libraries behind them. Qt reads PNG without any.
 */
QIcon pngIcon(const QString &path);
