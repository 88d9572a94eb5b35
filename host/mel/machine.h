// The machine: runs compiled functions on one stack of registers.
#pragma once
#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "mel/bytecode.h"

namespace mirk::mel {

class Machine
{
public:
    Machine();
    ~Machine();

    /// Runs one function from outside; arguments are converted to its parameters. Arrays go in by value.
    Value call(std::shared_ptr<const Function> f, std::span<const Value> args = {});
    /// A name that no text defined when the caller was compiled: a procedure, a command, a script file of that name.
    Value callByName(const std::string& name, std::span<const Value> args);

    static constexpr int kMaxDepth = 100;        ///< entries from outside use the native stack
    /// One entry from outside, as long as it lives.
    class Entry
    {
    public:
        explicit Entry(Machine& m) : machine_(m) { ++m.depth; }
        ~Entry()
        {
            if (--machine_.depth == 0)
                machine_.retired_.clear();
        }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

    private:
        Machine& machine_;
    };

    std::recursive_mutex lock;                   ///< one interpreter, one script at a time
    std::atomic<bool>    interruptFlag{false};
    int                  depth = 0;              ///< of entries from outside
    bool                 (*findScript)(const std::string& name) = nullptr;   ///< sources `name`.mel; false if there is none

private:
    struct Frame
    {
        const Function* function;   ///< lives: its slot, the caller outside or `retired_` holds it
        const Body*     body;
        Slot*           base;
        const Instr*    ip;                ///< while another frame runs: the call
        bool            written = false;   ///< globals are written back and may be newer than the registers
    };

    void  push(const Function& f);
    void  define(ProcSlot& slot, const std::shared_ptr<const Function>& function);
    void  pop();
    void  run(size_t bottom, Value& result);
    void  execute(size_t bottom, Value& result);
    void  callProc(const Site& site, Slot* from);
    bool  entersNative(const Body& body);
    void  renewNative(const Body& body);
    void  handle(size_t bottom);
    void  readGlobalsKeeping(Type result, uint16_t reg);
    static void giveResult(Type type, Slot* out, Slot* value);
    void  writeGlobals(Frame& f);
    void  readGlobals(Frame& f);
    Value callDynamic(const Site& site, Slot* registers);
    const Instr* callCommand(const Site& site, Slot* registers, const Instr* ip);
    void  callSlow(const Site& site, Slot* registers, uint16_t out);
    void  checkInterrupt();

    std::unique_ptr<Slot[]> stack_;
    Slot*                   top_;
    Slot*                   end_;
    std::unique_ptr<Frame[]> frames_;
    Frame*                  frame_;      ///< the one that runs; frames_ itself while none does
    size_t                  frameCount() const { return size_t(frame_ - frames_.get()); }
    std::vector<std::shared_ptr<const Function>> retired_;   ///< replaced procedures that frames may still run
    size_t                  maxRetired_ = 256;
};

Machine& machine();

}  // namespace mirk::mel
