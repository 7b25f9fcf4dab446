#ifndef TALM_CONFIG_H
#define TALM_CONFIG_H

/**
 * @file
 * The application's configuration library: who answers for option values and
 * for the user's folders. The managers themselves are C++: talm/config.hpp.
 *
 * Threads   every function may be called from any thread at any time.
 *
 * Option files. The library's own manager of option values reads four files,
 * each of lines
 *
 *     # a comment
 *     Vx.EscapeCount = 500
 *
 * Blanks around key and value do not count, the first "=" divides, the value
 * goes to the line's end (quotes are part of it), of equal keys in a file the
 * last counts, and keys are compared exactly.
 *
 *     file  whose options      where
 *     0     the user's         {user}/options/user.opt
 *     1     a session's        {user}/options/session.opt
 *     2     a site's           {product}/options/site.opt
 *     3     the installation's {product}/options/defaults.opt
 *
 * {user} is the environment variable VX_USER_DIR, else .local/share/vx in the
 * home directory; {product} is the folder of the running program. An option
 * has the value of the lowest file that holds it; its default is that of
 * file 3. Nothing is known before the files are loaded (VxAcmLoad). A user's
 * new value is stored in file 0 at once.
 *
 * Faults are told in the event log under "Options": a line that says nothing
 * with file and line number, as a warning, and the other lines count; a file
 * that is not there as information, for file 3 as an error.
 *
 * User folders. The library's own manager knows, in the toolkit's spelling
 * (backslashes):
 *
 *     4, 5  {user}\work              the working folder
 *     9     {user}\user              the user's own files
 *     10    {user}\templates
 *     14    {user}\search_paths.txt  the saved search paths (a file)
 *     18    {user}\documents
 *
 * The environment variable VX_FOLDER_4 (and so on, for any number) names
 * another folder. Bytes are passed on as the system has them: where names
 * hold more than ASCII, run under a UTF-8 locale or install a manager that
 * knows better. None of the folders is made here.
 */

#include <stdint.h>

#include "talm/config_export.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct IConfigMgr IConfigMgr;
typedef struct IUserFolderMgr IUserFolderMgr;

/** The manager of option values: the installed one, else the library's own. */
TALM_CONFIG_API IConfigMgr *GetIConfigMgr(void);

/** The manager of user folders: the installed one, else the library's own. */
TALM_CONFIG_API IUserFolderMgr *GetIUserFolderMgr(void);

/** Install the application's own manager; null takes it back. It stays the application's. */
TALM_CONFIG_API void TalmSetConfigMgr(IConfigMgr *manager);
TALM_CONFIG_API void TalmSetUserFolderMgr(IUserFolderMgr *manager);

/**
 * Where the library's own manager finds an option file. The file's present
 * values are forgotten until it is loaded again.
 *
 * @param file  0 to 3
 * @param path  a name as the system takes it; null for the place above
 * @return 0, or 1 for another number or no memory
 */
TALM_CONFIG_API uint32_t TalmSetOptionFile(int32_t file, const char *path);

/** 0 in the primary instance of the application. The application sets it before it starts the toolkit. */
extern TALM_CONFIG_API int32_t VgInstance;

#ifdef __cplusplus
}
#endif

#endif
