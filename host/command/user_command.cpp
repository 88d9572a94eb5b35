#include "command/user_command.h"

#include "command/message.h"
#include "graph/evaluate.h"

namespace mirk {
namespace {

CommandFrame* g_frame = nullptr;

char letterOf(MSyntax::MArgType type)
{
    switch (type) {
    case MSyntax::kBoolean: return 'b';
    case MSyntax::kLong:
    case MSyntax::kUnsigned: return 'i';
    case MSyntax::kDouble: return 'f';
    case MSyntax::kDistance: return 'l';
    case MSyntax::kAngle: return 'a';
    case MSyntax::kTime: return 't';
    default: return 's';
    }
}

/// A command on the undo queue: itself, and what scripts that it ran recorded.
struct CommandEdit : undo::Edit
{
    void undo() override
    {
        message(command->undoIt(), "undo");
        for (auto e = nested.rbegin(); e != nested.rend(); ++e)
            (*e)->undo();
    }
    void redo() override
    {
        for (auto& e : nested)
            e->redo();
        message(command->redoIt(), "redo");
    }
    void message(const MStatus& status, const char* what) const
    {
        if (!status)
            message::error("The command " + name + " could not " + what + ".");
    }

    std::string                              name;
    std::unique_ptr<MPxCommand>              command;
    std::vector<std::unique_ptr<undo::Edit>> nested;
};

command::Value runUserCommand(command::Call& call)
{
    const auto& user = *static_cast<UserCommand*>(call.command->user);
    auto        edit = std::make_unique<CommandEdit>();
    edit->name = user.name;
    edit->command.reset(static_cast<MPxCommand*>(user.creator()));
    if (!edit->command)
        throw command::Error("The command " + user.name + " cannot be created.");
    UserCommandAccess::bind(*edit->command, user.syntax);
    edit->command->setCommandString(user.name.c_str());

    CommandFrame frame;
    // the class undoes its own work; what the host records of it meanwhile only serves to take back a failed call
    undo::Scope  scope(user.name, false);
    const MStatus status = edit->command->doIt(ArgAccess::make(call));
    if (!status) {
        scope.rollback();
        std::string text = frame.takeError();
        throw command::Error(text.empty() ? "The command " + user.name + " failed." : text);
    }
    const auto dropped = scope.take();
    if (const std::string text = frame.takeError(); !text.empty())
        message::error(text);
    edit->nested = std::move(frame.nested);
    command::Value result = std::move(frame.result);
    if (edit->command->isUndoable())
        undo::push(std::move(edit));
    else
        for (auto& e : edit->nested)
            undo::push(std::move(e));
    return result;
}

std::string undashed(const std::string& name) { return !name.empty() && name[0] == '-' ? name.substr(1) : name; }

}  // namespace

UserCommand::UserCommand(const std::string& n, void* (*c)(), MSyntax (*makeSyntax)()) : name(n), creator(c), hasSyntax(makeSyntax)
{
    if (makeSyntax)
        syntax = makeSyntax();
    const auto& given = SyntaxAccess::flags(syntax);
    texts.reserve(given.size() * 3);
    for (const auto& f : given) {
        std::string letters;
        for (MSyntax::MArgType t : f.args)
            letters += letterOf(t);
        const size_t at = texts.size();
        texts.push_back(undashed(f.shortName));
        texts.push_back(undashed(f.longName));
        texts.push_back(letters);
        const uint8_t modes = uint8_t(command::kCreate | (syntax.canQuery() ? command::kQuery : 0) | (syntax.canEdit() ? command::kEdit : 0));
        flags.push_back({texts[at].c_str(), texts[at + 1].c_str(), texts[at + 2].c_str(), modes, f.multi, f.queryArgs});
    }
    row.name = name.c_str();
    row.flags = flags;
    row.handler = runUserCommand;
    row.user = this;
    row.raw = !hasSyntax;
}

MArgList ArgAccess::make(const command::Call& call)
{
    MArgList list;
    auto     put = [&](const command::Value& v) { list.args_.push_back(v.isArray() ? v.asStrings() : std::vector<std::string>{v.asString()}); };
    if (call.isQuery() || call.isEdit())
        list.args_.push_back({call.isQuery() ? "-q" : "-e"});
    for (const auto& use : call.uses) {
        list.args_.push_back({std::string("-") + use.flag->shortName});
        for (const auto& v : use.args)
            put(v);
    }
    for (const auto& v : call.args)
        put(v);
    return list;
}

CommandFrame::CommandFrame() : outer_(g_frame), depth_(eval::depth()) { g_frame = this; }
CommandFrame::~CommandFrame() { g_frame = outer_; }
CommandFrame* CommandFrame::current() { return g_frame; }

bool CommandFrame::holdError(const std::string& text)
{
    if (!g_frame || g_frame->depth_ != eval::depth())   // a node's error is not the command's
        return false;
    if (!g_frame->error.empty())
        message::error(g_frame->error);
    g_frame->error = text;
    return true;
}

std::string CommandFrame::takeError()
{
    std::string text;
    text.swap(error);
    return text;
}

}  // namespace mirk
