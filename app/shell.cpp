// A prompt for MEL and Python. "python" and "mel" on a line of their own change the language, "quit" or Ctrl-D ends.
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <readline/history.h>
#include <readline/readline.h>

#include "app.h"
#include "command/message.h"
#include "mel/interpreter.h"
#include "python/python.h"

namespace app {

namespace {

/// Braces, brackets and quotes that are still open ask for another line.
bool isComplete(const std::string& text)
{
    int  depth = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        if (quoted && c == '\\')
            ++i;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && (c == '{' || c == '(' || c == '['))
            ++depth;
        else if (!quoted && (c == '}' || c == ')' || c == ']'))
            --depth;
    }
    return depth <= 0 && !quoted;
}

/// Python goes on after a colon until an empty line.
bool isCompletePython(const std::string& text, const std::string& line)
{
    if (text.find('\n') != std::string::npos && (text.find(":\n") != std::string::npos))
        return line.empty();
    return isComplete(text) && (line.empty() || line.back() != ':');
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
    if (!line.empty())
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
            mirk::message::result(mirk::mel::printed(result));
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
    rl_signal_event_hook = startOver;
    std::string text, line;
    while (readLine(text.empty() ? (python ? ">>> " : "mel> ") : "...  ", line))
    {
        if (text.empty() && (line == "quit" || line == "exit"))
            break;
        if (text.empty() && (line == "python" || line == "mel"))
        {
            python = line == "python";
            continue;
        }
        text += line + "\n";
        if (!(python ? isCompletePython(text, line) : isComplete(text)))
            continue;
        if (text.find_first_not_of(" \n\t") != std::string::npos)
            runText(python && text.find('\n') == text.size() - 1 ? text.substr(0, text.size() - 1) : text, python);
        text.clear();
    }
    std::fputc('\n', stdout);
    return 0;
}

}  // namespace app
