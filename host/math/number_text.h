// The one conversion of numbers to text.
#pragma once
#include <string>

namespace mirk {

/// The shortest decimal that reads back as the same double, without a point for whole numbers. Very large and very
/// small numbers have an exponent; "inf", "-inf" and "nan" stand for what is no number.
std::string numberText(double value);

}  // namespace mirk
