#include "command/startup.h"

#include <malloc.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <vector>

#include "command/commands.h"
#include "command/message.h"
#include "command/undo.h"
#include "graph/evaluate.h"
#include "graph/undo.h"
#include "mel/interpreter.h"
#include "nodes/builtin.h"
#include "nodes/poly_edit.h"
#include "nodes/unknown.h"
#include "python/python.h"

namespace mirk {

namespace fs = std::filesystem;

namespace {

bool        g_interactive = false;
std::string g_private;   // folder that goes when the process ends

/// Commands' scopes on the graph's undo queue.
class QueueHooks : public command::UndoHooks
{
public:
    void begin(const char* name) override { scopes_.push_back(std::make_unique<undo::Scope>(name)); }
    void commit() override { take()->commit(); }
    void rollback() noexcept override { take()->rollback(); }

private:
    std::unique_ptr<undo::Scope> take()
    {
        auto last = std::move(scopes_.back());
        scopes_.pop_back();
        return last;
    }
    std::vector<std::unique_ptr<undo::Scope>> scopes_;
};

void sendMessage(mel::Severity severity, std::string_view text)
{
    const std::string s(text);
    switch (severity)
    {
    case mel::Severity::kInfo:    message::info(s); break;
    case mel::Severity::kWarning: message::warning(s); break;
    case mel::Severity::kError:   message::error(s); break;
    case mel::Severity::kResult:  message::result(s); break;
    }
}

std::string privateFolder()
{
    if (g_private.empty())
    {
        std::string name = (fs::temp_directory_path() / "mirk-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw command::Error("Cannot make a folder in " + fs::temp_directory_path().string());
        g_private = name + "/";
    }
    return g_private;
}

std::vector<std::string> scriptFolders()
{
    std::vector<std::string> out{userScriptDir()};
    for (const char* variable : {"MAYA_SCRIPT_PATH"})
        if (const char* value = std::getenv(variable))
        {
            std::string list = value;
            for (size_t at = 0; at <= list.size();)
            {
                const size_t end = std::min(list.find(':', at), list.size());
                if (end > at)
                    out.push_back(list.substr(at, end - at));
                at = end + 1;
            }
        }
    return out;
}

}  // namespace

bool isInteractive() { return g_interactive; }
void setInteractive(bool on) { g_interactive = on; }

const std::string& userScriptDir()
{
    static const std::string dir = [] {
        const char* given = std::getenv("MIRK_USER_SCRIPT_DIR");
        std::string d = given && *given ? given : privateFolder() + "scripts";
        if (d.back() != '/')
            d += '/';
        std::error_code ignored;
        fs::create_directories(d, ignored);
        return d;
    }();
    return dir;
}

std::string userFolder(const std::string& name)
{
    const std::string d = privateFolder() + name + (name.empty() ? "" : "/");
    std::error_code   ignored;
    fs::create_directories(d, ignored);
    return d;
}

void startHost(const StartOptions& options)
{
    static bool done = false;
    g_interactive = options.interactive || g_interactive;
    if (done)
        return;
    done = true;
    // large scratch arrays of nodes come again in every evaluation: keep their pages
    mallopt(M_MMAP_THRESHOLD, 512 << 20);
    mallopt(M_TRIM_THRESHOLD, 512 << 20);
    static QueueHooks hooks;
    command::setUndoHooks(&hooks);
    mel::setSinks({[](std::string_view text) { message::print(std::string(text)); }, sendMessage});
    eval::setReporter([](const std::string& text, bool isError) { isError ? message::error(text) : message::warning(text); });
    python::setMelEvaluator([](const std::string& text) { return mel::execute(text); });
    registerBuiltinNodes();
    nodes::registerUnknownTypes();
    nodes::registerPolyEdits();
    registerCommands();
    mel::setScriptPath(scriptFolders());
    std::atexit(stopHost);
    newScene();
}

void stopHost()
{
    python::finish();
    if (!g_private.empty())
    {
        std::error_code ignored;
        fs::remove_all(g_private, ignored);
        g_private.clear();
    }
}

}  // namespace mirk
