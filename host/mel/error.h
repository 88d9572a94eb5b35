// Errors of scripts: where and at which token.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "command/registry.h"

namespace mirk::mel {

/// One text given to the interpreter; procedures keep the text they came from.
struct Source
{
    std::string name;   ///< file path, or "<eval>"
    std::string text;
    bool        isFile = false;
};

/// what() is one line: source, line.column, token, message.
struct ScriptError : command::Error
{
    ScriptError(const std::string& what, std::string m, std::string s, int l, int c)
        : command::Error(what), message(std::move(m)), source(std::move(s)), line(l), column(c)
    {
    }
    std::string message;   ///< without the position
    std::string source;
    int         line, column;
    bool        interrupted = false;   ///< stopped from outside: no script catches it
};

/// The error for the token that stands at `offset` of the text.
ScriptError errorAt(const Source& source, uint32_t offset, const std::string& message);

}  // namespace mirk::mel
