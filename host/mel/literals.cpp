#include "mel/literals.h"

#include <charconv>

#include "mel/lexer.h"

namespace mirk::mel {

namespace {

constexpr char   kIntMark = '\1', kFloatMark = '\2';
constexpr size_t kMaxLiterals = 400;   // each takes a register of its own
constexpr size_t kMaxText = 1 << 16;

/// The number at `i` as the lexer reads it; false for what has another form or does not stand alone.
bool numberAt(std::string_view s, size_t i, Literal& out)
{
    const auto   at = [&](size_t k) { return k < s.size() ? s[k] : '\0'; };
    const size_t from = i;
    const auto   digits = [&] { while (isDigit(at(i))) ++i; };
    out.isFloat = false;
    digits();
    if (at(i) == '.' && at(i + 1) != '.')
    {
        out.isFloat = true;
        ++i;
        digits();
    }
    const size_t sign = at(i + 1) == '+' || at(i + 1) == '-' ? 2 : 1;
    if ((at(i) == 'e' || at(i) == 'E') && isDigit(at(i + sign)))
    {
        out.isFloat = true;
        i += sign;
        digits();
    }
    if (isIdent(at(i)) || at(i) == '.')
        return false;
    const auto r = std::from_chars(s.data() + from, s.data() + i, out.value);
    if (r.ec != std::errc() || (!out.isFloat && out.value > 2147483647.0))
        return false;
    out.begin = uint32_t(from);
    out.end = uint32_t(i);
    return true;
}

}  // namespace

Skeleton skeletonOf(std::string_view text)
{
    Skeleton out;
    out.text.reserve(text.size() + 1);
    if (text.size() > kMaxText || text.find(kIntMark) != text.npos || text.find(kFloatMark) != text.npos)
    {
        out.text = text;
        return out;
    }
    Literal number{};
    for (size_t i = 0; i < text.size();)
    {
        const char c = text[i];
        const bool starts = isDigit(c) || (c == '.' && i + 1 < text.size() && isDigit(text[i + 1]));
        if (starts && numberAt(text, i, number))
        {
            out.text += number.isFloat ? kFloatMark : kIntMark;
            out.literals.push_back(number);
            i = number.end;
            continue;
        }
        // a word, with whatever digits it has
        do
            out.text += text[i++];
        while ((isIdent(c) || c == '.') && i < text.size() && (isIdent(text[i]) || text[i] == '.'));
    }
    if (out.literals.size() > kMaxLiterals)
        return {std::string(text), {}};
    return out;
}

}  // namespace mirk::mel
