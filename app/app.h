// The subcommands of `mirk`. Each returns the exit status; errors are thrown as std::exception.
#pragma once
#include <string>
#include <vector>

#include "command/value.h"

namespace app {

struct RunOptions
{
    std::vector<std::string> files;
    std::string              text, frames, exportFile, renderFile, saveFile, camera;
    int                      width = 1280, height = 720;
    bool                     wire = false, noLocators = false, interactive = false;
};

int run(const RunOptions& options);
/// The node table, or the attributes of one type.
int nodes(const std::string& name);
int shell(bool python, bool interactive);

/// Starts the host and loads the toolkit.
void start(bool interactive);
/// Runs what scripts put off until the host is idle.
void idle();
/// A value as results are shown: on one line, elements with a space between.
std::string resultText(const mirk::command::Value& value);
/// Ctrl-C stops the running script; a second one the process.
void catchInterrupts();

}  // namespace app
