// A prompt for MEL and Python, with history and completion. "python" and "mel" on a line of their own change the
// language, "quit" or Ctrl-D ends.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include <readline/history.h>
#include <readline/readline.h>

#include "app.h"
#include "command/message.h"
#include "complete.h"
#include "mel/interpreter.h"
#include "python/python.h"

namespace app {

namespace {

bool g_python = false;

/// Braces, brackets, quotes and comments that are still open ask for another line.
bool isComplete(const std::string& text, bool python)
{
    int         depth = 0;
    char        quote = 0;
    const char* lineComment = python ? "#" : "//";
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        if (quote)
        {
            if (c == '\\')
                ++i;
            else if (c == quote || c == '\n')   // a string that its line does not end is the interpreter's to judge
                quote = 0;
        }
        else if (c == '"' || (python && c == '\''))
            quote = c;
        else if (text.compare(i, python ? 1 : 2, lineComment) == 0)
            i = std::min(text.find('\n', i), text.size());
        else if (!python && text.compare(i, 2, "/*") == 0)
        {
            if ((i = text.find("*/", i + 2)) == std::string::npos)
                return false;
            ++i;
        }
        else if (c == '{' || c == '(' || c == '[')
            ++depth;
        else if (c == '}' || c == ')' || c == ']')
            --depth;
    }
    return depth <= 0;
}

/// Python goes on after a colon until an empty line.
bool isCompletePython(const std::string& text, const std::string& line)
{
    if (text.find('\n') != std::string::npos && (text.find(":\n") != std::string::npos))
        return line.empty();
    return isComplete(text, true) && (line.empty() || line.back() != ':');
}

char* nextCompletion(const char* word, int state)
{
    static std::vector<std::string> words;
    static size_t                   next;
    if (state == 0)
    {
        words = completions(std::string(rl_line_buffer, size_t(std::max(0, rl_point - int(std::strlen(word))))), word, g_python);
        next = 0;
        if (words.size() == 1 && words[0] == word && words[0].find('.') == std::string::npos)
            rl_completion_append_character = ' ';
    }
    return next < words.size() ? strdup(words[next++].c_str()) : nullptr;
}

char** complete(const char* word, int, int)
{
    rl_attempted_completion_over = 1;          // no file names
    rl_completion_append_character = '\0';     // a node goes on with a full stop
    return rl_completion_matches(word, nextCompletion);
}

/// Lines typed in earlier sessions: MIRK_HISTORY, or a file in the home folder; "" for none.
std::string historyFile()
{
    if (const char* given = std::getenv("MIRK_HISTORY"))
        return given;
    const char* home = std::getenv("HOME");
    return home ? std::string(home) + "/.mirk_history" : std::string();
}

void prepareLineEditing()
{
    rl_readline_name = "mirk";
    rl_attempted_completion_function = complete;
    rl_completer_word_break_characters = " \t\n\"'`$><=;&{}(),+-*/%^!?[]";   // '.', '|' and ':' belong to names
    rl_basic_quote_characters = "";   // a quoted name may go on, so its quote is not closed
    if (const std::string file = historyFile(); !file.empty() && isatty(STDIN_FILENO))
        read_history(file.c_str());
}

void keepHistory()
{
    constexpr int kLines = 1000;
    if (const std::string file = historyFile(); !file.empty() && isatty(STDIN_FILENO) && history_length > 0)
    {
        stifle_history(kLines);
        write_history(file.c_str());
    }
}

/// Ctrl-C at the prompt: a new line.
int startOver()
{
    rl_replace_line("", 0);
    rl_crlf();
    rl_on_new_line();
    rl_redisplay();
    return 0;
}

bool readLine(const char* prompt, std::string& line)
{
    struct sigaction nothing{};
    nothing.sa_handler = [](int) {};
    sigaction(SIGINT, &nothing, nullptr);
    char* text = readline(prompt);
    if (!text)
        return false;
    line = text;
    const HIST_ENTRY* last = history_length > 0 ? history_get(history_base + history_length - 1) : nullptr;
    if (!line.empty() && (!last || line != last->line))
        add_history(text);
    std::free(text);
    return true;
}

void runText(const std::string& text, bool python)
{
    catchInterrupts();
    try
    {
        if (python)
        {
            mirk::python::forgetInterrupt();   // one that MEL has taken
            if (const std::string result = mirk::python::runForText(text); !result.empty())
                mirk::message::print(result + "\n");
        }
        else if (const auto result = mirk::mel::execute(text); !result.isNone())
            mirk::message::result(resultText(result));
    }
    catch (const std::exception& e)
    {
        mirk::message::error(e.what());
    }
}

}  // namespace

int shell(bool python, bool interactive)
{
    start(interactive);
    prepareLineEditing();
    rl_signal_event_hook = startOver;
    std::string text, line;
    g_python = python;
    while (readLine(text.empty() ? (g_python ? ">>> " : "mel> ") : "...  ", line))
    {
        if (text.empty() && (line == "quit" || line == "exit"))
            break;
        if (text.empty() && (line == "python" || line == "mel"))
        {
            g_python = line == "python";
            continue;
        }
        text += line + "\n";
        if (!(g_python ? isCompletePython(text, line) : isComplete(text, false)))
            continue;
        if (text.find_first_not_of(" \n\t") != std::string::npos)
            runText(g_python && text.find('\n') == text.size() - 1 ? text.substr(0, text.size() - 1) : text, g_python);
        text.clear();
        idle();
    }
    std::fputc('\n', stdout);
    keepHistory();
    return 0;
}

}  // namespace app
