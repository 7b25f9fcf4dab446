#ifndef VX_SYS_H
#define VX_SYS_H

/**
 * @file
 * Processes, system information and settings.
 *
 * Settings     Texts by key ("Software\Company\Product") and name, in the
 *              system's registry. Where the system has none, in a key file:
 *              VX_REGISTRY_FILE, else .config/vx/registry.ini in the user's
 *              home, whose sections are the keys; the machine's begin with
 *              HKEY_LOCAL_MACHINE. Keys and names ignore case. Processes that
 *              write at once do not lose each other's settings.
 * Results      0 done, 1 failed, without a message.
 * Threads      Settings may be read and written from any thread.
 */

#include "vx/types.h"

VX_C_BEGIN

/**
 * Read a setting.
 * @param root  0 the current user's, 1 the machine's
 * @return 0, or 1 when there is none or it does not fit; `buf` is then empty
 */
VX_API uint32_t VxRegistryGet(int32_t root, const char *key, const char *value, char *buf, int32_t size);

/**
 * Write a setting, with its key when needed. A text may hold anything, line
 * breaks too; key and name may not have line breaks, and in a key file the
 * name no "=" and no "[", "#" or ";" in front.
 * @return 0, or 1 when it cannot be written; the settings are then as they were
 */
VX_API uint32_t VxRegistrySet(int32_t root, const char *key, const char *value, const char *text);

VX_C_END

#endif
