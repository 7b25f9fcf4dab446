#ifndef TALM_BASE_H
#define TALM_BASE_H

/**
 * @file
 * The application's base library: the registry of numbered host variables and
 * functions, and the event log. The implementation beside the toolkit is a
 * complete small host; an application puts its own library in its place or
 * fills this one's registry.
 */

#include <stdint.h>

#include "talm/base_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The product version, as 100 times the release. */
extern TALM_BASE_API int32_t TsCadVer;

TALM_BASE_API void *ApBase(void);
TALM_BASE_API void *ApBaseGetVariable(int32_t number);
TALM_BASE_API void *ApBaseGetFunction(int32_t number);

TALM_BASE_API int32_t EsIsEnabled(void);
TALM_BASE_API int32_t EsCheck(int32_t level, int32_t category);
TALM_BASE_API void EsEnter(int32_t level, const char *text);
TALM_BASE_API void EsLeave(int32_t level);
TALM_BASE_API void EsPut(int32_t category, int32_t type, const char *format, ...);
TALM_BASE_API void EsLog(int32_t category, int32_t level, const char *format, ...);
TALM_BASE_API void EsLogGeneral(const char *source, int32_t level, const char *format, ...);
TALM_BASE_API void EsLogControl(int32_t category, int32_t level);
TALM_BASE_API int32_t EsControlHasForm(void);
TALM_BASE_API void EsControlGetField(const char *format, ...);
TALM_BASE_API const char *EsGeneralGetLabel(int32_t level);
TALM_BASE_API const char *EsGeneralGetName(int32_t category);
TALM_BASE_API void EsReport(void);

#ifdef __cplusplus
}
#endif

#endif
