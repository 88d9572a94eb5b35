// Transforms by their attributes: matrices in, channels written.
#pragma once
#include <maya/MMatrix.h>
#include <maya/MVector.h>

#include "command/cmd_util.h"

namespace mirk::command {

MMatrix worldMatrix(const Path& path);     ///< down to and including the last node
MMatrix parentMatrix(const Path& path);    ///< without it
MVector channels(Node& transform, const char* attribute);   ///< translate, rotate ... in internal units; evaluates
void    setChannels(Node& transform, const char* attribute, const MVector& value);   ///< undoable; unchanged ones stay untouched
/// Translation, rotation, scale and shear so that the local matrix is `local`; pivots, axis and joint orientation stay.
void    setLocalMatrix(Node& transform, const MMatrix& local);
MMatrix localMatrix(Node& transform);

}  // namespace mirk::command
