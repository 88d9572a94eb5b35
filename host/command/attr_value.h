// Values of plugs as commands and scene files see them: read into language values, written from argument lists.
#pragma once
#include "command/cmd_util.h"

namespace mirk::command {

class Lending;

/// The value in the user's units; evaluates. Arrays come as flat float arrays on the attribute's own buffer where the
/// kinds agree. Errors for kinds that have no value in the languages (messages, geometry).
/// With `lending`, an array that it takes is left there and nothing is returned.
Value readPlug(Cell& cell, Call& call, Lending* lending = nullptr);
/// The name getAttr -type and setAttr -type use: "double3", "mesh", "Int32Array"; "" if there is none.
std::string typeNameOf(const Cell& cell);
std::string typeNameOf(const Attribute& attr);
std::string numericName(Store store);

/// Makes the data object of a `-type` from its arguments. Null for a type that is no data type.
Ref<Data> dataFromArguments(const std::string& type, Arguments& args);
/// Writes numbers of the arguments into a number, tuple or matrix plug; values are in the user's units.
/// `clamp`: out of range goes to the limit instead of an error.
void writeNumbers(Cell& cell, Arguments& args, bool clamp);
/// Numbers one value of the attribute takes: 1, 2, 3, 4 or 16; 0 for data.
size_t numbersOf(const Attribute& attr);

/// An enum's fields as "a:b=5:c"; numbers run on where none is written.
std::string enumFields(const Attribute& attr);

}  // namespace mirk::command
