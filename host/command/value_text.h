// Small conversions between text and numbers that commands and the language share.
#pragma once
#include <string>
#include <string_view>

#include "command/value.h"

namespace mirk::command {

/// Cuts the fraction; out of range gives the nearest int, not-a-number gives 0.
int32_t intFromDouble(double value);
/// The number that text begins with, or 0. `whole` tells whether the number is all there is.
double leadingNumber(std::string_view text, bool* whole = nullptr);
/// Three numbers with spaces.
std::string vectorText(const Vec3& v);

}  // namespace mirk::command
