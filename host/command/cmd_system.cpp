// What commands tell about the process, and settings of scripts: messages, options, folders, Python.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "command/cmd_util.h"
#include "command/message.h"
#include "command/option_vars.h"
#include "command/startup.h"
#include "python/python.h"

namespace mirk::command {

std::map<std::string, Value>& optionVars()
{
    static std::map<std::string, Value> all;
    return all;
}

namespace {

constexpr uint8_t kBoth = kCreate | kQuery;

struct Echo { bool state = false, lineNumbers = false; std::vector<std::string> filter; };
Echo g_echo;

/// A call as it would be written.
void echoCall(const Call& call)
{
    const std::string name = call.command->name;
    if (std::find(g_echo.filter.begin(), g_echo.filter.end(), name) != g_echo.filter.end())
        return;
    const auto word = [](const Value& v) {
        std::string out;
        for (const std::string& s : v.asStrings())
            out += v.kind() == Value::kString || v.kind() == Value::kStrings ? " \"" + s + "\"" : " " + s;
        return out;
    };
    std::string text = name + (call.isQuery() ? " -q" : call.isEdit() ? " -e" : "");
    for (const Call::Use& use : call.uses)
    {
        text += std::string(" -") + use.flag->shortName;
        for (const Value& v : use.args)
            text += word(v);
    }
    for (const Value& v : call.args)
        text += word(v);
    message::echo(text + ";");
}

constexpr Flag kCommandEcho[] = {
    {"st", "state", "b", kBoth}, {"ln", "lineNumbers", "b", kBoth}, {"f", "filter", "s", kBoth, true}, {"af", "addFilter", "s", kCreate, true},
};

Value commandEcho(Call& call)
{
    if (call.isQuery())
    {
        if (call.has("filter"))
            return Value(g_echo.filter);
        call.truth = true;
        return Value(call.has("lineNumbers") ? g_echo.lineNumbers : g_echo.state);
    }
    g_echo.state = call.boolean("state", g_echo.state);
    onRun = g_echo.state ? echoCall : nullptr;
    g_echo.lineNumbers = call.boolean("lineNumbers", g_echo.lineNumbers);
    if (call.has("filter"))
        g_echo.filter.clear();
    for (const char* flag : {"filter", "addFilter"})
        for (const auto* use : call.all(flag))
            g_echo.filter.push_back(use->args[0].asString());
    return {};
}

/// Node type, attribute, attribute type, shape mode: what painting tools may offer.
std::vector<std::array<std::string, 4>> g_paintable;

constexpr Flag kMakePaintable[] = {
    {"at", "attrType", "s", kBoth}, {"sm", "shapeMode", "s", kBoth}, {"ca", "clearAll"}, {"ac", "activate", "b"}, {"aca", "activateAll", "b"},
    {"rm", "remove"}, {"ui", "uiName", "s"}, {"at2", "altAttribute", "s", kCreate, true},
};

Value makePaintable(Call& call)
{
    if (call.isQuery())
    {
        Strings out;
        for (const auto& p : g_paintable)
            out.push_back(p[0] + "." + p[1]);
        return Value(out);
    }
    if (call.has("clearAll"))
        return g_paintable.clear(), Value();
    if (call.has("activateAll"))
        return {};
    const Strings names = call.names();
    if (names.size() != 2)
        fail("makePaintable: a node type and an attribute have to be given");
    const std::string type = call.str("attrType", "multiDouble"), mode = call.str("shapeMode", "none");
    constexpr const char* kTypes[] = {"intArray", "doubleArray", "vectorArray", "multiInteger", "multiFloat", "multiDouble", "multiVector"};
    if (std::none_of(std::begin(kTypes), std::end(kTypes), [&](const char* t) { return type == t; }))
        fail("makePaintable: unknown attribute type '" + type + "'");
    if (mode != "deformer" && mode != "nearestVertex" && mode != "none")
        fail("makePaintable: unknown shape mode '" + mode + "'");
    std::erase_if(g_paintable, [&](const auto& p) { return p[0] == names[0] && p[1] == names[1]; });
    if (!call.has("remove"))
        g_paintable.push_back({names[0], names[1], type, mode});
    return {};
}

constexpr Flag kScriptEditorInfo[] = {
    {"hfn", "historyFilename", "s", kBoth}, {"wh", "writeHistory", "b", kBoth}, {"ch", "clearHistory"}, {"chf", "clearHistoryFile"},
    {"h", "history", "s", kBoth}, {"i", "input", "s", kBoth}, {"se", "suppressErrors", "b", kBoth}, {"si", "suppressInfo", "b", kBoth},
    {"sr", "suppressResults", "b", kBoth}, {"sst", "suppressStackTrace", "b", kBoth}, {"sw", "suppressWarnings", "b", kBoth},
};

Value scriptEditorInfo(Call& call)
{
    static std::map<std::string, bool> suppressed;
    message::History h = message::history();
    if (call.isQuery())
    {
        if (call.has("historyFilename"))
            return Value(h.file);
        if (call.has("history") || call.has("input"))
            return Value("");
        call.truth = true;
        if (call.has("writeHistory"))
            return Value(h.write);
        return Value(!call.uses.empty() && suppressed[call.uses[0].flag->longName]);
    }
    for (const char* flag : {"suppressErrors", "suppressInfo", "suppressResults", "suppressStackTrace", "suppressWarnings"})
        if (call.has(flag))
            suppressed[flag] = call.boolean(flag);
    h.file = call.str("historyFilename", h.file);
    h.write = call.boolean("writeHistory", h.write);
    message::setHistory(h);
    if (call.has("clearHistoryFile"))
        message::clearHistory();
    return {};
}

constexpr Flag kOptionVar[] = {
    {"iv", "intValue", "si", kCreate, true}, {"fv", "floatValue", "sf", kCreate, true}, {"sv", "stringValue", "ss", kCreate, true},
    {"iva", "intValueAppend", "si", kCreate, true}, {"fva", "floatValueAppend", "sf", kCreate, true}, {"sva", "stringValueAppend", "ss", kCreate, true},
    {"rm", "remove", "s", kCreate, true}, {"ca", "clearArray", "s", kCreate, true}, {"ex", "exists", "s", kBoth, false, true}, {"l", "list", "", kBoth},
    {"arraySize", "arraySize", "s", kBoth, false, true}, {"vc", "version", "i"}, {"rfa", "removeFromArray", "si", kCreate, true},
};

/// Out of range changes nothing.
void removeElement(std::map<std::string, Value>& vars, const std::string& name, int index)
{
    const auto it = vars.find(name);
    if (it == vars.end() || index < 0)
        return;
    const auto without = [&](auto list) {
        if (size_t(index) < list.size())
            list.erase(list.begin() + index);
        return Value(list);
    };
    const Value now = it->second;
    if (now.kind() == Value::kInts)
        it->second = without(now.asInts());
    else if (now.kind() == Value::kStrings)
        it->second = without(now.asStrings());
    else if (now.kind() == Value::kFloats)
    {
        const Floats f = now.asFloats();
        it->second = without(std::vector<double>(std::as_const(*f).begin(), std::as_const(*f).end()));
    }
}

void append(Value& to, const Value& v)
{
    if (v.kind() == Value::kString)
    {
        Strings s = to.asStrings();
        s.push_back(v.get<std::string>());
        to = Value(std::move(s));
    }
    else if (v.kind() == Value::kInt)
    {
        Ints i = to.asInts();
        i.push_back(v.get<int32_t>());
        to = Value(std::move(i));
    }
    else
    {
        Floats f = to.asFloats();
        detach(f).push(v.asFloat());
        to = Value(f);
    }
}

Value optionVar(Call& call)
{
    auto& vars = optionVars();
    if (call.has("exists"))
        return call.truth = true, Value(vars.count(call.str("exists")) > 0);
    if (call.has("arraySize"))
    {
        auto it = vars.find(call.str("arraySize"));
        return Value(it == vars.end() || !it->second.isArray() ? 0 : int(it->second.asStrings().size()));
    }
    if (call.has("list"))
    {
        Strings out;
        for (const auto& [name, value] : vars)
            out.push_back(name);
        return Value(out);
    }
    if (call.isQuery())
    {
        const Strings names = call.names();
        if (names.empty())
            fail("optionVar -query: a name has to be given");
        auto it = vars.find(names[0]);
        return it == vars.end() ? Value(0) : it->second;
    }
    for (const auto& use : call.uses)
    {
        const std::string flag = use.flag->longName, name = use.args.empty() ? "" : use.args[0].asString();
        if (flag == "remove")
            vars.erase(name);
        else if (flag == "clearArray")
            vars[name] = Value(Ints());
        else if (flag == "removeFromArray")
            removeElement(vars, name, use.args[1].asInt());
        else if (flag.find("Append") != std::string::npos)
            append(vars[name], use.args[1]);
        else if (use.args.size() == 2)
            vars[name] = use.args[1];
    }
    return {};
}

constexpr Flag kInternalVar[] = {
    {"uad", "userAppDir"}, {"ubd", "userBitmapsDir"}, {"uhk", "userHotkeyDir"}, {"umd", "userMarkingMenuDir"}, {"upd", "userPrefDir"},
    {"ups", "userPresetsDir"}, {"usd", "userScriptDir"}, {"ush", "userShelfDir"}, {"utd", "userTmpDir"}, {"uwd", "userWorkspaceDir"}, {"mid", "mayaInstallDir"},
};

Value internalVar(Call& call)
{
    const struct { const char* flag; const char* folder; } folders[] = {
        {"userAppDir", ""}, {"userBitmapsDir", "prefs/icons"}, {"userHotkeyDir", "prefs/hotkeys"}, {"userMarkingMenuDir", "prefs/markingMenus"},
        {"userPrefDir", "prefs"}, {"userPresetsDir", "presets"}, {"userShelfDir", "prefs/shelves"}, {"userTmpDir", "tmp"}, {"userWorkspaceDir", "projects"}};
    if (call.has("userScriptDir"))
        return Value(userScriptDir());
    for (const auto& f : folders)
        if (call.has(f.flag))
            return Value(userFolder(f.folder));
    if (call.has("mayaInstallDir"))
        return Value(std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().string() + "/");
    fail("internalVar: a flag that says which folder has to be given");
}

constexpr Flag kAbout[] = {
    {"api", "apiVersion"}, {"b", "batch"}, {"c", "cutIdentifier"}, {"cd", "currentDate"}, {"ct", "currentTime"}, {"ev", "evalVersion"}, {"f", "file"},
    {"i", "is64"}, {"iv", "installedVersion"}, {"l", "linux"}, {"x64", "linux64"}, {"mac", "macOS"}, {"nt", "ntOS"}, {"os", "operatingSystem"},
    {"osv", "operatingSystemVersion"}, {"p", "product"}, {"v", "version"}, {"win", "windows"}, {"w64", "win64"}, {"uil", "uiLanguage"}, {"mjv", "majorVersion"},
    {"mnv", "minorVersion"}, {"cyv", "codeset"}, {"ppv", "patchVersion"},
};

Value about(Call& call)
{
    if (call.has("version") || call.has("majorVersion"))
        return Value("2020");
    if (call.has("minorVersion") || call.has("patchVersion"))
        return Value("0");
    if (call.has("apiVersion"))
        return Value(20200000);
    if (call.has("product") || call.has("installedVersion"))
        return Value("Mirk headless host");
    if (call.has("operatingSystem"))
        return Value("linux64");
    if (call.has("file"))
        return Value("2020");
    if (call.has("uiLanguage"))
        return Value("en_US");
    if (call.has("codeset"))
        return Value("UTF-8");
    if (call.has("cutIdentifier") || call.has("operatingSystemVersion"))
        return Value("");
    if (call.has("currentDate") || call.has("currentTime"))
    {
        char text[32];
        const std::time_t now = std::time(nullptr);
        std::strftime(text, sizeof text, call.has("currentDate") ? "%Y/%m/%d" : "%H:%M:%S", std::localtime(&now));
        return Value(text);
    }
    call.truth = true;
    if (call.has("batch"))
        return Value(!isInteractive());
    for (const char* yes : {"linux", "linux64", "is64"})
        if (call.has(yes))
            return Value(true);
    for (const char* no : {"macOS", "ntOS", "windows", "win64", "evalVersion"})
        if (call.has(no))
            return Value(false);
    fail("about: a flag that says what to ask has to be given");
}

Value pythonCommand(Call& call)
{
    const Strings text = call.names();
    if (text.size() != 1)
        fail("python: one text has to be given");
    return python::run(text[0]);
}

Value quit(Call& call)
{
    const int code = call.integer("exitCode");
    message::print("");
    std::exit(code);
}

constexpr Flag kQuit[] = {{"a", "abort"}, {"ec", "exitCode", "i"}, {"f", "force"}};
constexpr Flag kRefresh[] = {{"cv", "currentView"}, {"f", "force"}, {"su", "suspend", "b"}};

Value refresh(Call&) { return {}; }   // nothing is shown, so nothing is stale

const Command kCommands[] = {
    {"commandEcho", kCommandEcho, commandEcho, false},
    {"makePaintable", kMakePaintable, makePaintable, false},
    {"scriptEditorInfo", kScriptEditorInfo, scriptEditorInfo, false},
    {"optionVar", kOptionVar, optionVar, false},
    {"internalVar", kInternalVar, internalVar, false, false},
    {"about", kAbout, about, false, false},
    {"python", {}, pythonCommand, false},
    {"quit", kQuit, quit, false, false},
    {"refresh", kRefresh, refresh, false},
};

}  // namespace

void registerSystemCommands() { add(kCommands); }

}  // namespace mirk::command
