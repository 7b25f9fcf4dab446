#ifndef VX_JOURNAL_H
#define VX_JOURNAL_H

/**
 * @file
 * The session journal: a text file that gets one line for each action of the
 * user. Each line opens and closes the file, so the journal survives a crash
 * up to its last line. Journaling is off while no path is set.
 *
 * File         Every line ends in CR LF. A file that is made here begins with
 *              "[YYYY-MM-DD hh:mm:ss] log start!" in local time. When it has
 *              more than option "Vx.SessionJournalSize" MiB (100 without the
 *              option), the next line empties it, without a new beginning.
 * Results      0 done, 1 failed.
 * Threads      Main thread only. Lines of several processes never mix.
 *
 * VxToolsInit() sets the path from the options "Vx.SessionJournalOpt" and
 * "Vx.SessionJournal"; VxToolsExit() ends the journal.
 */

#include "vx/types.h"

VX_C_BEGIN

/**
 * Set the journal's path; nothing is written yet. A blank path turns the
 * journal off, unless host function 41 answers that it is to be kept.
 *
 * @param path  made canonical (VxPathReal), at most 255 bytes
 * @return 0, or 1 for a path that is too long (error 55), cannot be resolved
 *         (error 44), or lies in no existing folder (error 65); the journal
 *         then goes where it went before
 */
VX_API uint32_t VxJnlPathSet(const char *path);

/**
 * Append a line, in one write. Off or with a null line nothing happens.
 * @return 0, or 1 when the file cannot be opened (another process may be
 *         writing it at this moment) or the line not be written
 */
VX_API uint32_t VxJnlPrint(const char *line);

/** Turn the journal off and forget which files this session wrote. @return 0 */
VX_API uint32_t VxJnlExit(void);

VX_C_END

#endif
