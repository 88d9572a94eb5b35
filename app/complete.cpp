#include "complete.h"

#include <algorithm>

#include "command/registry.h"
#include "python/python.h"

namespace app {

namespace {

using mirk::command::Value;
using Words = std::vector<std::string>;

Words asked(const char* command, std::vector<Value> arguments)
{
    try
    {
        return mirk::command::execute(command, arguments).asStrings();
    }
    catch (const std::exception&)
    {
        return {};
    }
}

void addMatching(Words& to, const Words& from, const std::string& start, const std::string& prefix = "")
{
    for (const std::string& name : from)
        if (name.compare(0, start.size(), start) == 0)
            to.push_back(prefix + name);
}

/// Nodes, or a node's attributes by their long names.
void addNodes(Words& out, const std::string& word)
{
    const size_t dot = word.rfind('.');
    if (dot == std::string::npos)
        return addMatching(out, asked("ls", {word + "*"}), word);
    addMatching(out, asked("listAttr", {word.substr(0, dot)}), word.substr(dot + 1), word.substr(0, dot + 1));
}

bool isInsideQuotes(const std::string& before)
{
    char open = 0;
    for (const char c : before)
        if (open ? c == open : c == '"' || c == '\'')
            open = open ? 0 : c;
    return open != 0;
}

void addPython(Words& out, const std::string& word)
{
    try
    {
        // the completer of Python's own prompt, asked until it has no more; with the module `readline` it would take over
        // the keys of this one
        mirk::python::run("__import__('sys').modules.setdefault('readline', None)");
        const Value found = mirk::python::run("[w.rstrip('()') for w in iter(lambda c=__import__('rlcompleter').Completer(__import__('__main__')"
                                              ".__dict__), n=__import__('itertools').count(): c.complete('" + word + "', next(n)), None)]");
        addMatching(out, found.asStrings(), word);
    }
    catch (const std::exception&)
    {
    }
}

bool isPythonName(const std::string& word)
{
    return std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '.'; });
}

}  // namespace

std::vector<std::string> completions(const std::string& before, const std::string& word, bool python)
{
    Words out;
    if (!python)
    {
        addNodes(out, word);
        if (word.find('.') == std::string::npos && !isInsideQuotes(before))
            addMatching(out, mirk::command::names(), word);
    }
    else if (isInsideQuotes(before))
        addNodes(out, word);
    else if (isPythonName(word))
        addPython(out, word);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

}  // namespace app
