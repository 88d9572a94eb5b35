// Starting and ending the host: the one place where its parts are joined.
#pragma once
#include <string>

namespace mirk {

struct StartOptions
{
    bool interactive = false;       ///< what MGlobal::mayaState tells
};

/// Registers built-in node types and commands, joins languages, messages and undo, makes a new scene. Once a process;
/// later calls do nothing.
void startHost(const StartOptions& options = {});
/// Ends the embedded interpreter and removes the private folder. Called at exit too.
void stopHost();
bool isInteractive();
void setInteractive(bool on);

/// Folder of the user's scripts, with a slash at its end: MIRK_USER_SCRIPT_DIR, or one private to the process.
const std::string& userScriptDir();
/// Folder for the user's other files ("prefs/", "shelves/" ...), made on demand.
std::string userFolder(const std::string& name);

}  // namespace mirk
