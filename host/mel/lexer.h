// Characters to tokens. What a word is depends on where it stands (expression or command argument), so the parser
// asks for tokens one at a time and reads command words from the characters itself.
#pragma once
#include "mel/error.h"

namespace mirk::mel {

enum class Tok : uint8_t { kEnd, kInt, kFloat, kString, kVar, kIdent, kPunct };

struct Token
{
    Tok         kind = Tok::kEnd;
    uint32_t    begin = 0, end = 0;
    std::string text;        ///< the name, the punctuation, or the string with its escapes resolved
    double      number = 0;

    bool is(const char* punct) const { return kind == Tok::kPunct && text == punct; }
};

inline bool isIdentStart(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isIdent(char c) { return isIdentStart(c) || isDigit(c); }

class Lexer
{
public:
    explicit Lexer(const Source& source) : source_(source), text_(source.text) {}

    uint32_t pos = 0;

    /// Past blanks and comments.
    void skipBlanks();
    /// The character at the position, or one further on; 0 at the end.
    char at(uint32_t ahead = 0) const { return pos + ahead < text_.size() ? text_[pos + ahead] : '\0'; }
    bool atEnd() const { return pos >= text_.size(); }
    Token next();
    /// The next token, which stays.
    const Token& peek();
    /// A number at the position if there is one: true and the token.
    bool number(Token& token);
    Token string();
    const std::string& text() const { return text_; }
    const Source&      source() const { return source_; }

private:
    const Source&      source_;
    const std::string& text_;
    Token              peeked_;
    uint32_t           peekedFrom_ = UINT32_MAX, peekedEnd_ = 0;
};

}  // namespace mirk::mel
