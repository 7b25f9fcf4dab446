// The exported variables of vx/tools.h, in the header's order. What the
// toolkit itself does with them is told there.

#include "vx/tools.h"

#include "frame/version_stamp.h"
#include "vx/list.h"

// product and files

int32_t VgFtrVersion = 32000;
char VgVXExt[3] = "VX";
char VgHKExt[3] = "Tl";
char VgHKPrtExt[8] = "TlPRT";
char VgHKDrwExt[8] = "TlDRW";
char VgHKCamExt[8] = "TlCAM";
char VgHKSkhExt[8] = "TlSKH";
char VgHKLibExt[4] = "tll";
char VgHKSntExt[4] = "snt";
char VgHKEdpExt[4] = "edp";
char VgViewerExt[4] = "TlD";

char VgLblMethod = 10;
char VgDefaultLblMethod = 10;

char VgCompanyName[32] = "Pelmor Engineering Software";
char VgCompanyId[32] = "Pelmor";
char VgCompanyProduct[32] = "Pelmor";
char VgCompanyCopyRight[512] = "";
int32_t VgCopyRightYear = 2020;

char VgPathsName[16] = "_paths";
char VgFnDefName[40] = "VX Simplex Roman";
char VgVerNum[64] = VX_VERSION_STAMP;
char VgFileVersion[64] = "";
char VgProductCode[8] = {};
int32_t VgUnitId = 1;
char VgUserName[256] = "";

// session and behaviour

int32_t VgEscapeCnt = 500;
int32_t VgEmergencyBackup = 0;
int32_t VgGetLatestRev = 0;
int32_t VgMsgGuiIsUp = 0;
int32_t VgDeferPostedEventMsg = 1;
int32_t VgDeferPostedEventEnabled = 1;
int32_t VgDisplayIsActive = 0;
int32_t VgProductionRelease = 0;
int32_t VgTplCompile = 0;
int32_t VgMemLeak = 0;
int32_t VgQaReportTtErr = 0;
int32_t VgVerifySilent = 0;
int32_t VgGenFlgDbg1 = 0;
int32_t VgGenFlgDbg2 = 0;
int32_t VgGenFlgDbg3 = 0;
int32_t VgPathFindPDMSkip = 0;
int32_t VgPathFindTPL = 0;
int32_t VgPathFindBDL = 0;
int32_t VgCdValIsRad = 0;
int32_t VgPreviewProgressValue = 0;
double VgExecutionTime = 0;

// call-backs of the host

int32_t (*VgGetPromptFn)(char *, int32_t) = nullptr;
int32_t (*VgDspMessage)(const char *) = nullptr;
int32_t (*VgDspPromptFn)(const char *) = nullptr;
int32_t (*VgProgressCb)(intptr_t, intptr_t, intptr_t, intptr_t) = nullptr;
uint32_t (*VgfVarGetVal)(const char *, void *, void *, VxDimNum *) = nullptr;
uint32_t (*VgfDcmVarGetVal)(const char *, void *, void *, VxDimNum *) = nullptr;
uint32_t (*VgfGetUnitConv)(const char *, double *, int32_t *) = nullptr;

// errors

int32_t VgErrOccurred = 0;
int32_t VgActiveErrOccurred = 0;

// memory

int32_t VgPageSize = 0;

// numerics

VxMat3x4 VgIdentMat3 = {};
double VgScale = 1.0;
int32_t VgOptimStopFlag = 0;
int32_t VgOptimIsRunning = 0;
void *VgOptimMarchReactor[8] = {};
double Vgepsilon = 0;
double Vgsplitter = 0;
double VgccwerrboundA = 0;
double VgccwerrboundB = 0;
double VgccwerrboundC = 0;
double VgccwerrboundD = 0;
double VgiccerrboundA = 0;
double VgiccerrboundB = 0;
double VgiccerrboundC = 0;
int32_t VgFpExceptMask = 8;
int32_t VgFpExceptStatus = 0;
int32_t VgStopAtFpError = 0;
