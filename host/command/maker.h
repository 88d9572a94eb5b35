// Commands that make a shape with the node that computes its geometry: polyCube and its kin, circle, sphere ...
#pragma once
#include "command/cmd_util.h"

namespace mirk::command {

/// A flag that sets an attribute of the maker node. `attribute` may list three children's parent for vectors.
struct MakerFlag { const char* flag; const char* attribute; };

struct Maker
{
    const char* nodeType;       ///< "polyCube"
    const char* shapeType;      ///< "mesh"
    const char* transformName;  ///< "pCube#"
    const char* output;         ///< of the node
    const char* input;          ///< of the shape
    std::span<const MakerFlag> flags;
};

/// Sets the attributes of a node from the flags given, within their limits.
void  setFromFlags(const Call& call, const Maker& maker, Node& node);
/// True if the call only edits or asks about the node behind what is named; `result` is its answer then.
bool  isNoCreation(Call& call, const Maker& maker, Value& result);

/// Create: returns the transform and the maker (alone without history). Edit and query work on the maker of the object.
/// With `parts`, for a node with several outputs (`output`, then with the numbers 1 ...): each part gets a transform of
/// its own, named by its place before the name of the whole, below the transform that is returned.
Value runMaker(Call& call, const Maker& maker, std::span<const char* const> parts = {});

}  // namespace mirk::command
