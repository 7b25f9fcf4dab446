// Start and end of the search paths' module.

#include "files/dmpath.h"
#include "frame/modules.h"
#include "vx/dmpath.h"
#include "vx/tools.h"

uint32_t VxDmgrInit(void *, void *)
{
    if (!vx::frame::loadTexts(vx::frame::modules().dmgr, "Dmgr.ALERT", "Dmgr.MSG"))
        return 1;
    VxDmgrGlobal();
    return DmPathInit() == 0 ? 0 : 1;
}

uint32_t VxDmgrExit(void)
{
    vx::files::freeSearchPaths();
    return 0;
}

uint32_t VxDmgrGlobal(void)
{
    vx::files::resetSearchPaths();
    return 0;
}

int32_t VxDmgrErrID(void)
{
    return vx::frame::modules().dmgr.errors;
}

int32_t VxDmgrMsgID(void)
{
    return vx::frame::modules().dmgr.messages;
}
