// The value behind an MCommandResult.
#pragma once
#include <maya/MCommandResult.h>

#include "command/value.h"

namespace mirk {

struct ResultValue { command::Value value; };

struct ResultAccess
{
    static void set(MCommandResult& result, const command::Value& value) { result.value_->value = value; }
};

}  // namespace mirk
