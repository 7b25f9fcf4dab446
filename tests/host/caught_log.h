#pragma once

#include <mutex>

#include "talm/base.h"
#include "tests/support/test.h"

namespace vx::test {

struct CaughtRecord {
    int64_t number;
    int32_t level, depth;
    std::string text, line;
};

/** Catches the event log's records while it lives; afterwards the log is as at the start of a process. */
class CaughtLog {
public:
    CaughtLog() { EsSinkCallback(take, this); }
    ~CaughtLog()
    {
        EsSinkCallback(nullptr, nullptr);
        EsSinkFile(nullptr);
        EsSinkStandardError(0);
        EsSetLevel(-1, -1, 1);
        EsControlSetForm(nullptr);
    }
    CaughtLog(const CaughtLog &) = delete;
    CaughtLog &operator=(const CaughtLog &) = delete;

    std::vector<CaughtRecord> records() const
    {
        std::lock_guard guard(lock_);
        return records_;
    }

    /** What the records say, with their indentation. */
    Texts texts() const
    {
        Texts out;
        for (const CaughtRecord &record : records())
            out.push_back(std::string(2 * static_cast<size_t>(record.depth), ' ') + record.text);
        return out;
    }

private:
    static void take(void *self, const EsRecord *record)
    {
        auto *log = static_cast<CaughtLog *>(self);
        std::lock_guard guard(log->lock_);
        log->records_.push_back({record->number, record->level, record->depth, record->text, record->line});
    }

    mutable std::mutex lock_;
    std::vector<CaughtRecord> records_;
};

}
