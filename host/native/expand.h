// Calls of small procedures become part of the caller's code.
#pragma once
#include "mel/bytecode.h"

namespace mirk::mel::native {

/// Instructions of expanded bodies only.
constexpr uint16_t kGuard = OP_DEFP + 1;   ///< the slot of site i still holds what was taken for it, else an exit
constexpr uint16_t kInit = OP_DEFP + 2;    ///< a gets its value of a fresh frame

/// A body with calls expanded. Registers of the procedures lie behind those of the frame.
struct Expanded
{
    Body                  body;
    std::vector<uint32_t> origin;   ///< the instruction of the original that each one belongs to
    std::vector<int>      site;     ///< of the call that an instruction came from, or -1
    std::vector<std::pair<const ProcSlot*, std::shared_ptr<const Function>>> taken;
};

/// Only calls are expanded whose procedure has no effect but its result, so that leaving it half way and calling it
/// again is the same: no counted objects, no globals, no loops, no calls but of mathematical functions.
std::unique_ptr<const Expanded> expand(const Body& body);

}  // namespace mirk::mel::native
