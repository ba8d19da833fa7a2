#pragma once

#include <QByteArray>

/*!
 * Checked sentences of the tests. The sum is computed here, byte by byte, so that a test never
 * leans on the code that it tests.
 */

/*! The exclusive OR of the bytes of \a body behind its '$'. */
quint8 xorSum(const QByteArray &body);

/*! \a body, a star, the two digits of its checksum, CR LF. */
QByteArray checkedLine(const QByteArray &body);

/*! As checkedLine(), with a checksum that differs from the right one in its lowest bit. */
QByteArray wronglyCheckedLine(const QByteArray &body);
