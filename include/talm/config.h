#ifndef TALM_CONFIG_H
#define TALM_CONFIG_H

/**
 * @file
 * The application's configuration library: who answers for option values and
 * for the user's folders. The managers themselves are C++: talm/config.hpp.
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

/** 0 in the primary instance of the application. */
extern TALM_CONFIG_API int32_t VgInstance;

#ifdef __cplusplus
}
#endif

#endif
