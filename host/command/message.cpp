#include "command/message.h"

#include <cstdio>
#include <mutex>
#include <vector>

namespace mirk::message {

namespace {

struct State
{
    std::recursive_mutex              mutex;
    std::vector<std::pair<int, Sink>> sinks;
    int     nextId = 1;
    bool    console = true;
    History history;
};

State& state()
{
    static State s;
    return s;
}

std::string formatted(Kind kind, const std::string& text)
{
    switch (kind)
    {
    case kResult:  return "// Result: " + text + " //\n";
    case kWarning: return "// Warning: " + text + " //\n";
    case kError:   return "// Error: " + text + " //\n";
    case kEcho:    return text + "\n";
    case kInfo:    return "// " + text + " //\n";
    default:       return text;
    }
}

void send(Kind kind, const std::string& text)
{
    State& s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    const std::string line = formatted(kind, text);
    if (s.console)
    {
        std::FILE* out = kind == kPrint || kind == kResult ? stdout : stderr;
        if (out == stderr)
            std::fflush(stdout);   // the two streams keep their order where they end in one place
        std::fwrite(line.data(), 1, line.size(), out);
    }
    if (s.history.write && !s.history.file.empty())
        if (std::FILE* f = std::fopen(s.history.file.c_str(), "ab"))
        {
            std::fwrite(line.data(), 1, line.size(), f);
            std::fclose(f);
        }
    const auto sinks = s.sinks;   // a sink may remove itself
    for (const auto& [id, sink] : sinks)
        sink(kind, text);
}

}  // namespace

void print(const std::string& text) { send(kPrint, text); }
void printError(const std::string& text) { send(kPrintError, text); }
void result(const std::string& text) { send(kResult, text); }
void echo(const std::string& text) { send(kEcho, text); }
void info(const std::string& text) { send(kInfo, text); }
void warning(const std::string& text) { send(kWarning, text); }
void error(const std::string& text) { send(kError, text); }

int addSink(Sink sink)
{
    State& s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    s.sinks.emplace_back(s.nextId, std::move(sink));
    return s.nextId++;
}

void removeSink(int id)
{
    State& s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    std::erase_if(s.sinks, [id](const auto& e) { return e.first == id; });
}

void setConsole(bool on) { state().console = on; }

const History& history() { return state().history; }
void setHistory(History h) { state().history = std::move(h); }

void clearHistory()
{
    if (std::FILE* f = std::fopen(state().history.file.c_str(), "wb"))
        std::fclose(f);
}

}  // namespace mirk::message
