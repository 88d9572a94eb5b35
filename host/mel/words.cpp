#include "mel/words.h"

#include <charconv>
#include <string>

#include "mel/lexer.h"
#include "mel/parser_impl.h"

namespace mirk::mel {

namespace {

bool isWordChar(char c)
{
    return isIdent(c) || (c && std::string_view(".|:*?[]#~/\\+@%-").find(c) != std::string_view::npos) || static_cast<unsigned char>(c) >= 128;
}

}  // namespace

std::string_view wordAt(std::string_view text, size_t at)
{
    const auto c = [&](size_t i) { return i < text.size() ? text[i] : '\0'; };
    size_t     end = at;
    for (bool bracket = false; isWordChar(c(end)) || (bracket && c(end) && c(end) != '\n' && c(end) != '$'); ++end)
    {
        if (c(end) == '/' && (c(end + 1) == '/' || c(end + 1) == '*'))
            break;
        bracket = c(end) == '[' || (bracket && c(end) != ']');
    }
    return text.substr(at, end - at);
}

std::string_view flagAt(std::string_view text, size_t at)
{
    size_t end = at + 1;
    while (end < text.size() && isIdent(text[end]))
        ++end;
    return text.substr(at, end - at);
}

WordValue valueOfWord(std::string_view word)
{
    const bool             negative = !word.empty() && word[0] == '-';
    const std::string_view digits = word.substr(negative);
    if (digits.empty() || (!isDigit(digits[0]) && digits[0] != '.'))
    {
        const int constant = word.size() > 1 && word.size() < 6 ? constantWord(std::string(word)) : -1;
        return constant < 0 ? WordValue{} : WordValue{WordValue::kInt, double(constant)};
    }
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))
    {
        uint64_t   bits = 0;
        const auto r = std::from_chars(digits.data() + 2, digits.data() + digits.size(), bits, 16);
        if (r.ptr != digits.data() + digits.size() || r.ec == std::errc::invalid_argument)
            return {};
        if (r.ec == std::errc())
        {
            const double value = int32_t(uint32_t(bits));
            return {WordValue::kInt, negative ? -value : value};
        }
        return {WordValue::kOutOfRange};
    }
    double     value = 0;
    const auto r = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (r.ptr != digits.data() + digits.size() || r.ec == std::errc::invalid_argument)
        return {};
    if (r.ec != std::errc())
        return {WordValue::kOutOfRange};
    value = negative ? -value : value;
    const bool whole = digits.find_first_of(".eE") == std::string_view::npos && value <= 2147483647.0 && value >= -2147483648.0;
    return {whole ? WordValue::kInt : WordValue::kFloat, value};
}

}  // namespace mirk::mel
