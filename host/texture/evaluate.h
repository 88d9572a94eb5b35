// What drives an attribute, evaluated at many places of a texture.
#pragma once
#include <cstddef>

#include "graph/node.h"

class MVector;

namespace mirk::texture {

/// A node type that gives a 2D texture, built in or of a plug-in.
bool isTexture2d(const NodeType& type);

/// True if a network with a 2D texture drives the attribute, the colour it is a part of, or a part of it.
bool hasTexture(Node& node, const Attribute& attribute);

/// Colour and alpha of the attribute at each (u, v), as MDynamicsUtil::evalDynamics2dTexture tells; null for what is not
/// wanted. False, and nothing is written, if hasTexture says so.
bool evaluate(Node& node, const Attribute& attribute, const double* u, const double* v, size_t count, MVector* colors,
              double* alphas);

}  // namespace mirk::texture
