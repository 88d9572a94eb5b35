// The embedded interpreter: started when first used, one `__main__` namespace for all statements.
#pragma once
#include <string>
#include <vector>

#include "command/registry.h"

namespace mirk::python {

bool started();
/// Starts the interpreter with the `maya` package; does nothing the second time. Throws command::Error.
void start();
/// Ends it, if it runs. Exit handlers of scripts run.
void finish();

/// Runs statements in `__main__`. A text that is one expression gives its value. Throws command::Error that names the
/// exception, file and line.
command::Value run(const std::string& text);
/// As `run`, and the value as str() shows it; "" for no value.
std::string    runForText(const std::string& text);
/// Runs a script file as `__main__` with its arguments; returns the exit status: 0, 1 after a traceback, or what
/// sys.exit asked for.
int            runFile(const std::string& path, const std::vector<std::string>& arguments = {});

/// How `maya.mel.eval` runs text.
void setMelEvaluator(command::Value (*evaluate)(const std::string& text));
/// For the keyboard: asks the running Python code to stop. May be called from a signal handler.
void interrupt();
/// Drops an interrupt that no Python code has seen.
void forgetInterrupt();

}  // namespace mirk::python
