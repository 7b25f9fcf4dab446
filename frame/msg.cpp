// Message catalogues by id, and texts shown through the host's message window.

#include "vx/msg.h"

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "frame/alert_file.h"
#include "frame/message_table.h"
#include "platform/os/os.h"
#include "talm/base.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::frame {

namespace {

constexpr char noText[] = " ";
constexpr size_t maxName = 254;
constexpr size_t pathSize = 512;
constexpr size_t smallestFile = 2;

constexpr int32_t firstQuestion = 219;

constexpr int32_t hostMessageWindow = 106;
using MessageWindow = int32_t (*)(int32_t kind, int32_t style, const char *text, int32_t *answer);
enum Kind : int32_t { message = 1, question = 2 };
constexpr int32_t plainStyle = 1;

MessageTable messageTable;

struct CloseStream {
    void operator()(std::FILE *stream) const noexcept { std::fclose(stream); }
};

/** The bytes of a file and a zero byte behind them; empty when it cannot be read whole. */
std::vector<char> readWhole(const char *path)
{
    std::FILE *opened = nullptr;
    os::FileStatus status;
    if (os::fileStatus(path, status) != os::Error::none ||
        os::openFile(path, "rb", opened) != os::Error::none)
        return {};
    std::unique_ptr<std::FILE, CloseStream> stream(opened);
    auto size = static_cast<size_t>(status.size);
    if (size < smallestFile)
        return {};
    std::vector<char> bytes(size + 1);
    if (std::fread(bytes.data(), 1, size, stream.get()) != size)
        return {};
    return bytes;
}

/** Enter the catalogue when it defines a message. */
void load(const char *name, const char *path, int32_t *id)
{
    std::vector<char> bytes = readWhole(path);
    if (bytes.empty())
        return;
    Catalogue catalogue(std::move(bytes), LanguageTag());
    if (catalogue.count() == 0)
        return;
    std::string kept(std::string_view(name).substr(0, maxName));
    int32_t index = messageTable.count.load(std::memory_order_relaxed);
    auto &entry = messageTable.entries[static_cast<size_t>(index)];
    entry.name = std::move(kept);
    entry.catalogue = std::move(catalogue);
    messageTable.count.store(index + 1, std::memory_order_release);
    *id = index;
}

const char *orNoText(const char *text) noexcept
{
    return text ? text : noText;
}

MessageWindow messageWindow()
{
    return VgMsgGuiIsUp ? reinterpret_cast<MessageWindow>(ApBaseGetFunction(hostMessageWindow)) : nullptr;
}

}

MessageTable &messages() noexcept
{
    return messageTable;
}

}

using namespace vx::frame;

uint32_t VxMsgLoadFile(const char *name, int32_t *id)
{
    if (!name || !id)
        return 1;
    if (messages().count == MessageTable::limit) {
        VxPrintf("Unable to load more than %d message files.\n", MessageTable::limit);
        return 1;
    }
    char path[pathSize];
    if (VxStrCpy(path, name, pathSize) || !VxPathFindIn(path, pathSize, "text", 1)) {
        VxPrintf("Unable to load message file %s.\n", name);
        return 1;
    }
    try {
        load(name, path, id);
    } catch (const std::exception &) {
        // No memory, or a size beyond all memory: a catalogue that cannot be had never stops a start.
    }
    return 0;
}

const char *VxMsg(int32_t id, int32_t number)
{
    MessageTable &table = messages();
    if (id < 0 || id >= table.count.load(std::memory_order_acquire))
        return noText;
    return orNoText(table.entries[static_cast<size_t>(id)].catalogue.text(number));
}

const char *VxMsgFile(const char *name, int32_t number)
{
    MessageTable &table = messages();
    int32_t count = name ? table.count.load(std::memory_order_acquire) : 0;
    for (int32_t id = 0; id < count; ++id)
        if (table.entries[static_cast<size_t>(id)].name == name)
            return VxMsg(id, number);
    return noText;
}

uint32_t VxMsgFree(void)
{
    MessageTable &table = messages();
    int32_t count = table.count.exchange(0);
    for (int32_t id = 0; id < count; ++id)
        table.entries[static_cast<size_t>(id)] = {};
    return 0;
}

uint32_t VxMessage(const char *text)
{
    if (!text)
        return 1;
    if (auto window = messageWindow()) {
        int32_t answer = 0;
        return window(message, plainStyle, text, &answer) != 0;
    }
    VxPrintf("%s\n", text);
    return 0;
}

uint32_t VxMessage2(int32_t number)
{
    auto window = messageWindow();
    if (!window)
        return 0;
    try {
        int64_t position = int64_t{firstQuestion} + number;
        bool inRange = position <= INT32_MAX;
        std::string text = inRange ? VxMsg(VxToolsMsgID(), static_cast<int32_t>(position)) : noText;
        VxStrProcNewline(text.data());
        int32_t answer = 0;
        if (window(question, plainStyle, text.c_str(), &answer) != 0)
            return 1;
        return answer <= 0;
    } catch (const std::bad_alloc &) {
        return 1;
    }
}
