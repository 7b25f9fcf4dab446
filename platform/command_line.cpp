// Command lines divided into words, with the quotes and backslashes that
// programs of Windows expect there.

#include "platform/command_line.h"

#include "text/codepage.h"

namespace vx::platform {

namespace {

/** Walks a command line by the characters of the process code page. */
class WordReader {
public:
    explicit WordReader(const char *line) : page_(text::codePage()), at_(line) {}

    /** False at the end. */
    bool next(std::string &word, bool escapes)
    {
        while (*at_ == ' ' || *at_ == '\t')
            ++at_;
        if (!*at_)
            return false;
        word.clear();
        bool quoted = false;
        while (*at_ && (quoted || (*at_ != ' ' && *at_ != '\t'))) {
            if (*at_ == '"')
                readQuote(word, quoted, escapes);
            else if (*at_ == '\\' && escapes)
                readBackslashes(word);
            else
                readCharacter(word);
        }
        return true;
    }

private:
    /** A quote opens or closes; two of them inside quotes are one that belongs to the word. */
    void readQuote(std::string &word, bool &quoted, bool escapes)
    {
        ++at_;
        if (quoted && escapes && *at_ == '"') {
            word += '"';
            ++at_;
        } else {
            quoted = !quoted;
        }
    }

    /** Backslashes in front of a quote are halved, and an odd one makes it a plain character. */
    void readBackslashes(std::string &word)
    {
        size_t count = 0;
        for (; *at_ == '\\'; ++at_)
            ++count;
        word.append(*at_ == '"' ? count / 2 : count, '\\');
        if (*at_ == '"' && count % 2 != 0)
            word += *at_++;
    }

    void readCharacter(std::string &word)
    {
        auto bytes = static_cast<size_t>(text::charBytes(page_, at_));
        word.append(at_, bytes);
        at_ += bytes;
    }

    const text::CodePage &page_;
    const char *at_;
};

}

std::vector<std::string> wordsOfCommandLine(const char *line)
{
    WordReader reader(line);
    std::vector<std::string> words;
    for (std::string word; reader.next(word, !words.empty());)
        words.push_back(word);
    return words;
}

std::vector<std::string> wordsOfArguments(const char *text)
{
    WordReader reader(text);
    std::vector<std::string> words;
    for (std::string word; reader.next(word, true);)
        words.push_back(word);
    return words;
}

std::vector<const char *> addressesOf(const std::vector<std::string> &words)
{
    std::vector<const char *> addresses;
    for (const std::string &word : words)
        addresses.push_back(word.c_str());
    addresses.push_back(nullptr);
    return addresses;
}

}
