// What is known beyond one text: global variables and procedures.
#pragma once
#include "mel/bytecode.h"

namespace mirk::mel {

class Symbols
{
public:
    /// Variables of the top level.
    Global* global(std::string_view name) const;
    Global& declare(const std::string& name, Type type);
    /// Takes back what a text declared that then did not compile.
    void    undeclare(Global& global);
    /// Gives a variable another type, with its value or the default; the old one is returned and stays to be restored or dropped.
    Global      retype(Global& global, Type type, bool keepValue);
    void        restore(Global& global, const Global& before);
    static void drop(Global& global);

    /// The slot of a global procedure; made empty if it does not exist.
    ProcSlot& proc(const std::string& name);
    ProcSlot* findProc(std::string_view name) const;   ///< null if never named
    const Function* defined(std::string_view name) const;
    /// Procedures without `global` in texts that are no files.
    ProcSlot& interactive(const std::string& name);
    ProcSlot* findInteractive(std::string_view name) const;
    /// A procedure of one file. Kept for good: other procedures may call it as long as they live.
    ProcSlot& local(const std::string& name);

    /// Changes when a name that compiled texts took for a built-in function becomes a procedure.
    uint64_t epoch = 0;

private:
    struct Hash
    {
        using is_transparent = void;
        size_t operator()(std::string_view s) const { return std::hash<std::string_view>()(s); }
    };
    template <class T> using Map = std::unordered_map<std::string, std::unique_ptr<T>, Hash, std::equal_to<>>;

    template <class T> static T* look(const Map<T>& map, std::string_view name)
    {
        auto it = map.find(name);
        return it == map.end() ? nullptr : it->second.get();
    }

    Map<Global>   globals_;
    Map<ProcSlot> procs_, interactive_;
    std::deque<ProcSlot> locals_;
};

Symbols& symbols();

/// The type of what a variable holds.
Type heldType(const Global& global);

}  // namespace mirk::mel
