#include "frame/event_log.h"

#include "talm/base.h"

namespace vx::frame {

namespace {

constexpr int32_t levelControl = 0;
constexpr int32_t levelInformation = 1;
constexpr int32_t levelWarning = 3;
constexpr int32_t levelError = 4;

int32_t levelOf(int32_t severity) noexcept
{
    switch (severity) {
    case 1: return levelWarning;
    case 2: return levelInformation;
    default: return levelError;
    }
}

}

void forwardToEventLog(int32_t severity, const char *text)
{
    int32_t level = levelOf(severity);
    const char *source = EsGeneralGetName(errorCategory);
    const char *label = EsGeneralGetLabel(level);
    if (EsControlHasForm()) {
        EsControlGetField("%s", text);
        EsLogControl(errorCategory, level);
        EsEnter(levelControl, label);
        EsLogGeneral(source, level, "%s", text);
        EsLeave(levelControl);
        return;
    }
    EsLogGeneral(source, level, "%s", text);
    if (level == levelError) {
        EsEnter(level, label);
        EsLogGeneral(source, level, "%s", text);
        EsLeave(level);
    }
}

}
