// The `mirk` command: runs scripts and scenes with the toolkit loaded, lists its nodes, or prompts.
#include <csignal>
#include <cstdio>
#include <filesystem>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "api/script.h"
#include "app.h"
#include "command/message.h"
#include "command/registry.h"
#include "command/script_jobs.h"
#include "command/shell_access.h"
#include "command/startup.h"
#include "mel/interpreter.h"
#include "mel/native_tier.h"
#include "python/python.h"

namespace app {

namespace {

volatile std::sig_atomic_t interrupts = 0;

/// The first one asks the script to stop; if that does not help, the second one ends the program.
void onInterrupt(int)
{
    if (++interrupts > 1)
        _exit(130);
    mirk::mel::interrupt();
    mirk::python::interrupt();
}

}  // namespace

void catchInterrupts()
{
    interrupts = 0;
    std::signal(SIGINT, onInterrupt);
}

void start(bool interactive)
{
    namespace fs = std::filesystem;
    mirk::startHost({interactive});
    const fs::path bin = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path plugin = (bin / ".." / "lib" / "mirk.so").lexically_normal();
    mirk::command::execute("loadPlugin", std::vector<mirk::command::Value>{"-quiet", plugin.string()});
}

void idle()
{
    mirk::script::runIdle();
    mirk::command::runScriptJobs();
}

}  // namespace app

int main(int argc, char** argv)
{
    CLI::App cli{"Procedural toolkit with a host of its own"};
    cli.require_subcommand(1);

    app::RunOptions options;
    CLI::App* run = cli.add_subcommand("run", "Run .py, .mel and .ma files in one session with the toolkit loaded");
    run->add_option("files", options.files, "Scripts, scenes and .obj files, in this order");
    run->add_option("-e", options.text, "MEL text to run after the files");
    run->add_option("--frames", options.frames, "Step the time over a range: A-B");
    run->add_option("--export", options.exportFile, "Write the scene's geometry (.obj) or the scene (.ma)");
    run->add_option("--render", options.renderFile, "Write a picture; a run of # in the name is the frame");
    run->add_option("--save", options.saveFile, "Save the scene (.ma)");
    run->add_option("--camera", options.camera, "Camera of the picture (persp)");
    run->add_option("--width", options.width, "Of the picture, in pixels")->check(CLI::Range(1, 16384));
    run->add_option("--height", options.height, "Of the picture, in pixels")->check(CLI::Range(1, 16384));
    run->add_flag("--wire", options.wire, "Draw edges over the shading");
    run->add_flag("--no-locators", options.noLocators, "Leave locators out of the picture");
    run->add_flag("--interactive", options.interactive, "Report interactive mode");

    bool allowShell = false;
    run->add_flag("--allow-shell", allowShell, "Let MEL start other programs (system, exec, popen)");

    std::string name;
    CLI::App* nodes = cli.add_subcommand("nodes", "List the node types, or the attributes of one");
    nodes->add_option("name", name, "A node type");

    bool python = false, interactive = false;
    CLI::App* shell = cli.add_subcommand("shell", "Prompt for MEL or Python");
    shell->add_flag("--python", python, "Begin with Python");
    shell->add_flag("--interactive", interactive, "Report interactive mode");

    bool noNative = false;
    for (CLI::App* command : {run, shell})
        command->add_flag("--no-native", noNative, "Run MEL as bytecode only, without machine code");

    CLI11_PARSE(cli, argc, argv);
    if (noNative)
        mirk::mel::setNative(false);
    int status = 1;
    if (allowShell)
        mirk::command::allowShell(true);
    try
    {
        if (run->parsed())
            status = app::run(options);
        else if (nodes->parsed())
            status = app::nodes(name);
        else
            status = app::shell(python, interactive);
        mirk::command::endScriptJobs();
    }
    catch (const std::exception& e)
    {
        mirk::message::error(e.what());
    }
    mirk::stopHost();
    std::fflush(nullptr);
    return status;
}
