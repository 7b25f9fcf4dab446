#ifndef VX_TOOLS_H
#define VX_TOOLS_H

/**
 * @file
 * Starting and stopping the toolkit, and its exported global state.
 *
 * A host starts in this order:
 *
 *     VxAcmLoad();                     // the option files          vx/config.h
 *     VxPathInit();                    // where things lie          vx/path.h
 *     VxLangSet("en_US");              // language and code page    vx/lang.h
 *     VxPathLogLang();                 // the language's folders    vx/path.h
 *     if (VxToolsInit() || VxMathInit() || VxDmgrInit() || VxMemInit())
 *         return EXIT_FAILURE;         // the toolkit cannot be used
 *
 *     ...                              // formulas, files, messages
 *
 *     VxMemExit();
 *     VxDmgrExit();
 *     VxMathExit();
 *     VxToolsExit();                   // after it the host may start again
 *
 * What stands before VxToolsInit may be left out or fail: without VxPathInit
 * texts are looked for relative to the current directory, without VxLangSet
 * there are no translations. VxToolsInit is the first of the modules. Among
 * the other three the order is free, and a host that needs no search paths
 * leaves VxDmgrInit out.
 *
 * Results      0, or 1 when a step failed; what was done before that step
 *              stays done. Failures are printed to standard output, since
 *              the error log has no texts yet.
 * Threads      Start and stop on the main thread, while no other thread uses
 *              the toolkit.
 * Variables    Plain and unsynchronised: the host sets them at its start, or
 *              when no other thread uses what they steer. "Host" below marks
 *              those that the toolkit only carries, for its hosts.
 */

#include "vx/types.h"
#include "vx/eval.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- the core module */

/**
 * Start the toolkit. In this order, ending at the first step that fails:
 * alert file and messages of the toolkit, of the edition (its alert file and
 * two catalogues), VxToolsGlobal, the symbols "f_report", "VerNum",
 * "VxFunctionProfilerOn" and "VxFunctionProfilerOff", the default display of
 * errors; last VxSigInit, whose outcome does not count.
 *
 * A message catalogue that is there but says nothing is no failure. A second
 * call without VxToolsExit loads the catalogues again under new ids.
 *
 * @param a, b  ignored
 * @return 0, or 1 when a text file is missing or there is no memory
 */
VX_API uint32_t VxToolsInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));

/**
 * Set the global state as at a start: the banner in VgCompanyCopyRight, the
 * start-up options (VxToolsCfgInit), label methods, debug switches, escape
 * hooks, the heap storage manager (which gives up all its areas) and
 * VgPageSize. Always 0.
 */
VX_API uint32_t VxToolsGlobal(void);

/**
 * Read the options of the start; one that is absent changes nothing.
 *
 *   Vx.LatestRev          yes or no, to VgGetLatestRev
 *   Vx.EmergencyBackup    yes or no, to VgEmergencyBackup
 *   Vx.EscapeCount        to VgEscapeCnt; below 1 becomes 1, above 1000 becomes 1000
 *   Vx.SessionJournalOpt  when yes, the journal is Vx.SessionJournal, else there is none
 *
 * Always 0.
 */
VX_API uint32_t VxToolsCfgInit(void);

/** Set VgLblMethod and VgDefaultLblMethod back to 10. Always 0. */
VX_API uint32_t VxToolsGlobalRepeat(void);

/**
 * Stop the toolkit: frees the language state, the path registry, the journal
 * and the records of open files, displays the pending errors and frees all
 * message catalogues, so that every message id is -1 again. Alert files and
 * symbols stay. Always 0.
 */
VX_API uint32_t VxToolsExit(void);

/** Ids of the toolkit's and the edition's alert files (vx/err.h); -1 before they are loaded. */
VX_API int32_t VxToolsErrID(void);
VX_API int32_t VxPelmorErrID(void);

/** Ids of their message catalogues (vx/msg.h); -1 while they are not loaded. */
VX_API int32_t VxToolsMsgID(void);
VX_API int32_t VxPelmorMsgID(void);
VX_API int32_t VxPelmorFailureMsgID(void);

/* ---------------------------------------------------------------- the numerical module */

/** Load the module's texts and set its state: 0, or 1 when a text file is missing. Arguments are ignored. */
VX_API uint32_t VxMathInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));

/** Nothing is kept that had to be freed. Always 0. */
VX_API uint32_t VxMathExit(void);

/**
 * Set the numerical state: VgOptimMarchReactor cleared, VgIdentMat3 the
 * identity, traces to standard error at level 0, the tables of sines and
 * cosines of whole degrees, ExactInit. Always 0.
 */
VX_API uint32_t VxMathGlobal(void);

/** Id of the module's alert file; -1 before it is loaded. */
VX_API int32_t VxMathErrID(void);

/**
 * Set the constants of the robust geometric predicates for doubles that round
 * to nearest.
 *
 * @source J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and
 *         Fast Robust Geometric Predicates", Discrete & Computational
 *         Geometry 18 (1997)
 */
VX_API void ExactInit(void);

/* ---------------------------------------------------------------- the search paths' module */

/** Load the module's texts and the saved search paths (vx/dmpath.h): 0 or 1. Arguments are ignored. */
VX_API uint32_t VxDmgrInit(void *a VX_DEFAULT(0), void *b VX_DEFAULT(0));

/** Free the search paths. Always 0. */
VX_API uint32_t VxDmgrExit(void);

/** No active path, no component path, and searching switched on. Always 0. */
VX_API uint32_t VxDmgrGlobal(void);

/** Ids of the module's texts; -1 while they are not loaded. */
VX_API int32_t VxDmgrErrID(void);
VX_API int32_t VxDmgrMsgID(void);

/* ---------------------------------------------------------------- version, stops, signals */

/** The build stamp, always the same address: that of VgVerNum. */
VX_API const char *GetVerNum(void);

/**
 * Tell the host of an internal contradiction: when `a0` is not 0 and the host
 * has function 72, it gets the four words. What stopping means is its affair.
 */
VX_API void VxStopError(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0), intptr_t a2 VX_DEFAULT(0),
                        intptr_t a3 VX_DEFAULT(0));

/** Does nothing: a place for a debugger's breakpoint. */
VX_API void VxStopHere(void);

/**
 * Watch the signals that end a process: interrupt, illegal instruction,
 * abort, floating-point error, segmentation violation, termination. When one
 * comes, a text goes to standard error, the call-backs of VxSigAddCall
 * (vx/escape.h) run in slot order, and then the process meets what would have
 * met it without this watch: the handler that stood before, or its end. A
 * call-back that crashes itself ends the process; no call-back runs twice for
 * that. On the main thread also a stack overflow is survived that long.
 *
 * With the environment variable VX_SIG_DISABLE set, nothing is watched, which
 * is said on standard output. A second call watches no second time.
 *
 * @return 0, or 1 when the system refused a signal; the others are watched
 */
VX_API uint32_t VxSigInit(void);

/** Switch the host's function profiler: remembered only. Always 0. */
VX_API int32_t VxFunctionProfilerOn(void);
VX_API int32_t VxFunctionProfilerOff(void);

/* ---------------------------------------------------------------- product and files */

extern VX_API int32_t VgFtrVersion; /**< 32000: feature version of the data model */
extern VX_API char VgVXExt[3];      /**< "VX": stem of native file extensions */
extern VX_API char VgHKExt[3];      /**< "Tl": stem of the product's extensions and option keys */
extern VX_API char VgHKPrtExt[8];   /**< "TlPRT": part files */
extern VX_API char VgHKDrwExt[8];   /**< "TlDRW": drawings */
extern VX_API char VgHKCamExt[8];   /**< "TlCAM": machining files */
extern VX_API char VgHKSkhExt[8];   /**< "TlSKH": sketches */
extern VX_API char VgHKLibExt[4];   /**< "tll": libraries */
extern VX_API char VgHKSntExt[4];   /**< "snt" */
extern VX_API char VgHKEdpExt[4];   /**< "edp" */
extern VX_API char VgViewerExt[4];  /**< "TlD": viewer files */

extern VX_API char VgLblMethod;        /**< 10: how labels are made; host */
extern VX_API char VgDefaultLblMethod; /**< 10: likewise where nothing else is said; host */

extern VX_API char VgCompanyName[32];       /**< the maker's full name */
extern VX_API char VgCompanyId[32];         /**< the maker's short name */
extern VX_API char VgCompanyProduct[32];    /**< "Pelmor": the edition; names the user's documents folder */
extern VX_API char VgCompanyCopyRight[512]; /**< empty; the legal notice, six lines, from VxToolsGlobal on */
extern VX_API int32_t VgCopyRightYear;      /**< 2020 */

extern VX_API char VgPathsName[16];   /**< "_paths" */
extern VX_API char VgFnDefName[40];   /**< "VX Simplex Roman": the default font */
extern VX_API char VgVerNum[64];      /**< "VERNUM:MM/DD/YYYY(revision:changeset)" of the build */
extern VX_API char VgFileVersion[64]; /**< empty: version asked for in product-data look-ups (vx/dmpath.h) */
extern VX_API char VgProductCode[8];  /**< zero; host */
extern VX_API int32_t VgUnitId;       /**< 1; host */
extern VX_API char VgUserName[256];   /**< empty; host */

/* ---------------------------------------------------------------- session and behaviour
 *
 * Yes is 1, no is 0. All are 0 at the start of the process unless said.
 */

extern VX_API int32_t VgEscapeCnt;               /**< 500: work steps between escape checks, 1 to 1000 */
extern VX_API int32_t VgEmergencyBackup;         /**< save open work after a fatal signal; host */
extern VX_API int32_t VgGetLatestRev;            /**< take the latest revision in product-data look-ups */
extern VX_API int32_t VgMsgGuiIsUp;              /**< the host's message window exists (vx/msg.h) */
extern VX_API int32_t VgDeferPostedEventMsg;     /**< 1; host */
extern VX_API int32_t VgDeferPostedEventEnabled; /**< 1; host */
extern VX_API int32_t VgDisplayIsActive;         /**< host */
extern VX_API int32_t VgProductionRelease;       /**< host */
extern VX_API int32_t VgTplCompile;              /**< VxPathInit leaves the user's folders alone */
extern VX_API int32_t VgMemLeak;                 /**< tell the tracer of refused requests (vx/mem.h) */
extern VX_API int32_t VgQaReportTtErr;           /**< host */
extern VX_API int32_t VgVerifySilent;            /**< host */
extern VX_API int32_t VgGenFlgDbg1;              /**< host */
extern VX_API int32_t VgGenFlgDbg2;              /**< host */
extern VX_API int32_t VgGenFlgDbg3;              /**< host */
extern VX_API int32_t VgPathFindPDMSkip;         /**< the next VxPathFindPDM does nothing but clear this */
extern VX_API int32_t VgPathFindTPL;             /**< DmFileFind asks the path registry first */
extern VX_API int32_t VgPathFindBDL;             /**< likewise */
extern VX_API int32_t VgCdValIsRad;              /**< angles without a unit are radians; 0: degrees */
extern VX_API int32_t VgPreviewProgressValue;    /**< host */
extern VX_API double VgExecutionTime;            /**< seconds; host */

/* ---------------------------------------------------------------- call-backs of the host
 *
 * All are null until the host sets them.
 */

/** Ask the user for a text of at most `size` bytes; host. */
extern VX_API int32_t (*VgGetPromptFn)(char *buf, int32_t size);

/** Show a text to the user; host. */
extern VX_API int32_t (*VgDspMessage)(const char *text);

/** Show a prompt to the user; host. */
extern VX_API int32_t (*VgDspPromptFn)(const char *text);

/** Told how far a long computation is: see VxProgress in vx/escape.h. */
extern VX_API int32_t (*VgProgressCb)(intptr_t, intptr_t, intptr_t, intptr_t);

/** Supplies the value of a variable of a formula (vx/eval.h): 0 when it did. */
extern VX_API uint32_t (*VgfVarGetVal)(const char *name, void *ctx1, void *ctx2, VxDimNum *inout);

/** The same for variables of documents; host. */
extern VX_API uint32_t (*VgfDcmVarGetVal)(const char *name, void *ctx1, void *ctx2, VxDimNum *inout);

/** Knows units of the host's own: factor and class, which may be null. 0 when it knows the unit. */
extern VX_API uint32_t (*VgfGetUnitConv)(const char *unit, double *factor, int32_t *unitClass);

/* ---------------------------------------------------------------- errors */

extern VX_API int32_t VgErrOccurred;       /**< 1 once an error was logged; only the host clears it */
extern VX_API int32_t VgActiveErrOccurred; /**< 1 once an error was displayed; see VxErrDisplay in vx/err.h */

/* ---------------------------------------------------------------- numerics */

/** A transform of three rows and four columns. */
typedef struct VxMat3x4 {
    int32_t kind; /**< 1: identity */
    double m[3][4];
} VxMat3x4;

extern VX_API VxMat3x4 VgIdentMat3;         /**< zero; the identity from VxMathGlobal on */
extern VX_API double VgScale;               /**< 1.0; host */
extern VX_API int32_t VgOptimStopFlag;      /**< 0; host */
extern VX_API int32_t VgOptimIsRunning;     /**< 0; host */
extern VX_API void *VgOptimMarchReactor[8]; /**< zero; host */

/** Zero until ExactInit: 2^-53, the rounding error of 1, and 2^27 + 1, which splits a double in halves. */
extern VX_API double Vgepsilon;
extern VX_API double Vgsplitter;

/** Zero until ExactInit: error bounds of the orientation test and of the in-circle test. */
extern VX_API double VgccwerrboundA;
extern VX_API double VgccwerrboundB;
extern VX_API double VgccwerrboundC;
extern VX_API double VgccwerrboundD;
extern VX_API double VgiccerrboundA;
extern VX_API double VgiccerrboundB;
extern VX_API double VgiccerrboundC;

extern VX_API int32_t VgFpExceptMask;   /**< 8; host */
extern VX_API int32_t VgFpExceptStatus; /**< 0; host */
extern VX_API int32_t VgStopAtFpError;  /**< 0; host */

VX_C_END

#endif
