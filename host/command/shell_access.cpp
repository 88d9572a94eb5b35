#include "command/shell_access.h"

#include <cstdlib>

#include "command/registry.h"

namespace mirk::command {

namespace {

bool& allowed()
{
    static bool on = [] {
        const char* set = std::getenv("MIRK_ALLOW_SHELL");
        return set && std::string(set) == "1";
    }();
    return on;
}

}  // namespace

void allowShell(bool on) { allowed() = on; }

void checkShell(const std::string& who)
{
    if (!allowed())
        throw Error(who + ": this session may not start other programs; see mirk run --allow-shell.");
}

}  // namespace mirk::command
