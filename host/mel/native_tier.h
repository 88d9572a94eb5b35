// Machine code for bytecode that runs often. The generator is a module (host/native) that is opened when the first
// piece of code gets hot; whatever it does not cover, the bytecode runs.
#pragma once
#include <atomic>
#include <memory>
#include <vector>

#include "mel/bytecode.h"

namespace mirk::mel {

/// Machine code of one body. It works on the registers of a frame and ends at an instruction that the interpreter is to
/// run next: one it does not cover, one that has to raise an error, a return. Registers that are read from there on are
/// then up to date.
class NativeCode
{
public:
    virtual ~NativeCode() = default;

    using Run = uint32_t (*)(Slot* registers, const void* at);
    Run                      run = nullptr;
    std::vector<const void*> entries;   ///< where to enter at an instruction; null: not there
    std::vector<std::pair<Type, uint16_t>> arrays;   ///< registers that must hold their array
    size_t                   bytes = 0;
    size_t                   furtherSlots = 0;   ///< used behind the frame's registers
    /// Procedures that became part of the code, in place of calls.
    std::vector<std::pair<const ProcSlot*, std::shared_ptr<const Function>>> taken;

    bool stale() const
    {
        for (const auto& [slot, function] : taken)
            if (slot->current != function.get())
                return true;
        return false;
    }
};

/// What machine code needs of the interpreter.
struct NativeSupport
{
    const void* interrupt;   ///< a byte, not 0 when scripts are to stop
    ArrayLayout array;
    /// Element writes past the end or into shared data; false where the interpreter is to raise the error.
    bool (*setInt)(Heap*, int32_t, int32_t);
    bool (*setFloat)(Heap*, int32_t, double);
    bool (*setVector)(Heap*, int32_t, const Slot*);
    int32_t (*toInt)(double);
    double (*modulo)(double, double);
    /// A built-in function of numbers; false if it failed: then the interpreter calls it again and reports it.
    bool (*callNative)(const Site*, Slot*, uint16_t);
};

/// The module's entry; null if there is nothing to gain.
using MirkMakeNative = std::unique_ptr<NativeCode> (*)(const Body& body, const NativeSupport& support);

/// Whether code gets native when it is hot; starts as the environment variable MIRK_MEL_NATIVE says (0: off).
bool nativeEnabled();
/// `hotTurns`: code is hot after so many turns of loops or calls.
void setNative(bool on, int hotTurns = 1000);
int  hotTurns();
/// Compiles the body unless that was tried before; null without effect if the tier is off or missing.
const NativeCode* nativeCode(const Body& body, const std::atomic<bool>& interrupt);

}  // namespace mirk::mel
