// The recursive descent parser: statements in parser.cpp, commands and expressions in parser_expressions.cpp.
#pragma once
#include <unordered_map>

#include "mel/lexer.h"
#include "mel/parser.h"

namespace mirk::mel {

constexpr int kMaxDepth = 2000;   // of nested statements and expressions: the parser's own stack

Type namedType(const std::string& word);

/// 1 or 0 for the words that are constants, else -1.
int constantWord(const std::string& word);

class Parser
{
public:
    Parser(const Source& source, Arena& arena) : lex_(source), arena_(arena) {}

    std::vector<Node*> text()
    {
        std::vector<Node*> out;
        for (lex_.skipBlanks(); !lex_.atEnd(); lex_.skipBlanks())
            out.push_back(statement(true));
        return out;
    }

private:
    struct Depth
    {
        explicit Depth(Parser& p) : parser(p)
        {
            if (++parser.depth_ > kMaxDepth)
                parser.fail(parser.lex_.pos, "Nested too deeply.");
        }
        ~Depth() { --parser.depth_; }
        Parser& parser;
    };

    [[noreturn]] void fail(uint32_t offset, const std::string& message) { throw errorAt(lex_.source(), offset, message); }
    [[noreturn]] void syntaxError(const Token& t) { fail(t.begin, "Syntax error."); }

    Node* node(Kind kind, uint32_t offset)
    {
        Node& n = arena_.emplace_back();
        n.kind = kind;
        n.offset = offset;
        return &n;
    }

    void give(Node* parent, Node* kid)
    {
        parent->kids.push_back(kid);
        if (kid)
        {
            parent->mutates |= kid->mutates;
            parent->calls |= kid->calls;
        }
    }

    bool accept(const char* punct)
    {
        if (!lex_.peek().is(punct))
            return false;
        lex_.next();
        return true;
    }

    void expect(const char* punct)
    {
        const Token t = lex_.next();
        if (!t.is(punct))
        {
            std::string message = "Syntax error: expected '";
            message.append(punct).append("'.");
            fail(t.begin, message);
        }
    }

    /// The end of a statement; the last one of a text needs no semicolon.
    void endStatement()
    {
        if (lex_.peek().kind == Tok::kEnd)
            return;
        const Token t = lex_.next();
        if (!t.is(";"))
            syntaxError(t);
    }

    // ---- statements
    Node* statement(bool top = false);
    Node* block();
    Node* keywordStatement(const Token& t, bool top);
    Node* globalOrProc(bool top);
    Node* declaration(uint32_t offset, Type type, bool global);
    Node* procedure(uint32_t offset, bool global);
    Node* parameter();
    Node* condition();
    Node* ifStatement();
    Node* whileStatement();
    Node* doStatement();
    Node* list(const char* until);
    /// An expression, or a declaration in the head of a loop.
    Node* listItem();
    Node* forStatement();
    /// `$x in array)` or `type $x in array)`; null if it is something else.
    Node* forIn(uint32_t offset);
    Node* switchStatement();

    // ---- commands
    Node* commandStatement();
    /// Tells `name(a, b)` from `name (a) b`: by what follows the closing parenthesis. The position stays.
    bool functionForm(char terminator);
    bool scanFunctionForm(char terminator);
    /// Behind the parenthesis that closes the one at `open`, or kUnclosed. Each is looked for once, nested ones along with
    /// their outer ones, so that deep nesting costs no more than length.
    uint32_t closingOf(uint32_t open);
    /// A name and the arguments up to the terminator, which stays.
    Node* command(char terminator);
    Node* argument();
    Node* parenthesised();
    Node* variableArgument();
    /// A bare word: a number, a constant or a string.
    Node* word(uint32_t offset);

    // ---- expressions
    Node* expression();
    Node* ternary();
    Node* binary(int minimum);
    Node* unary();
    Node* target(Node* n, const Token& t);
    Node* postfix(Node* n);
    Node* index(Node* base);
    /// `.x`, `.y` or `.z` right behind; else the node itself.
    Node* component(Node* n);
    Node* primary();
    Node* named();
    Node* parenthesisedOrCast();
    Node* backticks();
    Node* vectorOrMatrix();
    Node* arrayLiteral();

    static constexpr uint32_t kUnclosed = UINT32_MAX;

    Lexer  lex_;
    Arena& arena_;
    int    depth_ = 0;
    std::unordered_map<uint32_t, uint32_t> closing_;   ///< of parentheses, by position
};

}  // namespace mirk::mel
