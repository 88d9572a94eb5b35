// Messages, running text, asking what a name is.
#include <chrono>

#include "mel/interpreter.h"
#include "mel/native.h"
#include "mel/symbols.h"

namespace mirk::mel {

namespace {

std::string words(const NativeCall& c, int from = 0)
{
    std::string out;
    for (int k = from; k < c.count(); ++k)
        out.append(k > from ? " " : "").append(c.x(k).asString());
    return out;
}

/// Without -noContext and -showLineNumber, which change nothing here.
std::string messageText(const NativeCall& c)
{
    int first = 0;
    for (; first < c.count() && c.x(first).kind() == Value::kString; ++first)
    {
        const std::string& word = c.x(first).get<std::string>();
        if (word == "-sl" || word == "-showLineNumber")
            ++first;
        else if (word != "-n" && word != "-noContext")
            break;
    }
    return words(c, first);
}

double seconds() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

Value environment(const std::string& name)
{
    const char* v = std::getenv(name.c_str());
    return Value(v ? v : "");
}

const Native kRows[] = {
    {"print", "x", 0, [](NativeCall& c) { print(printed(c.x(0))); }},
    {"warning", "x*", 0, [](NativeCall& c) { message(Severity::kWarning, messageText(c)); }},
    {"error", "x*", 0, [](NativeCall& c) { throw command::Error(messageText(c)); }},
    {"trace", "x*", 0, [](NativeCall& c) { print(words(c) + "\n"); }},
    {"eval", "x*", 'x', [](NativeCall& c) { c.give(execute(words(c))); }, nullptr, nullptr, OP_MOV, true},
    {"evalEcho", "x*", 'x', [](NativeCall& c) {
         const std::string text = words(c);
         print(text + "\n");
         c.give(execute(text));
     }, nullptr, nullptr, OP_MOV, true},
    {"source", "s", 'x', [](NativeCall& c) { c.give(sourceFile(c.s(0))); }, nullptr, nullptr, OP_MOV, true},
    {"whatIs", "s", 's', [](NativeCall& c) { c.give(whatIs(c.s(0))); }},
    {"exists", "s", 'i', [](NativeCall& c) { c.give(int32_t(exists(c.s(0)))); }},
    {"getenv", "s", 's', [](NativeCall& c) { c.give(environment(c.s(0)).asString()); }},
    {"timerX", "", 'f', [](NativeCall& c) { c.give(seconds()); }},
    {"timerX", "sf", 'f', [](NativeCall& c) { c.give(seconds() - c.f(1)); }},
};

}  // namespace

std::span<const Native> coreNatives() { return kRows; }

}  // namespace mirk::mel
