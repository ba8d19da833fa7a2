#pragma once

class QObject;

/*!
 * Holds the records that are never deleted.
 *
 * A window may go on reading a target or an alarm after it has left its list, and after the QAis
 * that made it has gone. Such a record therefore lives until the program ends; being held here, it
 * stays within reach of leak checkers. Main thread only.
 */
namespace KeptRecords {

/*! Keeps \a record, which must have no parent, for the life of the program. */
void keep(QObject *record);

/*! How many records are kept. */
int count();

/*!
 * Deletes all kept records. Only for programs that know that nobody can read any of them any more,
 * as a fuzz program does between two inputs. The tool itself never calls it.
 */
void releaseAll();

} // namespace KeptRecords
