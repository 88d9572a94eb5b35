#include "mel/lexer.h"

#include <algorithm>
#include <charconv>

namespace mirk::mel {

void Lexer::skipBlanks()
{
    for (;;)
    {
        const char c = at();
        if (c == ' ' || (c >= '\t' && c <= '\r'))
            ++pos;
        else if (c == '/' && at(1) == '/')
            while (!atEnd() && at() != '\n')
                ++pos;
        else if (c == '/' && at(1) == '*')
        {
            const size_t end = text_.find("*/", pos + 2);
            if (end == std::string::npos)
                throw errorAt(source_, pos, "Unterminated comment.");
            pos = uint32_t(end + 2);
        }
        else
            return;
    }
}

bool Lexer::number(Token& t)
{
    if (!isDigit(at()) && !(at() == '.' && isDigit(at(1))))
        return false;
    t = {};
    t.begin = pos;
    if (at() == '0' && (at(1) == 'x' || at(1) == 'X') && std::isxdigit(static_cast<unsigned char>(at(2))))
    {
        uint64_t value = 0;
        for (pos += 2; std::isxdigit(static_cast<unsigned char>(at())); ++pos)
            value = value * 16 + uint64_t(isDigit(at()) ? at() - '0' : (at() | 32) - 'a' + 10);
        t.kind = Tok::kInt;
        t.number = int32_t(uint32_t(value));
    }
    else
    {
        bool whole = true;
        auto digits = [&] { while (isDigit(at())) ++pos; };
        digits();
        if (at() == '.' && at(1) != '.')
        {
            whole = false;
            ++pos;
            digits();
        }
        const uint32_t sign = (at(1) == '+' || at(1) == '-') ? 2 : 1;
        if ((at() == 'e' || at() == 'E') && isDigit(at(sign)))
        {
            whole = false;
            pos += sign;
            digits();
        }
        const auto r = std::from_chars(text_.data() + t.begin, text_.data() + pos, t.number);
        if (r.ec == std::errc::result_out_of_range)
            throw errorAt(source_, t.begin, "The number is out of range.");
        t.kind = whole && t.number <= 2147483648.0 ? Tok::kInt : Tok::kFloat;   // 2147483648 for its negative
    }
    t.end = pos;
    return true;
}

Token Lexer::string()
{
    Token t;
    t.kind = Tok::kString;
    t.begin = pos++;
    for (; at() != '"'; ++pos)
    {
        if (atEnd() || at() == '\n')
            throw errorAt(source_, t.begin, "Unterminated string.");
        if (at() != '\\')
        {
            t.text += at();
            continue;
        }
        ++pos;
        switch (at())
        {
        case 'n': t.text += '\n'; break;
        case 't': t.text += '\t'; break;
        case 'r': t.text += '\r'; break;
        case '\r':
        case '\n':   // the string goes on in the next line
            if (at() == '\r' && at(1) == '\n')
                ++pos;
            break;
        case '\0':
            if (atEnd())
                throw errorAt(source_, t.begin, "Unterminated string.");
            [[fallthrough]];
        default: t.text += at();
        }
    }
    t.end = ++pos;
    return t;
}

const Token& Lexer::peek()
{
    if (peekedFrom_ != pos)
    {
        const uint32_t from = pos;
        peeked_ = next();
        peekedEnd_ = pos;
        peekedFrom_ = pos = from;
    }
    return peeked_;
}

Token Lexer::next()
{
    if (peekedFrom_ == pos)
    {
        pos = peekedEnd_;
        return peeked_;
    }
    skipBlanks();
    Token t;
    t.begin = t.end = pos;
    if (atEnd())
        return t;
    const char c = at();
    if (number(t))
        return t;
    if (c == '"')
        return string();
    if (c == '$' && isIdentStart(at(1)))
    {
        for (++pos; isIdent(at()); ++pos)
            t.text += at();
        t.kind = Tok::kVar;
    }
    else if (isIdentStart(c))
    {
        for (; isIdent(at()); ++pos)
            t.text += at();
        t.kind = Tok::kIdent;
    }
    else
    {
        static const char* const two[] = {"<<", ">>", "==", "!=", "<=", ">=", "&&", "||", "++", "--", "+=", "-=", "*=", "/=", "%=", "^="};
        t.kind = Tok::kPunct;
        for (const char* p : two)
            if (c == p[0] && at(1) == p[1])
                t.text = p;
        if (t.text.empty())
            t.text = std::string(1, c);
        pos += uint32_t(t.text.size());
    }
    t.end = pos;
    return t;
}

namespace {

/// Length of the UTF-8 character that begins here; 0 if none does.
size_t characterLength(const std::string& s, size_t at)
{
    const auto   lead = static_cast<unsigned char>(s[at]);
    const size_t length = lead < 0x80 ? 1 : lead >= 0xf0 && lead < 0xf5 ? 4 : lead >= 0xe0 && lead < 0xf0 ? 3 : lead >= 0xc2 && lead < 0xe0 ? 2 : 0;
    if (length == 0 || at + length > s.size())
        return 0;
    for (size_t i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(s[at + i]) & 0xc0) != 0x80)
            return 0;
    return length;
}

/// As messages show it: what is no character, or none that can be seen, by its number.
std::string visible(const std::string& s)
{
    static const char* const digits = "0123456789abcdef";
    std::string              out;
    for (size_t i = 0; i < s.size();)
    {
        const auto   c = static_cast<unsigned char>(s[i]);
        const size_t length = c < 0x20 || c == 0x7f ? 0 : characterLength(s, i);
        if (length == 0)
            out += std::string("\\x") + digits[c >> 4] + digits[c & 15];
        else
            out.append(s, i, length);
        i += std::max<size_t>(length, 1);
    }
    return out;
}

}  // namespace

ScriptError errorAt(const Source& source, uint32_t offset, const std::string& message)
{
    const std::string& text = source.text;
    offset = uint32_t(std::min<size_t>(offset, text.size()));
    int line = 1, column = 1;
    for (uint32_t i = 0; i < offset; ++i)
        if (text[i] == '\n')
        {
            ++line;
            column = 1;
        }
        else
            ++column;
    uint32_t end = offset;
    if (end < text.size() && (text[end] == '$' || isIdent(text[end])))
        for (++end; end < text.size() && isIdent(text[end]);)
            ++end;
    else if (end < text.size() && text[end] == '"')
    {
        for (++end; end < text.size() && text[end] != '"' && text[end] != '\n' && end - offset < 30;)
            ++end;
        end += end < text.size() && text[end] == '"';
    }
    else if (end < text.size())
        end += uint32_t(std::max<size_t>(characterLength(text, end), 1));
    const std::string token = offset == text.size() ? "the end" : '\'' + visible(text.substr(offset, end - offset)) + '\'';
    return {source.name + ", line " + std::to_string(line) + '.' + std::to_string(column) + ", at " + token + ": " + message, message,
            source.name, line, column};
}

}  // namespace mirk::mel
