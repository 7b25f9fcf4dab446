#pragma once

// What the error log keeps for the process and for each thread.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

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

struct ErrorCounters {
    int32_t errors, warnings, others;

    int32_t &of(int32_t severity) noexcept
    {
        return severity == 0 ? errors : severity == 1 ? warnings : others;
    }
};

/** When each pair of marker and number was last filed or repeated, in seconds. */
class RepeatFilter {
public:
    /** The second of a pair, `now` when the pair is new. Repeats follow each other, so the latest is kept at hand. */
    int64_t &secondOf(int32_t marker, int32_t number, int64_t now, bool &isNew)
    {
        uint64_t key = uint64_t{static_cast<uint32_t>(marker)} << 32 | static_cast<uint32_t>(number);
        isNew = false;
        if (!latest_ || latest_->first != key) {
            auto [entry, inserted] = seconds_.try_emplace(key, now);
            latest_ = &*entry;
            isNew = inserted;
        }
        return latest_->second;
    }

    void clear() noexcept
    {
        latest_ = nullptr;
        seconds_.clear();
    }

private:
    std::unordered_map<uint64_t, int64_t> seconds_;
    std::pair<const uint64_t, int64_t> *latest_ = nullptr; ///< nodes stay where they are
};

/** Everything in it is guarded by `mutex`, which is never held while anything of the host's is called. */
struct ErrorState {
    std::mutex mutex;
    /** Full paths, the id of a file being its index. Never shrinks, so that a path stays where it is. */
    std::deque<std::string> alertFiles;
    std::list<ErrorRecord> pending;
    ErrorCounters counters{};
    /** Records to be filled again, so that memory that was just used serves the next errors. */
    std::list<ErrorRecord> spare;
    RepeatFilter repeats;
    VxErrDspFn displayHook = nullptr;
};

/** Outlives every static object, since those may log in their destructors. */
ErrorState &errorState() noexcept;

/** A thread's own say in whether its errors are filed. */
struct Suppression {
    uint32_t depth = 0;
    bool overridden = false;
    uint32_t savedDepth = 0;
};

extern thread_local constinit Suppression suppression;

/** Forget files, records, counters and repeats, as before the first call. */
void resetErrorLog();

}
