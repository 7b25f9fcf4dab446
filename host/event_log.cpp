// The event log: levels, sections of each thread, and the sinks.

#include "talm/base.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory_resource>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/format.h"
#include "host/local_time.h"

namespace {

constexpr int32_t sectionsKept = 16;
constexpr size_t headingSize = 128;
constexpr size_t nameSize = 64;

/** A section whose heading is written with its first record. */
struct Section {
    int32_t level = 0;
    bool written = true;
    char heading[headingSize] = "";
};

struct ThreadState {
    int32_t depth = 0;
    bool inCallback = false;
    int32_t lastDepth = 0;
    size_t last = 0; ///< what the last record said, hashed; 0 before the first
    Section sections[sectionsKept];
    char field[1024] = "";
};

struct Log {
    std::atomic<bool> enabled{false};
    std::atomic<bool> hasForm{false};
    std::atomic<uint32_t> off[EsCategories]; ///< bit n set: level n is switched off

    std::mutex lock; ///< guards what follows; never held while calling out
    bool standardError = false;
    std::FILE *file = nullptr;
    EsSinkFn callback = nullptr;
    void *context = nullptr;
    int64_t records = 0;
    char form[nameSize] = "";
    int32_t callsUnderWay = 0;
    std::condition_variable callEnded;
};

// Never destroyed: what runs at the end of the process may still log.
Log &eventLog()
{
    alignas(Log) static char storage[sizeof(Log)];
    static Log *instance = new (storage) Log;
    return *instance;
}

thread_local constinit ThreadState thread;

bool inRange(int32_t level, int32_t category)
{
    return level >= 0 && level < EsLevels && category >= 0 && category < EsCategories;
}

bool wanted(int32_t category, int32_t level)
{
    return eventLog().enabled && EsCheck(level, category);
}

/** Control characters could forge records or steer a terminal. */
char tidied(char c)
{
    return static_cast<unsigned char>(c) >= ' ' || c == '\n' || c == '\t' ? c : '?';
}

void tidy(std::pmr::string &text)
{
    std::erase(text, '\r');
    text.erase(text.find_last_not_of('\n') + 1);
    std::transform(text.begin(), text.end(), text.begin(), tidied);
}

/** A name or heading, on one line. */
void copyName(char *out, size_t size, const char *text)
{
    std::snprintf(out, size, "%s", text ? text : "");
    for (; *out; ++out)
        *out = *out == '\n' ? ' ' : tidied(*out);
}

void appendIndented(std::pmr::string &line, std::string_view text, size_t indent)
{
    line.append(indent, ' ');
    for (char c : text) {
        line += c;
        if (c == '\n')
            line.append(indent + 4, ' ');
    }
}

void writeLine(Log &state, std::string_view line)
{
    for (std::FILE *stream : {state.standardError ? stderr : nullptr, state.file}) {
        if (!stream)
            continue;
        std::fwrite(line.data(), 1, line.size(), stream);
        std::fflush(stream);
    }
}

/** A call of the host's function, during which this thread's records go to the other sinks only. */
class CallUnderWay {
public:
    explicit CallUnderWay(Log &state) : state_(state) { thread.inCallback = true; }
    ~CallUnderWay()
    {
        thread.inCallback = false;
        std::lock_guard guard(state_.lock);
        --state_.callsUnderWay;
        state_.callEnded.notify_all();
    }
    CallUnderWay(const CallUnderWay &) = delete;
    CallUnderWay &operator=(const CallUnderWay &) = delete;

private:
    Log &state_;
};

/** Number the record, write it, and hand it to the call-back after the lock is released. */
void emit(EsRecord &record, std::pmr::string &line)
{
    Log &state = eventLog();
    std::unique_lock guard(state.lock);
    record.number = ++state.records;
    line += '\n';
    writeLine(state, line);
    line.pop_back();
    EsSinkFn callback = thread.inCallback ? nullptr : state.callback;
    void *context = state.context;
    if (!callback)
        return;
    ++state.callsUnderWay;
    guard.unlock();
    record.line = line.c_str();
    CallUnderWay call(state);
    callback(context, &record);
}

void write(int32_t category, int32_t level, int32_t depth, const char *source, const char *text)
{
    char memory[2048];
    std::pmr::monotonic_buffer_resource pool(memory, sizeof memory);
    std::pmr::string line(&pool);
    line.reserve(1024);
    auto now = static_cast<int64_t>(std::time(nullptr));
    char time[32];
    talm::localTimeText(now, time, sizeof time);
    line.append(time).append(" ").append(EsGeneralGetLabel(level)).append(" ").append(source).append(": ");
    appendIndented(line, text, 2 * static_cast<size_t>(depth));
    EsRecord record = {0, now, category, level, depth, source, text, nullptr};
    emit(record, line);
}

/** The headings of open sections that have none yet. */
void writeHeadings(int32_t category, const char *source)
{
    for (int32_t i = 0; i < std::min(thread.depth, sectionsKept); ++i) {
        Section &section = thread.sections[i];
        if (section.written)
            continue;
        section.written = true;
        write(category, section.level, i, source, section.heading);
    }
}

bool repeatsDeeper(int32_t level, std::string_view text)
{
    size_t now = std::hash<std::string_view>{}(text) + static_cast<size_t>(level);
    bool repeats = now == thread.last && thread.depth > thread.lastDepth;
    thread.last = now;
    thread.lastDepth = thread.depth;
    return repeats;
}

void recordText(int32_t category, int32_t level, const char *source, std::pmr::string &text)
{
    tidy(text);
    if (text.empty() || repeatsDeeper(level, text))
        return;
    writeHeadings(category, source);
    write(category, level, std::min(thread.depth, sectionsKept), source, text.c_str());
}

void record(int32_t category, int32_t level, const char *source, const char *format, va_list args)
{
    if (!wanted(category, level) || !format)
        return;
    char memory[2048];
    std::pmr::monotonic_buffer_resource pool(memory, sizeof memory);
    std::pmr::string text(&pool);
    try {
        text.reserve(1024);
        talm::appendFormatted(text, format, args);
        recordText(category, level, source, text);
    } catch (const std::bad_alloc &) {
        // A text too long for the memory that is left: it is lost, the caller goes on.
    }
}

/** Replace a sink under the lock, then tell whether any is left. */
template <typename Change> void changeSinks(Change change)
{
    Log &state = eventLog();
    std::lock_guard guard(state.lock);
    change(state);
    state.enabled = state.standardError || state.file || state.callback;
}

}

int32_t EsIsEnabled(void)
{
    return eventLog().enabled;
}

int32_t EsCheck(int32_t level, int32_t category)
{
    return inRange(level, category) && !(eventLog().off[category] >> level & 1u);
}

void EsEnter(int32_t level, const char *text)
{
    int32_t depth = thread.depth++;
    if (depth >= sectionsKept)
        return;
    Section &section = thread.sections[depth];
    section.level = level;
    copyName(section.heading, sizeof section.heading, text);
    section.written = section.heading[0] == 0;
}

void EsLeave(int32_t)
{
    if (thread.depth > 0)
        --thread.depth;
}

void EsPut(int32_t category, int32_t type, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    record(category, type, EsGeneralGetName(category), format, args);
    va_end(args);
}

void EsLog(int32_t category, int32_t level, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    record(category, level, EsGeneralGetName(category), format, args);
    va_end(args);
}

void EsLogGeneral(const char *source, int32_t level, const char *format, ...)
{
    bool tools = source && std::strcmp(source, EsGeneralGetName(EsCategoryTools)) == 0;
    int32_t category = tools ? EsCategoryTools : EsCategoryGeneral;
    char name[nameSize];
    copyName(name, sizeof name, source && *source ? source : EsGeneralGetName(category));
    va_list args;
    va_start(args, format);
    record(category, level, name, format, args);
    va_end(args);
}

int32_t EsControlHasForm(void)
{
    return eventLog().hasForm;
}

void EsControlGetField(const char *format, ...)
{
    thread.field[0] = 0;
    if (!format)
        return;
    char memory[2048];
    std::pmr::monotonic_buffer_resource pool(memory, sizeof memory);
    va_list args;
    va_start(args, format);
    try {
        std::pmr::string text(&pool);
        talm::appendFormatted(text, format, args);
        std::snprintf(thread.field, sizeof thread.field, "%s", text.c_str());
    } catch (const std::bad_alloc &) {
        // The field stays empty, and an empty record is not written.
    }
    va_end(args);
}

void EsLogControl(int32_t category, int32_t level)
{
    char form[nameSize];
    {
        std::lock_guard guard(eventLog().lock);
        copyName(form, sizeof form, eventLog().form);
    }
    if (!*form || !wanted(category, level))
        return;
    char memory[2048];
    std::pmr::monotonic_buffer_resource pool(memory, sizeof memory);
    try {
        std::pmr::string text(thread.field, &pool);
        recordText(category, level, form, text);
    } catch (const std::bad_alloc &) {
        // As for every record that does not fit the memory.
    }
}

const char *EsGeneralGetLabel(int32_t level)
{
    switch (level) {
    case EsLevelControl: return "control";
    case EsLevelInformation: return "information";
    case EsLevelWarning: return "warning";
    case EsLevelError: return "error";
    case EsLevelFailure: return "failure";
    case EsLevelTrace: return "trace";
    case EsLevelSystem: return "system";
    default: return "event";
    }
}

const char *EsGeneralGetName(int32_t category)
{
    switch (category) {
    case EsCategoryGeneral: return "General";
    case EsCategoryTools: return "Tools";
    default: return "Application";
    }
}

void EsReport(void)
{
    std::lock_guard guard(eventLog().lock);
    if (eventLog().file)
        std::fflush(eventLog().file);
}

void EsSinkStandardError(int32_t on)
{
    changeSinks([on](Log &state) { state.standardError = on != 0; });
}

int32_t EsSinkFile(const char *path)
{
    std::FILE *opened = nullptr;
    if (path && *path && !(opened = std::fopen(path, "abe")))
        return 1;
    std::FILE *before = nullptr;
    changeSinks([&](Log &state) { before = std::exchange(state.file, opened); });
    if (before)
        std::fclose(before);
    return 0;
}

void EsSinkCallback(EsSinkFn function, void *context)
{
    changeSinks([](Log &state) { state.callback = nullptr; });
    if (!thread.inCallback) {
        Log &state = eventLog();
        std::unique_lock guard(state.lock);
        state.callEnded.wait(guard, [&] { return state.callsUnderWay == 0; });
    }
    changeSinks([&](Log &state) {
        state.callback = function;
        state.context = context;
    });
}

void EsSetLevel(int32_t category, int32_t level, int32_t on)
{
    uint32_t bits = level == -1 ? ~0u : level >= 0 && level < EsLevels ? 1u << level : 0;
    for (int32_t i = 0; i < EsCategories; ++i) {
        if (category != -1 && category != i)
            continue;
        if (on)
            eventLog().off[i] &= ~bits;
        else
            eventLog().off[i] |= bits;
    }
}

void EsControlSetForm(const char *name)
{
    Log &state = eventLog();
    std::lock_guard guard(state.lock);
    copyName(state.form, sizeof state.form, name);
    state.hasForm = state.form[0] != 0;
}
