// Script jobs as the host drives them.
#pragma once

namespace mirk::command {

/// The host is idle: jobs whose event came, whose plug changed or whose node went run once each. Errors are shown.
void runScriptJobs();
/// The session ends.
void endScriptJobs();

}  // namespace mirk::command
