// The words that command arguments are written in: one reading for the parser and for commands that need none.
#pragma once
#include <cstddef>
#include <string_view>

namespace mirk::mel {

/// The bare word at a position, empty if none begins there. Inside brackets it goes on over blanks.
std::string_view wordAt(std::string_view text, size_t at);
/// "-name" at a position where a dash and a letter stand.
std::string_view flagAt(std::string_view text, size_t at);

/// What a bare word stands for: a number, a constant (on, true, no ...) as an int, else its text.
struct WordValue
{
    enum Kind { kText, kInt, kFloat, kOutOfRange };
    Kind   kind = kText;
    double number = 0;
};
WordValue valueOfWord(std::string_view word);

}  // namespace mirk::mel
