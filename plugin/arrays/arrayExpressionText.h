// The MEL text that `arrayExpression` has the host's interpreter run: it loads the arrays into global variables,
// defines one procedure with a loop around the artist's text, and calls it. Nothing here knows the host.
#pragma once
#include <array>
#include <string>

namespace arrayExpressionText {

constexpr int kInputCount = 5;

enum class Kind { kNone, kInts, kReals, kVectors };   ///< kNone: no array, no lines for it

/// A number as text, in the host's conversion.
using Number = std::string;

/// What `additionalLocalVariables` adds for one array.
struct Statistics
{
    Number min, max, sum, product;
};

struct Input
{
    Kind        kind = Kind::kNone;
    std::string plug;              ///< full name of the plug that the text reads the array from
    Statistics  statistics;
};

struct Source
{
    std::string                    node;
    Number                         time;
    std::array<Input, kInputCount> inputs;
    bool                           withStatistics = false;
    std::string                    startBlock, expression, endBlock;
};

/// The whole text.
std::string text(const Source& source);

/// The assignment that gives back an input's array when it is executed. Component: 'x', 'y' or 'z' of vectors, else 0.
std::string readBack(int input, Kind kind, char component = 0);

/// The texts of a new node.
std::string defaultStartBlock();
std::string defaultExpression();
std::string defaultEndBlock();

} // namespace arrayExpressionText
