// What becomes of filed errors: suppression, the pending list, display.

#include "vx/err.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "frame/alert_file.h"
#include "frame/err_lookup.h"
#include "frame/error_log.h"
#include "frame/event_log.h"
#include "talm/base.h"
#include "vx/msg.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::frame {

namespace {

using Records = std::list<ErrorRecord>;

enum HostFunction : int32_t {
    hostDisplayActive = 28,
    hostDisplayRefused = 32,
    hostDisplayKept = 33,
    hostDisplayAction = 35
};

template <typename Result> auto hostFunction(HostFunction number)
{
    return reinterpret_cast<Result (*)()>(ApBaseGetFunction(number));
}

/** The host may take back the note that there are errors, or be told to act on them. */
void consultHost()
{
    auto active = hostFunction<int32_t>(hostDisplayActive);
    auto refused = hostFunction<int32_t>(hostDisplayRefused);
    constexpr int32_t errorLevel = 4;
    if (!active || !refused || !active() || refused() || !VxErrCheck(errorLevel))
        return;
    auto kept = hostFunction<int32_t>(hostDisplayKept);
    if (!kept || kept())
        VgActiveErrOccurred = 0;
    else if (auto action = hostFunction<void>(hostDisplayAction))
        action();
}

Records takePending()
{
    ErrorState &state = errorState();
    Records taken;
    std::scoped_lock lock(state.mutex);
    taken.swap(state.pending);
    return taken;
}

void putBack(Records &taken)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    state.pending.splice(state.pending.begin(), taken);
}

/** Keep some records for the next errors; the others are the caller's to free. */
void keepSpare(Records &records)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    while (!records.empty() && state.spare.size() < maxSpareRecords)
        state.spare.splice(state.spare.begin(), records, records.begin());
}

enum class Resolved { all, notAll, noFile };

/** Look up the texts that were left for now. */
Resolved resolveTexts(Records &records)
{
    LanguageTag tag;
    AlertText found;
    std::optional<AlertFile> file;
    int32_t fileId = -1;
    Resolved result = Resolved::all;
    for (ErrorRecord &record : records) {
        if (record.marker == -1)
            continue;
        if (record.marker != fileId) {
            const char *path = alertFilePath(record.marker);
            fileId = record.marker;
            file.emplace(path ? path : "");
            if (!file->isOpen()) {
                printNoFile(path ? path : "");
                return Resolved::noFile;
            }
        }
        if (file->find(record.number, tag, found)) {
            std::strcpy(record.text, found.text);
        } else {
            VxPrintf("Unable to get error %d.\n", record.number);
            record.text[0] = '\0';
            result = Resolved::notAll;
        }
        record.marker = -1;
    }
    return result;
}

void showDefault(int32_t, int32_t severity, const char *text)
{
    constexpr int32_t firstFormat = 2;
    if (severity < 0 || severity > 2 || !text)
        return;
    VxPrintf(VxMsgFile("Tools.MSG", severity + firstFormat), text);
    VxPrintf("\n");
}

}

}

using namespace vx::frame;

uint32_t VxErrDisable(void)
{
    if (!suppression.overridden)
        ++suppression.depth;
    return 0;
}

uint32_t VxErrEnable(void)
{
    if (!suppression.overridden && suppression.depth > 0)
        --suppression.depth;
    return 0;
}

uint32_t VxErrDisableOverride(int32_t flag)
{
    suppression.overridden = flag != 0;
    return 0;
}

int32_t VxErrIsDisabled(void)
{
    return suppression.depth != 0;
}

uint32_t VxErrTempEnable(int32_t flag)
{
    if (flag) {
        suppression.savedDepth = suppression.depth;
        suppression.depth = 0;
    } else {
        suppression.depth = suppression.savedDepth;
        suppression.savedDepth = 0;
    }
    return 0;
}

int32_t VxErrCnt(void)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    return static_cast<int32_t>(state.pending.size());
}

uint32_t VxErrClear(void)
{
    Records records = takePending();
    keepSpare(records);
    return 0;
}

int32_t VxErrIsLogged(int32_t id, int32_t number)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    return std::any_of(state.pending.begin(), state.pending.end(),
                       [=](const ErrorRecord &record) { return record.id == id && record.number == number; });
}

uint32_t VxErrStatus(int32_t *errors, int32_t *warnings, int32_t *others)
{
    auto readOrReset = [](int32_t *out, std::atomic<int32_t> &counter) {
        if (out)
            *out = counter;
        else
            counter = 0;
    };
    ErrorCounters &counters = errorState().counters;
    readOrReset(errors, counters.errors);
    readOrReset(warnings, counters.warnings);
    readOrReset(others, counters.others);
    return 0;
}

uint32_t VxErrDisplay(void)
{
    consultHost();
    Records records = takePending();
    Resolved resolved = resolveTexts(records);
    if (resolved == Resolved::noFile) {
        putBack(records);
        return 1;
    }
    for (const ErrorRecord &record : records)
        if (record.text[0] && record.severity < 1)
            VgActiveErrOccurred = 1;
    keepSpare(records);
    EsReport();
    return resolved == Resolved::notAll;
}

int32_t VxErrCheck(int32_t level)
{
    return EsCheck(level, errorCategory);
}

uint32_t VxErrSetDspFun(VxErrDspFn fn)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    state.displayHook = fn;
    return 0;
}

uint32_t VxErrDefDspFun(void)
{
    return VxErrSetDspFun(showDefault);
}
