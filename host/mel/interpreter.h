// The MEL interpreter as the rest of the host sees it.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "command/value.h"
#include "mel/error.h"

namespace mirk::mel {

/// Runs text; its value is that of the last statement. Throws ScriptError, whose what() is one clear message with
/// source, line, column and token. Syntax and type errors are found before anything of the text runs.
command::Value execute(std::string_view text, std::string_view sourceName = "<eval>");
/// Runs a file, looked up along the script path too; ".mel" may be left out. Throws ScriptError.
command::Value sourceFile(const std::string& path);
/// The file that sourceFile would run; empty if there is none.
std::string findScript(const std::string& path);
/// True for a procedure, a built-in function, a command or a script of that name.
bool exists(std::string_view name);
/// What a name is, in the host's words: "Command", "Mel procedure entered interactively.", "int variable", "Unknown" ...
std::string whatIs(std::string_view name);
/// Calls a procedure, built-in function or command with values.
command::Value call(std::string_view name, const std::vector<command::Value>& args);

enum class Severity { kInfo, kWarning, kError, kResult };
/// Where messages go: `print` gets its text as it is, the others one message without a line end.
struct Sinks
{
    void (*print)(std::string_view) = nullptr;
    void (*message)(Severity, std::string_view) = nullptr;
};
/// What has no sink goes to the host's messages.
Sinks setSinks(Sinks sinks);   ///< gives those before
void print(std::string_view text);
void message(Severity severity, std::string_view text);

void                     setScriptPath(std::vector<std::string> folders);
std::vector<std::string> scriptPath();
/// Stops the running script at its next turn of a loop or call; from any thread.
void interrupt();

/// Text of a value as `print` shows it.
std::string printed(const command::Value& value);

}  // namespace mirk::mel
