// The numbers of a text, found without parsing it, and what is left of the text without them.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mirk::mel {

struct Literal
{
    uint32_t begin, end;
    double   value;               ///< never negative: a sign belongs to the text
    bool     isFloat;
    bool     parameter = false;   ///< the compiler made it a parameter of the code
};

/// Numbers of the text in order, and the text with each of them replaced by a mark for int or float. What merely looks
/// like a number (in a string, a comment or a name) may be among them: the compiler tells which ones are numbers. Texts
/// that are too long, have too many numbers or hold the marks themselves keep all their numbers.
struct Skeleton
{
    std::string          text;
    std::vector<Literal> literals;
};
Skeleton skeletonOf(std::string_view text);

}  // namespace mirk::mel
