// Commands that plug-ins register: a row of the registry each, and what stands behind it.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include <maya/MArgList.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "command/registry.h"
#include "graph/undo.h"

namespace mirk {

struct UserCommand
{
    std::string               name;
    void*                   (*creator)() = nullptr;
    bool                      hasSyntax = false;
    MSyntax                   syntax;
    std::vector<command::Flag> flags;
    std::vector<std::string>  texts;      ///< flag names and argument letters, which the flags point at
    command::Command          row;

    UserCommand(const std::string& name, void* (*creator)(), MSyntax (*makeSyntax)());
    UserCommand(const UserCommand&) = delete;
};

struct ArgAccess
{
    static std::vector<std::vector<std::string>>&       args(MArgList& list) { return list.args_; }
    static const std::vector<std::vector<std::string>>& args(const MArgList& list) { return list.args_; }
    static MArgList make(const command::Call& call);
};

struct SyntaxAccess
{
    using Flag = MSyntax::Flag;
    static const std::vector<MSyntax::Flag>&     flags(const MSyntax& s) { return s.flags_; }
    static const std::vector<MSyntax::MArgType>& args(const MSyntax& s) { return s.args_; }
};

struct UserCommandAccess
{
    static void bind(MPxCommand& c, const MSyntax& s) { c.syntax_ = s; }
};

/// What a running user command has said so far. The innermost is current.
class CommandFrame
{
public:
    CommandFrame();
    ~CommandFrame();
    static CommandFrame* current();
    /// Holds an error back while the command runs: if it fails this is its message. False if no command runs.
    static bool holdError(const std::string& text);
    std::string takeError();

    command::Value result;
    std::vector<std::unique_ptr<undo::Edit>> nested;   ///< of scripts it ran with undo on
    std::string error;

private:
    CommandFrame* outer_;
    int           depth_;
};

}  // namespace mirk
