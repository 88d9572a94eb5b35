#include "math/number_text.h"

#include <charconv>
#include <cmath>

namespace mirk {

std::string numberText(double value)
{
    if (std::isnan(value))
        return "nan";
    const double size  = std::fabs(value);
    const bool   plain = value == 0 || (size >= 1e-5 && size < 1e16);
    char         text[64];
    const auto   end = std::to_chars(text, text + sizeof text, value,
                                     plain ? std::chars_format::fixed : std::chars_format::scientific).ptr;
    return std::string(text, end);
}

}  // namespace mirk
