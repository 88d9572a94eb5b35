// The `maya` package of the embedded interpreter.
#pragma once
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <string>

#include "command/value.h"

namespace mirk::python {

/// Puts `maya`, `maya.cmds`, `maya.mel`, `maya.standalone`, `maya.utils` into sys.modules and sends sys.stdout and
/// sys.stderr through the host's messages. False with a Python error set.
bool installPackage();
extern command::Value (*melEvaluator)(const std::string& text);

}  // namespace mirk::python
