#ifndef VX_TOOLS_H
#define VX_TOOLS_H

/**
 * @file
 * Module start-up and the exported global state.
 */

#include "vx/types.h"
#include "vx/eval.h"

VX_C_BEGIN

/** A 3-by-4 transform; `kind` 1 with identity content after VxMathGlobal. */
typedef struct VxMat3x4 {
    int32_t kind;
    double m[3][4];
} VxMat3x4;

VX_API uint32_t VxToolsInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));
VX_API uint32_t VxToolsGlobal(void);
VX_API uint32_t VxToolsCfgInit(void);
VX_API uint32_t VxToolsGlobalRepeat(void);
VX_API uint32_t VxToolsExit(void);
VX_API int32_t VxToolsErrID(void);
VX_API int32_t VxToolsMsgID(void);
VX_API int32_t VxPelmorErrID(void);
VX_API int32_t VxPelmorMsgID(void);
VX_API int32_t VxPelmorFailureMsgID(void);
VX_API uint32_t VxMathInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));
VX_API uint32_t VxMathExit(void);
VX_API uint32_t VxMathGlobal(void);
VX_API int32_t VxMathErrID(void);
VX_API uint32_t VxDmgrInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));
VX_API uint32_t VxDmgrExit(void);
VX_API uint32_t VxDmgrGlobal(void);
VX_API int32_t VxDmgrErrID(void);
VX_API int32_t VxDmgrMsgID(void);
VX_API const char *GetVerNum(void);
VX_API void VxStopError(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0), intptr_t a2 VX_DEFAULT(0), intptr_t a3 VX_DEFAULT(0));
VX_API void VxStopHere(void);
VX_API uint32_t VxSigInit(void);
VX_API void ExactInit(void);
VX_API int32_t VxFunctionProfilerOn(void);
VX_API int32_t VxFunctionProfilerOff(void);
extern VX_API int32_t VgFtrVersion;
extern VX_API char VgVXExt[3];
extern VX_API char VgHKExt[3];
extern VX_API char VgHKPrtExt[8];
extern VX_API char VgHKDrwExt[8];
extern VX_API char VgHKCamExt[8];
extern VX_API char VgHKSkhExt[8];
extern VX_API char VgHKLibExt[4];
extern VX_API char VgHKSntExt[4];
extern VX_API char VgHKEdpExt[4];
extern VX_API char VgViewerExt[4];
extern VX_API char VgLblMethod;
extern VX_API char VgDefaultLblMethod;
extern VX_API char VgCompanyName[32];
extern VX_API char VgCompanyId[32];
extern VX_API char VgCompanyProduct[32];
extern VX_API char VgCompanyCopyRight[512];
extern VX_API int32_t VgCopyRightYear;
extern VX_API char VgPathsName[16];
extern VX_API char VgFnDefName[40];
extern VX_API char VgVerNum[64];
extern VX_API char VgFileVersion[64];
extern VX_API char VgProductCode[8];
extern VX_API int32_t VgUnitId;
extern VX_API int32_t VgEscapeCnt;
extern VX_API int32_t VgEmergencyBackup;
extern VX_API int32_t VgGetLatestRev;
extern VX_API int32_t VgMsgGuiIsUp;
extern VX_API int32_t VgDeferPostedEventMsg;
extern VX_API int32_t VgDeferPostedEventEnabled;
extern VX_API int32_t VgDisplayIsActive;
extern VX_API int32_t VgProductionRelease;
extern VX_API int32_t VgTplCompile;
extern VX_API int32_t VgMemLeak;
extern VX_API int32_t VgQaReportTtErr;
extern VX_API int32_t VgVerifySilent;
extern VX_API int32_t VgGenFlgDbg1;
extern VX_API int32_t VgGenFlgDbg2;
extern VX_API int32_t VgGenFlgDbg3;
extern VX_API int32_t VgPathFindPDMSkip;
extern VX_API int32_t VgPathFindTPL;
extern VX_API int32_t VgPathFindBDL;
extern VX_API int32_t VgCdValIsRad;
extern VX_API int32_t VgPreviewProgressValue;
extern VX_API int32_t (*VgGetPromptFn)(char *buf, int32_t size);
extern VX_API int32_t (*VgDspMessage)(const char *text);
extern VX_API int32_t (*VgDspPromptFn)(const char *text);
extern VX_API int32_t (*VgProgressCb)(intptr_t, intptr_t, intptr_t, intptr_t);
extern VX_API uint32_t (*VgfVarGetVal)(const char *name, void *ctx1, void *ctx2, VxDimNum *inout);
extern VX_API uint32_t (*VgfDcmVarGetVal)(const char *name, void *ctx1, void *ctx2, VxDimNum *inout);
extern VX_API uint32_t (*VgfGetUnitConv)(const char *unit, double *factor, int32_t *unitClass);
extern VX_API int32_t VgErrOccurred;
extern VX_API int32_t VgActiveErrOccurred;
extern VX_API double VgScale;
extern VX_API int32_t VgOptimStopFlag;
extern VX_API int32_t VgOptimIsRunning;
extern VX_API void *VgOptimMarchReactor[8];
extern VX_API double Vgepsilon;
extern VX_API double Vgsplitter;
extern VX_API double VgccwerrboundA;
extern VX_API double VgccwerrboundB;
extern VX_API double VgccwerrboundC;
extern VX_API double VgccwerrboundD;
extern VX_API double VgiccerrboundA;
extern VX_API double VgiccerrboundB;
extern VX_API double VgiccerrboundC;
extern VX_API int32_t VgFpExceptMask;
extern VX_API int32_t VgFpExceptStatus;
extern VX_API int32_t VgStopAtFpError;
extern VX_API char VgUserName[256];
extern VX_API double VgExecutionTime;

VX_C_END

#endif
