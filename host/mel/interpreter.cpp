#include "mel/interpreter.h"

#include <utility>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "command/message.h"
#include "mel/cache.h"
#include "mel/direct.h"
#include "mel/machine.h"
#include "mel/native.h"
#include "mel/symbols.h"

namespace mirk::mel {

namespace {

Sinks                    g_sinks;
std::vector<std::string> g_scriptPath;

bool sourceByName(const std::string& name)
{
    if (name.find('/') != std::string::npos || findScript(name).empty())
        return false;
    sourceFile(name);
    return true;
}

/// Errors of `f` with the position of the text's start, for what has none.
template <class F>
Value guarded(const Source& source, F&& f)
{
    try
    {
        return f();
    }
    catch (const ScriptError&)
    {
        throw;
    }
    catch (const std::exception& e)
    {
        throw errorAt(source, 0, e.what());
    }
}

Value run(std::string_view text, std::string_view name, bool isFile)
{
    Machine&                        m = machine();
    std::lock_guard<std::recursive_mutex> hold(m.lock);
    m.findScript = sourceByName;
    if (m.depth == 0)
        m.interruptFlag = false;
    if (Value result; !isFile && runDirect(text, name, result))
        return result;
    std::shared_ptr<const Unit> unit;
    if (text.size() >= UINT32_MAX / 2)
        throw errorAt({std::string(name), "", isFile}, 0, "The text is too long.");
    try
    {
        unit = cache().get(name, text, isFile);
    }
    catch (const ScriptError&)
    {
        throw;
    }
    catch (const std::exception& e)
    {
        throw errorAt({std::string(name), std::string(text), isFile}, 0, e.what());
    }
    Value result;
    for (const auto& statement : unit->statements)
        result = guarded(*statement->source, [&] { return m.call(statement); });
    return unit->hasResult ? std::move(result) : Value();
}

bool isScript(const std::filesystem::path& p)
{
    std::error_code e;
    return std::filesystem::is_regular_file(p, e);
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in)
        throw command::Error("Cannot read file \"" + path + "\".");
    return std::move(text).str();
}

}  // namespace

Value execute(std::string_view text, std::string_view sourceName) { return run(text, sourceName, false); }

std::string findScript(const std::string& path)
{
    namespace fs = std::filesystem;
    if (path.empty())
        return {};
    const auto with = [](const fs::path& p) -> std::string {
        if (isScript(p))
            return p.string();
        fs::path mel = p;
        mel += ".mel";
        return isScript(mel) ? mel.string() : std::string();
    };
    if (std::string found = with(path); !found.empty() || fs::path(path).is_absolute())
        return found;
    for (const std::string& folder : g_scriptPath)
        if (std::string found = with(fs::path(folder) / path); !found.empty())
            return found;
    return {};
}

Value sourceFile(const std::string& path)
{
    const std::string found = findScript(path);
    if (found.empty())
        throw command::Error("Cannot find file \"" + path + "\" for source statement.");
    return run(readFile(found), found, true);
}

bool exists(std::string_view name) { return whatIs(name) != "Unknown" && !name.starts_with('$'); }

std::string whatIs(std::string_view name)
{
    std::lock_guard<std::recursive_mutex> hold(machine().lock);
    if (name.starts_with('$'))
    {
        const Global* g = symbols().global(name.substr(1));
        if (!g)
            return "Unknown";
        const Type t = g->type == Type::kDyn && g->value[0].p ? typeOf(static_cast<Dyn*>(g->value[0].p)->v) : g->type;
        return std::string(typeName(t)) + " variable";
    }
    if (const Function* f = symbols().defined(name))
        return f->source->isFile ? "Mel procedure found in: " + f->source->name : "Mel procedure entered interactively.";
    if (!nativesOf(name).empty() || command::find(name) || name == "size" || name == "clear" || name == "catch" || name == "catchQuiet")
        return "Command";
    if (name.find('/') == std::string_view::npos)
        if (const std::string script = findScript(std::string(name)); !script.empty())
            return "Script found in: " + script;
    return "Unknown";
}

Value call(std::string_view name, const std::vector<Value>& args)
{
    Machine&                              m = machine();
    std::lock_guard<std::recursive_mutex> hold(m.lock);
    m.findScript = sourceByName;
    return m.callByName(std::string(name), args);
}

Sinks setSinks(Sinks sinks) { return std::exchange(g_sinks, sinks); }

void print(std::string_view text)
{
    if (g_sinks.print)
        g_sinks.print(text);
    else
        mirk::message::print(std::string(text));
}

void message(Severity severity, std::string_view text)
{
    if (g_sinks.message)
        return g_sinks.message(severity, text);
    switch (severity)
    {
    case Severity::kInfo:    mirk::message::info(std::string(text)); break;
    case Severity::kWarning: mirk::message::warning(std::string(text)); break;
    case Severity::kError:   mirk::message::error(std::string(text)); break;
    case Severity::kResult:  mirk::message::result(std::string(text)); break;
    }
}

void                     setScriptPath(std::vector<std::string> folders) { g_scriptPath = std::move(folders); }
std::vector<std::string> scriptPath() { return g_scriptPath; }
void                     interrupt() { machine().interruptFlag = true; }

std::string printed(const Value& v)
{
    if (v.kind() == Value::kMatrix)
    {
        const auto& m = v.get<command::Matrix>();
        std::string out;
        for (size_t i = 0; i < m.v.size(); ++i)
            out.append(command::numberText(m.v[i])).append((i + 1) % size_t(m.cols) ? " " : "\n");
        return out;
    }
    if (!v.isArray())
        return v.asString();
    std::string out;
    for (const std::string& s : v.asStrings())
        out.append(s).append("\n");
    return out;
}

}  // namespace mirk::mel
