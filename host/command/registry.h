// The command registry: one syntax table a command, used alike by MEL, Python and C++. A command's handler never
// knows which language called it.
#pragma once
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "command/value.h"

namespace mirk::command {

/// What a handler throws: one clear message that names the thing. The caller rolls back what the command did.
struct Error : std::runtime_error { using std::runtime_error::runtime_error; };

enum Mode : uint8_t { kCreate = 1, kQuery = 2, kEdit = 4 };

/// One flag. `args` has a letter for each argument: i int, f double, s string, b boolean, t time, l distance,
/// a angle, x any value. "" is a plain switch. In query mode a flag takes no argument unless `queryArgs`.
/// A flag followed by nothing that could be its argument, where `args` is "b", reads as true.
struct Flag
{
    const char* shortName;        ///< without dash
    const char* longName;
    const char* args = "";
    uint8_t     modes = kCreate;
    bool        multi = false;    ///< may be given several times
    bool        queryArgs = false;
};

class Call;
using Handler = Value (*)(Call&);

/// A command's row: name, flags, handler. `undoable` commands run as one undo step; a failed one leaves no trace.
struct Command
{
    const char*           name;
    std::span<const Flag> flags = {};
    Handler               handler = nullptr;
    bool                  undoable = true;
    bool                  takesObjects = true;   ///< free arguments are allowed
    void*                 user = nullptr;        ///< for handlers that serve several rows, plug-in commands among them
    bool                  raw = false;           ///< arguments come unread, flags among them
};

/// A parsed call: what the handler reads.
class Call
{
public:
    struct Use { const Flag* flag; std::vector<Value> args; };

    const Command*     command = nullptr;
    Mode               mode = kCreate;
    std::vector<Use>   uses;      ///< in the order given
    std::vector<Value> args;      ///< free arguments, in order
    bool               display = false;

    // What a handler says about its result to languages with more kinds of values than MEL.
    int                rowWidth = 0;    ///< numbers that belong together in a float array: x, y, z
    bool               truth = false;   ///< an int that answers yes or no
    std::vector<std::string> keys;      ///< what the elements of an array are called

    bool isQuery() const { return mode == kQuery; }
    bool isEdit() const { return mode == kEdit; }
    /// By long name. The first use, or null.
    const Use*  use(std::string_view longName) const;
    bool        has(std::string_view longName) const { return use(longName) != nullptr; }
    std::string str(std::string_view longName, std::string otherwise = "") const;
    double      num(std::string_view longName, double otherwise = 0) const;
    int         integer(std::string_view longName, int otherwise = 0) const;
    bool        boolean(std::string_view longName, bool otherwise = false) const;  ///< false also for "-flag off"
    std::vector<const Use*> all(std::string_view longName) const;
    /// Free arguments as names, arrays flattened.
    Strings     names() const;
};

/// Adds a command; a name that is taken is replaced (a plug-in loaded again). The row is kept by reference and must
/// outlive the registry, its flags too. `kind` is what whatIs tells: "Command" or "Plug-in command".
void           add(const Command& command);
void           add(std::span<const Command> commands);
void           remove(std::string_view name);
const Command* find(std::string_view name);
std::vector<std::string> names();   ///< all, sorted

/// Parses flags and arguments against the row. `raw` is what the language gives: flags are strings that begin with
/// a dash (abbreviations are not accepted), arrays may stand for several arguments. Errors, in the host's words:
/// "Invalid flag '-x'.", "Flag '-x' must be passed a string argument.", ...
Call parse(const Command& command, std::span<const Value> raw);
/// For Python: flags by name, with their values (lists for several arguments).
struct Keyword { std::string name; Value value; };
Call parseKeywords(const Command& command, std::span<const Value> args, std::span<const Keyword> keywords);

/// Runs a parsed call as one undo step if the command is undoable; on an error everything it did is undone and the
/// error goes on to the caller.
Value run(Call& call);
/// While set, told of every call before it runs.
extern void (*onRun)(const Call& call);
/// find + parse + run. Throws Error: "Cannot find procedure \"name\"." for an unknown name.
Value execute(std::string_view name, std::span<const Value> raw);

}  // namespace mirk::command
