// Variables that scripts and plug-ins keep beside the scene, for the time of the process.
#pragma once
#include <map>
#include <string>

#include "command/value.h"

namespace mirk::command {

std::map<std::string, Value>& optionVars();

}  // namespace mirk::command
