#pragma once

// What the error log keeps for the process and for each thread.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <string>

#include "frame/repeat_filter.h"
#include "vx/err.h"

namespace vx::frame {

constexpr size_t maxErrorText = 512;
constexpr size_t maxErrorWhere = 254;
constexpr size_t maxSpareRecords = 64;

/** One pending error. */
struct ErrorRecord {
    // Both texts are filled before a record is filed, so nothing is zeroed here.
    ErrorRecord() noexcept {}

    int32_t marker; ///< alert-file id in which the text is still to be looked up, or -1
    int32_t number;
    int32_t severity;
    int32_t extra;
    int32_t id; ///< alert-file id
    char where[maxErrorWhere + 1];
    /** Longer than the text may be, so that a cut sees whether it would split a character. */
    char text[maxErrorText + 8];
};

/** Counted without the lock: a repeat takes none. */
struct ErrorCounters {
    std::atomic<int32_t> errors, warnings, others;

    std::atomic<int32_t> &of(int32_t severity) noexcept
    {
        return severity == 0 ? errors : severity == 1 ? warnings : others;
    }

    void clear() noexcept { errors = warnings = others = 0; }
};

/** The error that a thread logged last. Within its second the filter need not be looked at. */
struct LatestError {
    uint64_t pair;
    int64_t second = INT64_MIN;
    uint32_t log; ///< the log's number of restarts
};

// These two are small and looked at by every logging call: they lie where they
// are found without a call, also in a library that is loaded late.
#define VX_HOT_THREAD_LOCAL [[gnu::tls_model("initial-exec")]] extern thread_local constinit

VX_HOT_THREAD_LOCAL LatestError latestError;

/** All but the counters is guarded by `mutex`, which is never held while anything of the host's is called. */
struct ErrorState {
    std::mutex mutex;
    /** Full paths, the id of a file being its index. Never shrinks, so that a path stays where it is. */
    std::deque<std::string> alertFiles;
    std::list<ErrorRecord> pending;
    ErrorCounters counters{};
    std::atomic<uint32_t> restarts{0};
    /** Records to be filled again, so that memory that was just used serves the next errors. */
    std::list<ErrorRecord> spare;
    RepeatFilter repeats;
    VxErrDspFn displayHook = nullptr;
};

/** The process's log. It outlives every static object, since those may log in their destructors. */
union ImmortalErrorState {
    ErrorState state;

    ImmortalErrorState() : state() {}
    ~ImmortalErrorState() {}
};

extern ImmortalErrorState immortalErrorState;

inline ErrorState &errorState() noexcept
{
    return immortalErrorState.state;
}

/** A thread's own say in whether its errors are filed. */
struct Suppression {
    uint32_t depth = 0;
    bool overridden = false;
    uint32_t savedDepth = 0;
};

VX_HOT_THREAD_LOCAL Suppression suppression;

/** Forget files, records, counters and repeats, as before the first call. */
void resetErrorLog();

}
