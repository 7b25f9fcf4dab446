// Start and end of the core module, its global state, stamp and stops.

#include "vx/tools.h"

#include <algorithm>
#include <cstdio>
#include <exception>

#include "frame/modules.h"
#include "heap/pool.h"
#include "platform/os/os.h"
#include "talm/base.hpp"
#include "vx/compress.h"
#include "vx/config.h"
#include "vx/debug.h"
#include "vx/err.h"
#include "vx/escape.h"
#include "vx/journal.h"
#include "vx/lang.h"
#include "vx/list.h"
#include "vx/msg.h"
#include "vx/openfile.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/sym.h"

namespace vx::frame {

Modules &modules()
{
    static constinit Modules state;
    return state;
}

bool loadTexts(ModuleTexts &module, const char *alertFile, const char *catalogue)
{
    return VxErrLoadFile(alertFile, &module.errors) == 0 && VxMsgLoadFile(catalogue, &module.messages) == 0;
}

}

using vx::frame::Modules;
using vx::frame::modules;

namespace {

constexpr char labelMethod = 10;
constexpr int32_t fewestEscapeSteps = 1;
constexpr int32_t mostEscapeSteps = 1000;
constexpr int32_t journalPathSize = 256;
constexpr int32_t hostStopOnError = 72;

using StopFn = void (*)(intptr_t, intptr_t, intptr_t, intptr_t);

template <typename Function> void *addressOf(Function *function)
{
    return reinterpret_cast<void *>(function);
}

bool loadAllTexts()
{
    Modules &state = modules();
    return vx::frame::loadTexts(state.tools, "Tools.ALERT", "Tools.MSG") &&
           vx::frame::loadTexts(state.edition, "Pelmor.ALERT", "Pelmor.MSG") &&
           VxMsgLoadFile("PelmorFailure.MSG", &state.editionFailure.messages) == 0;
}

void publishSymbols()
{
    VxSymLog("f_report", addressOf(f_report));
    VxSymLog("VerNum", addressOf(VerNum));
    VxSymLogFcn("VxFunctionProfilerOn", VxFunctionProfilerOn);
    VxSymLogFcn("VxFunctionProfilerOff", VxFunctionProfilerOff);
}

void makeBanner()
{
    auto line = [](int32_t number) { return VxMsg(VxToolsMsgID(), number); };
    VxSprintf(VgCompanyCopyRight, sizeof VgCompanyCopyRight, "%s\n%s\n%s\n%s\n%s\n%s", line(174), line(175),
              line(176), line(177), line(178), line(185));
}

void takeHooks()
{
    VxEscStart = VxEscFnStart;
    VxEscCheck = VxEscFnCheck;
    VxEscEnd = VxEscFnEnd;
}

void resetTraces()
{
    VgToolsDbgFileDesc = stderr;
    VgToolsDbgGroup = 0;
    VgToolsDbgLevel = 0;
    VgDbgDisplayLevel = 0;
    VgDbgDisplayLoc = 1;
    VgDbgFopenMode[0] = 'w';
    VgDbgFopenMode[1] = '\0';
}

void readYesOrNo(const char *key, int32_t &variable)
{
    int32_t value = 0;
    if (VxConfigYesOrNo(key, &value) == 0)
        variable = value;
}

void forgetCatalogues()
{
    Modules &state = modules();
    for (auto *module : {&state.tools, &state.edition, &state.editionFailure, &state.math, &state.dmgr})
        module->messages = -1;
}

}

uint32_t VxToolsInit(void *, void *)
try {
    if (!loadAllTexts())
        return 1;
    VxToolsGlobal();
    publishSymbols();
    if (VxErrDefDspFun() != 0)
        return 1;
    VxSigInit();
    return 0;
} catch (const std::exception &) {
    return 1;
}

uint32_t VxToolsGlobal(void)
{
    makeBanner();
    VgMsgGuiIsUp = 0;
    VxToolsCfgInit();
    VxToolsGlobalRepeat();
    VxSetDbgCondCnfg();
    takeHooks();
    vx::heap::resetStorageManager();
    resetTraces();
    VgPageSize = static_cast<int32_t>(vx::os::pageSize()) - 4;
    return 0;
}

uint32_t VxToolsCfgInit(void)
{
    readYesOrNo("Vx.LatestRev", VgGetLatestRev);
    readYesOrNo("Vx.EmergencyBackup", VgEmergencyBackup);
    int32_t steps = 0;
    if (VxConfigInt("Vx.EscapeCount", &steps) == 0)
        VgEscapeCnt = std::clamp(steps, fewestEscapeSteps, mostEscapeSteps);
    char journal[journalPathSize] = "";
    if (VxConfigYes("Vx.SessionJournalOpt"))
        VxConfigString("Vx.SessionJournal", journalPathSize, journal);
    VxJnlPathSet(journal);
    return 0;
}

uint32_t VxToolsGlobalRepeat(void)
{
    VgLblMethod = labelMethod;
    VgDefaultLblMethod = labelMethod;
    return 0;
}

uint32_t VxToolsExit(void)
{
    VxLangFree();
    VxPathFree();
    VxJnlExit();
    // The symbol table stays: hosts hold on to its records beyond the end.
    f_free();
    VxErrDisplay();
    VxMsgFree();
    // A later start may find a catalogue empty, which leaves its id as it is.
    forgetCatalogues();
    return 0;
}

int32_t VxToolsErrID(void)
{
    return modules().tools.errors;
}

int32_t VxPelmorErrID(void)
{
    return modules().edition.errors;
}

int32_t VxToolsMsgID(void)
{
    return modules().tools.messages;
}

int32_t VxPelmorMsgID(void)
{
    return modules().edition.messages;
}

int32_t VxPelmorFailureMsgID(void)
{
    return modules().editionFailure.messages;
}

const char *GetVerNum(void)
{
    return VgVerNum;
}

void VxStopError(intptr_t a0, intptr_t a1, intptr_t a2, intptr_t a3)
{
    if (a0 == 0)
        return;
    void *function = HESKET::Talm::Ap::Base::Instance().Function(hostStopOnError);
    if (function)
        reinterpret_cast<StopFn>(function)(a0, a1, a2, a3);
}

void VxStopHere(void)
{
    // The load keeps calls to this place from being optimised away.
    [[maybe_unused]] volatile int32_t here = 0;
}

int32_t VxFunctionProfilerOn(void)
{
    modules().profilerOn = true;
    return 0;
}

int32_t VxFunctionProfilerOff(void)
{
    modules().profilerOn = false;
    return 0;
}
