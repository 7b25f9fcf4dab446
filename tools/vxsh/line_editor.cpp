#include "tools/vxsh/line_editor.h"

#include <clocale>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include <histedit.h>

namespace vxsh {

namespace {

constexpr int historyLines = 1000;

const char *prompt(EditLine *)
{
    return "vx> ";
}

struct EndEditor {
    void operator()(EditLine *editor) const { el_end(editor); }
};
struct EndHistory {
    void operator()(History *history) const { history_end(history); }
};

}

struct LineEditor::State {
    std::string file;
    std::unique_ptr<History, EndHistory> history{history_init()};
    std::unique_ptr<EditLine, EndEditor> editor{el_init("vxsh", stdin, stdout, stderr)};

    void setUpHistory()
    {
        if (!history)
            return;
        tellHistory(H_SETSIZE, historyLines);
        tellHistory(H_SETUNIQUE, 1);
        if (!file.empty())
            tellHistory(H_LOAD, file.c_str());
    }

    void setUpEditor()
    {
        if (!editor)
            throw std::runtime_error("the terminal cannot be edited on");
        el_set(editor.get(), EL_PROMPT, prompt);
        el_set(editor.get(), EL_EDITOR, "emacs");
        // An interrupt drops the line that is being typed and nothing else.
        el_set(editor.get(), EL_SETTY, "-d", "-isig", nullptr);
        el_set(editor.get(), EL_BIND, "^C", "em-kill-line", nullptr);
        if (history)
            el_set(editor.get(), EL_HIST, ::history, history.get());
        // The user's own settings for every program that edits lines so.
        el_source(editor.get(), nullptr);
    }

    template <typename... Arguments> int tellHistory(int operation, Arguments... arguments)
    {
        HistEvent event;
        return ::history(history.get(), &event, operation, arguments...);
    }

    void remember(const char *line)
    {
        if (!history)
            return;
        tellHistory(H_ENTER, line);
        if (!file.empty())
            tellHistory(H_SAVE, file.c_str());
    }
};

LineEditor::LineEditor(std::string historyFile)
{
    // Characters of several bytes are one to the editor only in the user's locale.
    std::setlocale(LC_CTYPE, "");
    state_ = std::make_unique<State>();
    state_->file = std::move(historyFile);
    state_->setUpHistory();
    state_->setUpEditor();
}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read()
{
    int count = 0;
    const char *text = el_gets(state_->editor.get(), &count);
    if (!text || count <= 0)
        return std::nullopt;
    std::string line(text, static_cast<size_t>(count));
    while (line.ends_with('\n') || line.ends_with('\r'))
        line.pop_back();
    if (line.find_first_not_of(" \t") != std::string::npos)
        state_->remember(text);
    return line;
}

}
