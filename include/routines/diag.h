/** The log. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_DIAG_H
#define ZV_ROUTINES_DIAG_H

#include "records.h"
#include "zvRenew.h"

extern "C" {

/**
 * Gives the path of the user's log, 512 characters at most: home directory, "/.trevallo/zvRenew.log".
 *
 * The home directory is that of the user database; the variable HOME serves only when the database does not
 * know the user. The path is made on the first call and stays, unless a caller writes another one into it.
 *
 * @return a buffer of the process of 513 bytes; an empty text without a home directory: nothing is then
 *         logged
 */
ZV_API char* getLogPath(void);
/**
 * Appends one line to the log: "[DD Mon YYYY HH:MM:SS]: " in local time, and the message.
 *
 * A log of more than 1,048,576 bytes is emptied first: what it held is lost, a file with ".1" behind the
 * log's name is created empty, and the log begins with four lines that name the library. A missing log is
 * created with mode 0600, its directory is not; one that is there gets that mode once a process.
 *
 * @param[in] message  the text; null and empty become "MESSAGGIO VUOTO!"
 * After a failure (a log that cannot be opened, a link, no plain file, another user's): nothing is written, nobody is
 * told.
 */
ZV_API void scriviLog(const char* message);
/**
 * Appends an entry to the log: a title line with the local time, then up to two data. Never empties the log.
 *
 * @param[in] title         text of the title line; null is empty
 * @param[in] data1, data2  a datum
 * @param[in] len1, len2    0: the datum is a text, null writes nothing; positive: exactly that many raw bytes
 *                          and a line end, the line end alone for null; negative: an empty line
 * After a failure: as scriviLog.
 */
ZV_API void WriteLog(const char* title, const char* data1, int len1, const char* data2, int len2);
/** WriteLog, for entries that report an error: same arguments, same output. */
ZV_API void WriteErr(const char* title, const char* data1, int len1, const char* data2, int len2);
/**
 * Logs the fields of a subject down to the e-mail address (locality, title, pseudonym and province are left
 * out); null or a lack of memory logs nothing. No caller inside the library.
 */
ZV_API void LogDN(datiDN* dn);
/**
 * Logs certificate label and pending label of a request; null or a lack of memory logs nothing. No caller
 * inside the library.
 */
ZV_API void LogLabels(REQRENIN* request);

} // extern "C"

#endif
