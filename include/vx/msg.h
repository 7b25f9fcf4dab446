#ifndef VX_MSG_H
#define VX_MSG_H

/**
 * @file
 * Message catalogues, user messages and mapped files.
 *
 * Texts for the user stand in catalogues, numbered by their position. A
 * module loads its catalogue at start-up and keeps the id; before that, and
 * when the catalogue could not be had, the id is -1. A look-up never fails: an
 * unknown catalogue or number gives a text of one blank.
 *
 * Threads   catalogues are loaded and freed on the main thread, at start and
 *           end; look-ups may run on any thread in between. VxMessage and
 *           VxMessage2 go to the host's window: main thread. Mapping may be
 *           done on any thread.
 *
 * Catalogue files
 *
 *     # Widget messages: label, text
 *     0,Welcome.
 *     [Fr]0,Bienvenue.
 *     1,%d of %d widgets
 *
 * Comment lines ("#" in the first column) at the top, then one message a
 * line: a label, a comma, the text to the end of the line. The first message
 * is number 0, the next 1, and so on; the label is for readers and does not
 * count. A line without a comma, with nothing behind it, or with a "#" in its
 * label takes no number. Lines end with LF or CR LF; bytes are in the process
 * code page; a line break inside a text is written as the two characters "\n".
 *
 * A line that begins with "[" is a translation of the message above it. When
 * it begins with the current language's tag (vx/lang.h), in upper or lower
 * case, its text replaces the message's; otherwise it is passed over. A
 * message has at most one translation for a tag: a second one counts as a
 * message of its own and moves all that follow. The language in force at
 * loading decides. A translation takes the same conversions in the same order.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- catalogues */

/**
 * Load a catalogue, at most 130 at a time. The same name twice makes two.
 *
 * @param name  found as VxPathFindIn(name, "text", 1) does
 * @param id    receives the id; left alone when the file cannot be read or
 *              defines no message, which is no failure
 * @return 0; 1 when the table is full ("Unable to load more than %d message
 *         files." is printed) or the file is not found ("Unable to load
 *         message file %s."), each with a line break
 */
VX_API uint32_t VxMsgLoadFile(const char *name, int32_t *id);

/** A message: owned by its catalogue, valid until VxMsgFree. */
VX_API const char *VxMsg(int32_t id, int32_t number);

/** A message of the catalogue loaded under exactly this name, of which 254 bytes count. */
VX_API const char *VxMsgFile(const char *name, int32_t number);

/** Free all catalogues; ids begin at 0 again. Always 0. */
VX_API uint32_t VxMsgFree(void);

/* ---------------------------------------------------------------- messages to the user */

/**
 * Show a text: in the host's message window (host function 106, kind 1, style
 * 1) while VgMsgGuiIsUp is set and the host has one, else printed with a line
 * break.
 *
 * @return 0, or 1 for a null text or when the window reports a failure
 */
VX_API uint32_t VxMessage(const char *text);

/**
 * Ask a question, message 219 + `number` of the toolkit's catalogue, in the
 * host's message window (kind 2, style 1), with "\n" made a real line break.
 *
 * @return 0 for an answer above 0, and when there is no window to ask in; 1
 *         for any other answer, a failure of the window, or no memory
 */
VX_API uint32_t VxMessage2(int32_t number);

/* ---------------------------------------------------------------- mapped files */

/**
 * Map a whole file into memory, at most 1023 at a time.
 *
 * @param mode  0 read an existing file; 1 write, 2 read and write: both give
 *              a view for reading and writing, and make a missing file, which
 *              is empty and so cannot be mapped yet
 * @param size  receives the file's size in bytes
 * @return the view, shared with every other user of the file; null for a
 *         file that cannot be opened or is empty, with the table full, or
 *         for no memory; `size` is then as it was
 */
VX_API void *VxMap(const char *fileName, int32_t mode, int64_t *size);

/**
 * End a view; what was written to it reaches the file.
 *
 * @return 0; 1 for an address that is no view, or when a step failed: the
 *         view is gone all the same
 */
VX_API uint32_t VxUnMap(void *view);

VX_C_END

#endif
