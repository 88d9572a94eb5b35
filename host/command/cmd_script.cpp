// Scripts that run later: evalDeferred, and the script jobs that a session without windows can honour. Both wait until
// the host is idle; see api/script.h.
#include <map>
#include <memory>

#include "api/playback.h"
#include "api/script.h"
#include "command/cmd_util.h"
#include "command/message.h"
#include "command/script_jobs.h"
#include "dag/selection_list.h"

namespace mirk::command {

namespace {

enum class Kind { kEvent, kIdle, kAttribute, kDeleted };

struct Job
{
    Kind        kind;
    std::string subject;            ///< event, plug or node
    std::string script;
    bool        once = false, isProtected = false, permanent = false, killWithScene = false;
    bool        pending = false;    ///< its event came since it last ran
    std::string last;               ///< value of the plug when it was last looked at
};

std::map<int, Job>& jobs()
{
    static std::map<int, Job> all;
    return all;
}

constexpr const char* kEvents[] = {"NewSceneOpened", "SceneOpened", "SceneImported", "SceneSaved", "SelectionChanged",
                                   "timeChanged", "Undo", "Redo", "quitApplication", "idle"};

struct Watched { double time = 0; Strings selected; };
Watched g_watched;

Watched watched()
{
    Watched w;
    w.time = playback::currentTime();
    w.selected = execute("ls", std::vector<Value>{"-selection", "-long"}).asStrings();
    return w;
}

void mark(const std::string& event)
{
    for (auto& [id, job] : jobs())
        if (job.kind == Kind::kEvent && job.subject == event)
            job.pending = true;
}

/// What the commands just run mean to jobs.
void note(const Call& call)
{
    const std::string name = call.command->name;
    if (call.isQuery() || (name != "file" && name != "undo" && name != "redo"))
        return;
    if (name != "file")
        return mark(name == "undo" ? "Undo" : "Redo");
    const std::pair<const char*, const char*> flags[] = {{"newFile", "NewSceneOpened"}, {"open", "SceneOpened"}, {"import", "SceneImported"}, {"save", "SceneSaved"}};
    for (const auto& [flag, event] : flags)
        if (call.has(flag))
            mark(event);
    if (call.has("newFile") || call.has("open"))
        std::erase_if(jobs(), [](const auto& j) { return j.second.killWithScene; });
}

std::string plugValue(const std::string& plug)
{
    try
    {
        const Value v = execute("getAttr", std::vector<Value>{plug});
        std::string out;
        for (const std::string& s : v.asStrings())
            out += s + "\n";
        return out;
    }
    catch (const Error&)
    {
        return {};
    }
}

bool exists(const std::string& name) { return execute("objExists", std::vector<Value>{name}).asBool(); }

bool isDue(Job& job)
{
    switch (job.kind)
    {
    case Kind::kIdle: return true;
    case Kind::kDeleted: return !exists(job.subject);
    case Kind::kAttribute:
    {
        std::string now = plugValue(job.subject);
        const bool  due = now != job.last;
        job.last = std::move(now);
        return due;
    }
    case Kind::kEvent: return std::exchange(job.pending, false);
    }
    return false;
}

void runDue()
{
    Watched now = watched();
    if (now.time != g_watched.time)
        mark("timeChanged");
    if (now.selected != g_watched.selected)
        mark("SelectionChanged");
    g_watched = std::move(now);
    mark("idle");
    std::vector<int> due;
    for (auto& [id, job] : jobs())
        if (isDue(job))
            due.push_back(id);
    for (const int id : due)
    {
        const auto it = jobs().find(id);
        if (it == jobs().end())   // an earlier one killed it
            continue;
        const std::string script = it->second.script;
        if (it->second.once || it->second.kind == Kind::kDeleted)
            jobs().erase(it);
        try
        {
            script::run(script::Language::mel, script, false, true);
        }
        catch (const std::exception& e)
        {
            message::error(e.what());
        }
    }
}

std::string listed(int id, const Job& job)
{
    static constexpr const char* names[] = {"-event", "-idleEvent", "-attributeChange", "-nodeDeleted"};
    std::string out = std::to_string(id) + ": " + names[int(job.kind)];
    if (job.kind != Kind::kIdle)
        out += " \"" + job.subject + "\"";
    out += " \"" + job.script + "\"";
    for (const auto& [on, text] : {std::pair{job.once, " -runOnce"}, {job.isProtected, " -protected"}, {job.permanent, " -permanent"}})
        out += on ? text : "";
    return out;
}

void kill(int id, bool force)
{
    const auto it = jobs().find(id);
    if (it == jobs().end())
        return message::warning("scriptJob: there is no job " + std::to_string(id) + ".");
    if (it->second.permanent || (it->second.isProtected && !force))
        fail("scriptJob: job " + std::to_string(id) + (it->second.permanent ? " is permanent" : " is protected; -force kills it"));
    jobs().erase(it);
}

Job made(const Call& call)
{
    Job job{};
    for (const char* flag : {"event", "attributeChange", "nodeDeleted", "idleEvent"})
    {
        const Call::Use* use = call.use(flag);
        if (!use)
            continue;
        const bool idle = use->args.size() == 1;
        job.kind = *flag == 'e' ? Kind::kEvent : *flag == 'a' ? Kind::kAttribute : *flag == 'n' ? Kind::kDeleted : Kind::kIdle;
        job.subject = idle ? "" : use->args[0].asString();
        job.script = use->args.back().asString();
        if (job.kind == Kind::kEvent && std::find(std::begin(kEvents), std::end(kEvents), job.subject) == std::end(kEvents))
            fail("scriptJob: this host has no event \"" + job.subject + "\"; -listEvents gives those it has");
        if (job.kind == Kind::kAttribute)
        {
            onePlug(job.subject);
            job.last = plugValue(job.subject);
        }
        if (job.kind == Kind::kDeleted)
            oneNode(job.subject);
        job.once = call.boolean("runOnce");
        job.isProtected = call.has("protected");
        job.permanent = call.has("permanent");
        job.killWithScene = call.has("killWithScene");
        return job;
    }
    fail("scriptJob: what the job waits for has to be given: -event, -idleEvent, -attributeChange or -nodeDeleted");
}

constexpr Flag kScriptJob[] = {
    {"e", "event", "ss"}, {"ie", "idleEvent", "s"}, {"ac", "attributeChange", "ss"}, {"nd", "nodeDeleted", "ss"},
    {"ro", "runOnce", "b"}, {"pro", "protected"}, {"per", "permanent"}, {"kws", "killWithScene"}, {"cu", "compressUndo", "b"},
    {"ex", "exists", "i"}, {"k", "kill", "i", kCreate, true}, {"ka", "killAll"}, {"f", "force"}, {"lj", "listJobs"}, {"le", "listEvents"},
};

Value scriptJob(Call& call)
{
    if (call.has("exists"))
        return Value(jobs().count(call.integer("exists")) > 0);
    if (call.has("listEvents"))
        return Strings(std::begin(kEvents), std::end(kEvents));
    if (call.has("listJobs"))
    {
        Strings out;
        for (const auto& [id, job] : jobs())
            out.push_back(listed(id, job));
        return out;
    }
    for (const Call::Use* use : call.all("kill"))
        kill(use->args[0].asInt(), call.has("force"));
    if (call.has("killAll"))
        std::erase_if(jobs(), [&](const auto& j) { return !j.second.permanent && (call.has("force") || !j.second.isProtected); });
    if (call.has("kill") || call.has("killAll"))
        return {};
    Job        job = made(call);
    static int last = 0;
    if (jobs().empty())
        g_watched = watched();
    onDone = note;
    jobs()[++last] = std::move(job);
    return Value(last);
}

constexpr Flag kEvalDeferred[] = {{"lp", "lowestPriority"}, {"low", "lowPriority"}, {"en", "evaluateNext"}};

Value evalDeferred(Call& call)
{
    std::string text;
    for (const std::string& s : call.names())
        text += (text.empty() ? "" : " ") + s;
    script::onIdle(script::Language::mel, text, false);
    return {};
}

const Command kCommands[] = {
    {"evalDeferred", kEvalDeferred, evalDeferred, false},
    {"scriptJob", kScriptJob, scriptJob, false, false},
};

const bool g_added = (add(kCommands), true);

}  // namespace

void runScriptJobs()
{
    if (!jobs().empty())
        runDue();
}

void endScriptJobs()
{
    if (jobs().empty())
        return;
    mark("quitApplication");
    runDue();
}

}  // namespace mirk::command
