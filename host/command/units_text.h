// Units by name, and values in the user's units that come back exactly.
#pragma once
#include <string>

#include "graph/attribute.h"

namespace mirk::command {

std::string linearUnitName(bool full = false);    ///< "cm", or "centimeter"
std::string angularUnitName(bool full = false);   ///< "deg"
std::string timeUnitName();                       ///< "film"

/// A number in the user's unit that fromUi() turns into exactly `value`: the conversion, or one of its neighbours.
double exactUi(const Attribute& attr, double value);

}  // namespace mirk::command
