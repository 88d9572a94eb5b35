// Units by name, and values in the user's units that come back exactly.
#pragma once
#include <string>

#include "graph/attribute.h"

namespace mirk::command {

std::string linearUnitName(bool full = false);    ///< "cm", or "centimeter"
std::string angularUnitName(bool full = false);   ///< "deg"
std::string timeUnitName();                       ///< "film"

/// Reads a number with a unit of angle or length behind it ("45deg", "2m") in the user's unit; false if it is none.
bool readWithUnit(const std::string& text, double& number);

/// A number in the user's unit that fromUi() turns into exactly `value`: the conversion, or one of its neighbours.
double exactUi(const Attribute& attr, double value);

}  // namespace mirk::command
