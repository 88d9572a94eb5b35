// Scripts run for C++ callers: what they show, what they record for undo, and what is put off until the host is idle.
#pragma once
#include <string>

#include "command/value.h"

namespace mirk::script {

enum class Language { mel, python };

/// Runs a text. With `display` it and its result are shown; without `undo` what it does leaves no trace in the undo
/// queue. Throws command::Error.
command::Value run(Language language, const std::string& text, bool display, bool undo);

void onIdle(Language language, const std::string& text, bool display);
/// Runs what was put off, and what that puts off in turn. Errors are shown.
void runIdle();

}  // namespace mirk::script
