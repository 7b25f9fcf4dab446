// Filing errors: every logging call comes down to VxErrLogVarArg.

#include "vx/err.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>

#include "frame/alert_file.h"
#include "frame/err_lookup.h"
#include "frame/error_log.h"
#include "frame/event_log.h"
#include "platform/os/os.h"
#include "talm/base.h"
#include "text/codepage.h"
#include "vx/escape.h"
#include "vx/tools.h"

namespace vx::frame {

namespace {

bool escapeIsUnderWay() noexcept
{
    // A monitor thread may set the flag.
    return std::atomic_ref<int32_t>(VgEscapeFlag).load(std::memory_order_relaxed) != 0;
}

void noteOccurrence() noexcept
{
    std::atomic_ref<int32_t>(VgErrOccurred).store(1, std::memory_order_relaxed);
}

/**
 * Enter the time of a pair in the filter: true when it is to be filed, perhaps
 * with a record to fill. A repeat within the second is counted, not filed.
 */
bool enter(uint64_t pair, int64_t now, std::list<ErrorRecord> &one)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    int64_t before = state.repeats.exchange(pair, now);
    latestError = {pair, now, state.restarts};
    if (before == now)
        return false;
    if (!state.spare.empty())
        one.splice(one.begin(), state.spare, state.spare.begin());
    return true;
}

/** Whether the pair is the one that this thread logged last, within the same second. */
bool repeatsLatest(uint64_t pair, int64_t now) noexcept
{
    return latestError.pair == pair && latestError.second == now &&
           latestError.log == errorState().restarts.load(std::memory_order_relaxed);
}

/** Keep the end of the text, from a whole character on. */
void setWhere(ErrorRecord &record, const char *where) noexcept
{
    size_t length = where ? std::strlen(where) : 0;
    size_t start = length > maxErrorWhere ? length - maxErrorWhere : 0;
    while (start > 0 && start < length && text::boundaryBefore(text::codePage(), where, start) != start)
        ++start;
    if (length > start)
        std::memcpy(record.where, where + start, length - start);
    record.where[length - start] = '\0';
}

/** Format into the record, cut to its size: the length needed, negative on failure. */
int32_t setText(ErrorRecord &record, const char *format, va_list args) noexcept
{
    if (!format)
        return -1;
    int32_t length = os::formatArgs(record.text, sizeof record.text, format, args);
    if (length > static_cast<int32_t>(maxErrorText))
        record.text[text::boundaryBefore(text::codePage(), record.text, maxErrorText)] = '\0';
    return length;
}

/** What the event log gets for a record whose text is still to be looked up. */
void lookUpText(int32_t id, int32_t number, ErrorRecord &record)
{
    AlertText found;
    const char *path = alertFilePath(id);
    if (path && AlertFile(path).find(number, LanguageTag(), found))
        std::strcpy(record.text, found.text);
}

void append(std::list<ErrorRecord> &one)
{
    ErrorState &state = errorState();
    std::scoped_lock lock(state.mutex);
    state.pending.splice(state.pending.end(), one);
}

uint32_t file(int64_t now, int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra,
              const char *format, va_list args)
{
    std::list<ErrorRecord> one;
    if (!enter(pairOf(marker, number), now, one))
        return 0;
    if (one.empty())
        one.emplace_back();
    ErrorRecord &record = one.front();
    record.marker = marker >= 0 ? marker : -1;
    record.number = number;
    record.severity = severity;
    record.extra = extra;
    record.id = marker >= 0 ? marker : ~marker;
    setWhere(record, where);
    bool lookedUpLater = marker >= 0 && (!format || !*format);
    if (lookedUpLater) {
        record.text[0] = '\0';
    } else {
        int32_t length = setText(record, format, args);
        if (length <= 0)
            return length < 0;
    }
    if (!EsIsEnabled()) {
        append(one);
        return 0;
    }
    ErrorRecord forwarded = record;
    append(one);
    if (lookedUpLater)
        lookUpText(marker, number, forwarded);
    forwardToEventLog(severity, forwarded.text);
    return 0;
}

struct SystemError {
    /** Read first of all: the text of errno, null when the system has none. */
    SystemError() noexcept : text(os::errorText(errno)) {}

    const char *text;
};

}

}

using namespace vx;
using namespace vx::frame;

uint32_t VxErrLogNum(int32_t id, int32_t number, const char *where, int32_t extra)
{
    if (escapeIsUnderWay())
        return 0;
    int32_t severity = 0;
    char text[maxErrorText + 1];
    if (VxErrGet(id, number, &severity, text, sizeof text))
        return 1;
    return VxErrLogVa(~id, number, severity, where, extra, "%s", text);
}

uint32_t VxErrLogFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...)
{
    if (escapeIsUnderWay())
        return 0;
    va_list args;
    va_start(args, extra);
    uint32_t result = VxErrLogArgs(id, number, where, extra, args);
    va_end(args);
    return result;
}

uint32_t VxErrLogArgs(int32_t id, int32_t number, const char *where, int32_t extra, va_list args)
{
    int32_t severity = 0;
    char format[maxErrorText + 1];
    if (VxErrGet(id, number, &severity, format, sizeof format))
        return 1;
    return VxErrLogVarArg(~id, number, severity, where, extra, format, args);
}

uint32_t VxErrLogMsg(int32_t number, int32_t severity, const char *where, int32_t extra, const char *format,
                     ...)
{
    va_list args;
    va_start(args, format);
    uint32_t result = VxErrLogVarArg(-1, number, severity, where, extra, format, args);
    va_end(args);
    return result;
}

uint32_t VxErrLogVa(int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra,
                    const char *format, ...)
{
    va_list args;
    va_start(args, format);
    uint32_t result = VxErrLogVarArg(marker, number, severity, where, extra, format, args);
    va_end(args);
    return result;
}

uint32_t VxErrLogVarArg(int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra,
                        const char *format, va_list args)
{
    noteOccurrence();
    if (suppression.depth != 0)
        return 0;
    errorState().counters.of(severity).fetch_add(1, std::memory_order_relaxed);
    int64_t now = os::wallSeconds();
    if (repeatsLatest(pairOf(marker, number), now))
        return 0;
    try {
        return file(now, marker, number, severity, where, extra, format, args);
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

uint32_t VxErrLogSys(const char *prefix, const char *where, int32_t extra)
{
    SystemError error;
    if (!error.text)
        return 1;
    return VxErrLogMsg(1, 0, where, extra, "%s%s%s", prefix ? prefix : "", prefix ? " " : "", error.text);
}

uint32_t VxErrLogSysFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...)
{
    SystemError error;
    int32_t severity = 0;
    char format[maxErrorText + 1];
    if (!error.text || VxErrGet(id, number, &severity, format, sizeof format))
        return 1;
    char text[1024];
    va_list args;
    va_start(args, extra);
    int32_t length = os::formatArgs(text, sizeof text, format, args);
    va_end(args);
    return length < 0 ? 1 : VxErrLogMsg(number, severity, where, extra, "%s: %s", text, error.text);
}

uint32_t VxErrLogNumTime(int32_t id, int32_t number, int32_t interval, int64_t *last)
{
    if (!last)
        return 1;
    int64_t now = os::wallSeconds();
    if (now - *last <= interval)
        return 0;
    uint32_t result = VxErrLogNum(id, number, "", 0);
    *last = now;
    return result;
}

uint32_t VxErrInt(int32_t number, int32_t value)
{
    return VxErrLogFmt(VxToolsErrID(), number, "", 0, value);
}

uint32_t VxErrStr(int32_t number, const char *text)
{
    return text ? VxErrLogFmt(VxToolsErrID(), number, "", 0, text) : 1;
}
