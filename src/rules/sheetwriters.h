#pragma once

#include <QByteArray>
#include <QString>

class RouterModel;
struct Sheet;

/*!
 * The formats of the as-built sheet, in UTF-8. What comes from a file or a router is escaped for
 * the format: it is always text, never markup, never a formula of a spreadsheet.
 */
namespace SheetWriters {

/*! Plain text, one fact a line, and nothing that changes while the rules don't: made for diff. */
QByteArray text(const Sheet &sheet);

/*! Tables as GitHub and its like show them. */
QByteArray markdown(const Sheet &sheet, const QString &title);

/*! One page without anything from outside, for A4 and for a phone. */
QByteArray html(const Sheet &sheet, const QString &title);

/*! One table after RFC 4180; its first column tells outputs, channels and inputs apart. */
QByteArray csv(const Sheet &sheet);

/*! \a model for programs, with its texts as they are. docs/rules.schema.json describes it. */
QByteArray json(const RouterModel &model);

} // namespace SheetWriters
