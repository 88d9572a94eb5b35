// The head of every compute that passes geometry on and changes it on the way.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPxNode.h>

#include "graph/access.h"

namespace mirk::nodes {

/// Output becomes a copy of input on shared buffers, and is clean. Returns the data behind it, a `T` that this output
/// alone holds and whose parts detach when written; null where nothing is left to do: the node has no effect, or the
/// input is no `T`.
template <class T>
T* passOn(MDataBlock& block, const MObject& input, const MObject& output)
{
    MDataHandle out = block.outputValue(output);
    out.copy(block.inputValue(input));
    out.setClean();
    if (block.inputValue(MPxNode::state).asShort() != 0 || !dynamic_cast<T*>(HandleAccess::data(out)))
        return nullptr;
    HandleAccess::detachForWrite(out);
    return dynamic_cast<T*>(HandleAccess::data(out));
}

}  // namespace mirk::nodes
