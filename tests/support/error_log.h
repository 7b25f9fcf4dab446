#pragma once

// Tests in which errors are filed.

#include "frame/error_log.h"
#include "frame/modules.h"
#include "talm/base.h"
#include "tests/support/test.h"
#include "text/lang.h"
#include "vx/err.h"
#include "vx/escape.h"

namespace vx::test {

/** An empty error log, a clock that stands still, no language, and a folder for alert files. */
struct ErrorLog : testing::Test {
    ErrorLog() : toolsErrors_(frame::modules().tools.errors)
    {
        frame::resetErrorLog();
        VgEscapeFlag = 0;
        setSecond(1000);
    }

    ~ErrorLog() override
    {
        frame::resetErrorLog();
        frame::modules().tools.errors = toolsErrors_;
        text::languageState.current = 0;
        os::setTestClock(-1);
    }

    static void setSecond(int64_t second) { os::setTestClock(second * 1'000'000); }

    /** Write and register an alert file: its id. */
    int32_t alertFile(std::string_view text, const char *name = "Test.ALERT")
    {
        folder_.write(name, text);
        int32_t id = -1;
        EXPECT_EQ(VxErrLoadFile(folder_.text(name).c_str(), &id), 0u);
        return id;
    }

    /** The same, as the toolkit's own alert file. */
    void toolsAlertFile(std::string_view text)
    {
        frame::modules().tools.errors = alertFile(text, "Tools.ALERT");
    }

    /** The pending record filed last. */
    static const frame::ErrorRecord &last() { return frame::errorState().pending.back(); }

    static std::vector<int32_t> pendingNumbers()
    {
        std::vector<int32_t> numbers;
        for (const auto &record : frame::errorState().pending)
            numbers.push_back(record.number);
        return numbers;
    }

    TempFolder folder_;

private:
    int32_t toolsErrors_;
};

/** What the event log writes while it lives. */
class RecordedEvents {
public:
    struct Event {
        int32_t level;
        std::string source, text;

        bool operator==(const Event &) const = default;
    };

    RecordedEvents() { EsSinkCallback(&RecordedEvents::record, this); }
    ~RecordedEvents() { EsSinkCallback(nullptr, nullptr); }
    RecordedEvents(const RecordedEvents &) = delete;
    RecordedEvents &operator=(const RecordedEvents &) = delete;

    std::vector<Event> events;
    /** Runs in the handler, behind the recording. */
    void (*andThen)() = nullptr;

private:
    static void record(void *context, const EsRecord *event)
    {
        auto self = static_cast<RecordedEvents *>(context);
        self->events.push_back({event->level, event->source, event->text});
        if (self->andThen)
            self->andThen();
    }
};

}
