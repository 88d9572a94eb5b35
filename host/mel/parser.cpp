// A recursive descent parser; binary operators by precedence climbing. Statements first, then commands, then expressions.
#include "mel/parser.h"

#include <unordered_map>

#include "mel/lexer.h"

namespace mirk::mel {

namespace {

constexpr int kMaxDepth = 2000;   // of nested statements and expressions: the parser's own stack

Type namedType(const std::string& s)
{
    if (s == "int") return Type::kInt;
    if (s == "float") return Type::kFloat;
    if (s == "string") return Type::kString;
    if (s == "vector") return Type::kVector;
    if (s == "matrix") return Type::kMatrix;
    return Type::kVoid;
}

/// 1 or 0 for the words that are constants, else -1.
int constantWord(const std::string& s)
{
    if (s == "true" || s == "yes" || s == "on") return 1;
    if (s == "false" || s == "no" || s == "off") return 0;
    return -1;
}

struct BinaryOp { const char* text; Op op; int precedence; };
constexpr BinaryOp kBinaryOps[] = {
    {"||", kOr, 1}, {"&&", kAnd, 2}, {"==", kEq, 3}, {"!=", kNe, 3}, {"<", kLt, 4}, {"<=", kLe, 4}, {">", kGt, 4},
    {">=", kGe, 4}, {"+", kAdd, 5},  {"-", kSub, 5}, {"*", kMul, 6}, {"/", kDiv, 6}, {"%", kMod, 6}, {"^", kCross, 6},
};

struct AssignOp { const char* text; Op op; };
constexpr AssignOp kAssignOps[] = {
    {"=", kNoOp}, {"+=", kAdd}, {"-=", kSub}, {"*=", kMul}, {"/=", kDiv}, {"%=", kMod}, {"^=", kCross},
};

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

    Node* statement(bool top = false)
    {
        Depth       depth(*this);
        const Token t = lex_.peek();
        if (t.is(";"))
        {
            lex_.next();
            return node(Kind::kEmpty, t.begin);
        }
        if (t.is("{"))
            return block();
        if (t.kind == Tok::kIdent)
        {
            if (Node* n = keywordStatement(t, top))
                return n;
            return commandStatement();
        }
        Node* n = node(Kind::kExprStmt, t.begin);
        give(n, expression());
        endStatement();
        return n;
    }

    Node* block()
    {
        Node* n = node(Kind::kBlock, lex_.peek().begin);
        expect("{");
        while (!accept("}"))
        {
            if (lex_.peek().kind == Tok::kEnd)
                fail(lex_.peek().begin, "Syntax error: a '}' is missing.");
            give(n, statement());
        }
        return n;
    }

    Node* keywordStatement(const Token& t, bool top)
    {
        const std::string& word = t.text;
        if (word == "if") return ifStatement();
        if (word == "while") return whileStatement();
        if (word == "do") return doStatement();
        if (word == "for") return forStatement();
        if (word == "switch") return switchStatement();
        if (word == "break" || word == "continue")
        {
            lex_.next();
            endStatement();
            return node(word == "break" ? Kind::kBreak : Kind::kContinue, t.begin);
        }
        if (word == "return")
        {
            lex_.next();
            Node* n = node(Kind::kReturn, t.begin);
            if (!lex_.peek().is(";") && lex_.peek().kind != Tok::kEnd)
                give(n, expression());
            endStatement();
            return n;
        }
        if (word == "global" || word == "proc")
            return globalOrProc(top);
        if (namedType(word) != Type::kVoid)
        {
            const uint32_t from = lex_.pos;
            lex_.next();
            const bool declares = lex_.peek().kind == Tok::kVar;
            if (declares)
                return declaration(t.begin, namedType(word), false);
            lex_.pos = from;
        }
        return nullptr;
    }

    Node* globalOrProc(bool top)
    {
        const Token first = lex_.next();
        const bool  global = first.text == "global";
        Token       t = global ? lex_.next() : first;
        if (t.kind == Tok::kIdent && t.text == "proc")
        {
            if (!top)
                fail(t.begin, "A procedure cannot be defined inside a block.");
            return procedure(first.begin, global);
        }
        if (t.kind != Tok::kIdent || namedType(t.text) == Type::kVoid)
            syntaxError(t);
        return declaration(first.begin, namedType(t.text), true);
    }

    Node* declaration(uint32_t offset, Type type, bool global)
    {
        Node* n = node(Kind::kDecl, offset);
        n->flag = global;
        do
        {
            const Token t = lex_.next();
            if (t.kind != Tok::kVar)
                syntaxError(t);
            Node* v = node(Kind::kVar, t.begin);
            v->text = t.text;
            v->type = type;
            Node *size = nullptr, *size2 = nullptr, *init = nullptr;
            if (accept("["))
            {
                if (!lex_.peek().is("]"))
                    size = expression();
                expect("]");
                if (type != Type::kMatrix)
                    v->type = arrayType(type);
                else if (accept("["))
                {
                    size2 = expression();
                    expect("]");
                }
            }
            if (type == Type::kMatrix && (!size || !size2 || size->kind != Kind::kIntLit || size2->kind != Kind::kIntLit))
                fail(t.begin, "A matrix needs two constant sizes.");
            if (accept("="))
                init = expression();
            for (Node* kid : {size, size2, init})
                give(v, kid);
            give(n, v);
        } while (accept(","));
        endStatement();
        return n;
    }

    Node* procedure(uint32_t offset, bool global)
    {
        Type  returns = Type::kVoid;
        Token t = lex_.next();
        if (t.kind == Tok::kIdent && namedType(t.text) != Type::kVoid)
        {
            returns = namedType(t.text);
            if (accept("["))
            {
                expect("]");
                returns = arrayType(returns);
            }
            t = lex_.next();
        }
        if (t.kind != Tok::kIdent)
            syntaxError(t);
        Node* n = node(Kind::kProc, offset);
        n->offset = t.begin;
        n->text = t.text;
        n->type = returns;
        n->flag = global;
        expect("(");
        if (!accept(")"))
        {
            do
                n->kids.push_back(parameter());
            while (accept(","));
            expect(")");
        }
        n->kids.push_back(block());
        return n;
    }

    Node* parameter()
    {
        const Token type = lex_.next(), name = lex_.next();
        if (type.kind != Tok::kIdent || namedType(type.text) == Type::kVoid)
            syntaxError(type);
        if (name.kind != Tok::kVar)
            syntaxError(name);
        Node* v = node(Kind::kVar, name.begin);
        v->text = name.text;
        v->type = namedType(type.text);
        int dimensions = 0;
        for (; accept("["); ++dimensions)
        {
            if (!lex_.peek().is("]"))
                expression();
            expect("]");
        }
        if (dimensions && v->type != Type::kMatrix)
            v->type = arrayType(v->type);
        return v;
    }

    Node* condition()
    {
        expect("(");
        Node* n = expression();
        expect(")");
        return n;
    }

    Node* ifStatement()
    {
        Node* n = node(Kind::kIf, lex_.peek().begin);
        for (;;)
        {
            lex_.next();   // "if"
            give(n, condition());
            give(n, statement());
            if (lex_.peek().kind != Tok::kIdent || lex_.peek().text != "else")
                return n;
            lex_.next();
            if (lex_.peek().kind == Tok::kIdent && lex_.peek().text == "if")
                continue;
            give(n, statement());
            return n;
        }
    }

    Node* whileStatement()
    {
        Node* n = node(Kind::kWhile, lex_.next().begin);
        give(n, condition());
        give(n, statement());
        return n;
    }

    Node* doStatement()
    {
        Node* n = node(Kind::kDo, lex_.next().begin);
        give(n, statement());
        const Token t = lex_.next();
        if (t.kind != Tok::kIdent || t.text != "while")
            syntaxError(t);
        give(n, condition());
        endStatement();
        return n;
    }

    Node* list(const char* until)
    {
        Node* n = node(Kind::kList, lex_.peek().begin);
        if (lex_.peek().is(until))
            return n;
        do
            give(n, listItem());
        while (accept(","));
        return n;
    }

    /// An expression, or a declaration in the head of a loop.
    Node* listItem()
    {
        const Token t = lex_.peek();
        if (t.kind != Tok::kIdent || namedType(t.text) == Type::kVoid)
            return expression();
        const uint32_t from = lex_.pos;
        lex_.next();
        if (lex_.peek().kind != Tok::kVar)
        {
            lex_.pos = from;
            return expression();
        }
        const Token name = lex_.next();
        Node*       n = node(Kind::kDecl, t.begin);
        Node*       v = node(Kind::kVar, name.begin);
        v->text = name.text;
        v->type = namedType(t.text);
        Node* init = accept("=") ? expression() : nullptr;
        for (Node* kid : {static_cast<Node*>(nullptr), static_cast<Node*>(nullptr), init})
            give(v, kid);
        give(n, v);
        return n;
    }

    Node* forStatement()
    {
        const uint32_t offset = lex_.next().begin;
        expect("(");
        const uint32_t from = lex_.pos;
        if (Node* n = forIn(offset))
            return n;
        lex_.pos = from;
        Node* n = node(Kind::kFor, offset);
        for (const char* until : {";", ";", ")"})
        {
            give(n, list(until));
            expect(until);
        }
        give(n, statement());
        return n;
    }

    /// `$x in array)` or `type $x in array)`; null if it is something else.
    Node* forIn(uint32_t offset)
    {
        Token t = lex_.next();
        Type  type = Type::kVoid;
        if (t.kind == Tok::kIdent)
        {
            type = namedType(t.text);
            t = lex_.next();
        }
        if (t.kind != Tok::kVar || lex_.peek().kind != Tok::kIdent || lex_.peek().text != "in")
            return nullptr;
        lex_.next();
        Node* n = node(Kind::kForIn, offset);
        Node* v = node(Kind::kVar, t.begin);
        v->text = t.text;
        v->type = type;
        give(n, v);
        give(n, expression());
        expect(")");
        give(n, statement());
        return n;
    }

    Node* switchStatement()
    {
        Node* n = node(Kind::kSwitch, lex_.next().begin);
        give(n, condition());
        expect("{");
        Node* current = nullptr;
        for (;;)
        {
            const Token t = lex_.peek();
            if (accept("}"))
                return n;
            const bool isCase = t.kind == Tok::kIdent && t.text == "case";
            if (isCase || (t.kind == Tok::kIdent && t.text == "default"))
            {
                lex_.next();
                current = node(Kind::kCase, t.begin);
                current->kids.push_back(isCase ? expression() : nullptr);
                expect(":");
                n->kids.push_back(current);
            }
            else if (!current || t.kind == Tok::kEnd)
                syntaxError(t);
            else
                current->kids.push_back(statement());
        }
    }

    // ---- commands

    Node* commandStatement()
    {
        Node* n = node(Kind::kExprStmt, lex_.peek().begin);
        if (functionForm(';'))
            give(n, expression());
        else
            give(n, command(';'));
        endStatement();
        return n;
    }

    /// Tells `name(a, b)` from `name (a) b`: by what follows the closing parenthesis. The position stays.
    bool functionForm(char terminator)
    {
        const uint32_t from = lex_.pos;
        const bool     yes = scanFunctionForm(terminator);
        lex_.pos = from;
        return yes;
    }

    bool scanFunctionForm(char terminator)
    {
        const Token name = lex_.next();
        if (!lex_.peek().is("("))
            return false;
        int level = 0;
        do
        {
            const Token t = lex_.next();
            if (t.kind == Tok::kEnd)
                return true;   // the expression parser finds the fault
            level += t.is("(") ? 1 : t.is(")") ? -1 : 0;
        } while (level > 0);
        const bool adjacent = lex_.at() == '.' || lex_.at() == '[';
        lex_.skipBlanks();
        const char c = lex_.at(), d = lex_.at(1);
        if (lex_.atEnd() || c == terminator || c == ')' || c == '}' || c == ',' || c == ']')
            return true;
        if (constantWord(name.text) >= 0)
            return true;
        switch (c)
        {
        case '-': return d == ' ' || d == '=' || d == '-';   // a flag or a negative number stands close to its dash
        case '*':
        case '|': return !isIdentStart(d) || d == '|';
        case '<': return d != '<';
        case '.':
        case '[': return adjacent;
        case '+': case '/': case '%': case '^': case '>': case '=': case '!': case '&': case '?': return true;
        default:  return false;
        }
    }

    /// A name and the arguments up to the terminator, which stays.
    Node* command(char terminator)
    {
        const Token name = lex_.next();
        Node*       n = node(Kind::kCall, name.begin);
        n->text = name.text;
        n->flag = true;
        n->calls = true;
        for (;;)
        {
            lex_.skipBlanks();
            if (lex_.atEnd() || lex_.at() == terminator)
                return n;
            give(n, argument());
        }
    }

    Node* argument()
    {
        Depth          depth(*this);
        const uint32_t offset = lex_.pos;
        const char     c = lex_.at(), d = lex_.at(1);
        if (c == '"' || c == '(' || c == '{' || c == '`' || (c == '<' && d == '<'))
            return c == '(' ? parenthesised() : primary();
        if (c == '$')
            return variableArgument();
        if (c == '-')
        {
            if (isIdentStart(d))
            {
                Node* n = node(Kind::kStrLit, offset);
                for (n->text = lex_.at(), ++lex_.pos; isIdent(lex_.at()); ++lex_.pos)
                    n->text += lex_.at();
                return n;
            }
            if (d == '$' || d == '(')
                return unary();
        }
        return word(offset);
    }

    Node* parenthesised()
    {
        expect("(");
        Node* n = expression();
        expect(")");
        return n;
    }

    Node* variableArgument()
    {
        const Token t = lex_.next();
        if (t.kind != Tok::kVar)
            syntaxError(t);
        Node* n = node(Kind::kVar, t.begin);
        n->text = t.text;
        while (lex_.at() == '[')
            n = index(n);
        return component(n);
    }

    static bool isWordChar(char c)
    {
        return isIdent(c) || (c && std::string_view(".|:*?[]#~/\\+@%-").find(c) != std::string_view::npos) || static_cast<unsigned char>(c) >= 128;
    }

    /// A bare word: a number, a constant or a string.
    Node* word(uint32_t offset)
    {
        std::string text;
        for (bool bracket = false; isWordChar(lex_.at()) || (bracket && lex_.at() && lex_.at() != '\n' && lex_.at() != '$'); ++lex_.pos)
        {
            if (lex_.at() == '/' && (lex_.at(1) == '/' || lex_.at(1) == '*'))
                break;
            bracket = lex_.at() == '[' || (bracket && lex_.at() != ']');
            text += lex_.at();
        }
        if (text.empty())
            syntaxError(lex_.peek());
        if (const int constant = constantWord(text); constant >= 0)
        {
            Node* n = node(Kind::kIntLit, offset);
            n->number = constant;
            return n;
        }
        if (Node* n = numberWord(text, offset))
            return n;
        Node* n = node(Kind::kStrLit, offset);
        n->text = std::move(text);
        return n;
    }

    Node* numberWord(const std::string& text, uint32_t offset)
    {
        const bool   negative = text[0] == '-';
        const Source own{lex_.source().name, text.substr(negative), false};
        if (own.text.empty() || (!isDigit(own.text[0]) && own.text[0] != '.'))
            return nullptr;
        Lexer scan(own);
        Token t;
        if (!scan.number(t) || !scan.atEnd())
            return nullptr;
        const double value = negative ? -t.number : t.number;
        Node* n = node(t.kind == Tok::kInt && value <= 2147483647.0 ? Kind::kIntLit : Kind::kFloatLit, offset);
        n->number = value;
        return n;
    }

    // ---- expressions

    Node* expression()
    {
        Depth       depth(*this);
        Node*       left = ternary();
        const Token t = lex_.peek();
        for (const AssignOp& a : kAssignOps)
            if (t.is(a.text))
            {
                if (left->kind != Kind::kVar && left->kind != Kind::kIndex)
                    fail(t.begin, left->kind == Kind::kComponent ? "A component of a vector cannot be assigned; assign a whole vector." : "Only a variable can be assigned.");
                lex_.next();
                Node* n = node(Kind::kAssign, t.begin);
                n->op = a.op;
                give(n, left);
                give(n, expression());
                n->mutates = true;
                return n;
            }
        return left;
    }

    Node* ternary()
    {
        Node* test = binary(1);
        if (!lex_.peek().is("?"))
            return test;
        Node* n = node(Kind::kTernary, lex_.next().begin);
        give(n, test);
        give(n, expression());
        expect(":");
        give(n, expression());
        return n;
    }

    Node* binary(int minimum)
    {
        Depth depth(*this);
        Node* left = unary();
        for (;;)
        {
            const Token     t = lex_.peek();
            const BinaryOp* found = nullptr;
            if (t.kind == Tok::kPunct)
                for (const BinaryOp& b : kBinaryOps)
                    if (t.text == b.text && b.precedence >= minimum)
                        found = &b;
            if (!found)
                return left;
            lex_.next();
            Node* n = node(Kind::kBinary, t.begin);
            n->op = found->op;
            give(n, left);
            give(n, binary(found->precedence + 1));
            left = n;
        }
    }

    Node* unary()
    {
        Depth       depth(*this);
        const Token t = lex_.peek();
        if (t.is("++") || t.is("--"))
        {
            lex_.next();
            Node* n = node(Kind::kIncrement, t.begin);
            n->number = t.text == "++" ? 1 : -1;
            n->flag = true;
            give(n, target(unary(), t));
            n->mutates = true;
            return n;
        }
        if (t.is("+"))
        {
            lex_.next();
            return unary();
        }
        if (t.is("-") || t.is("!"))
        {
            lex_.next();
            Node* operand = unary();
            if (t.is("-") && (operand->kind == Kind::kIntLit || operand->kind == Kind::kFloatLit))
            {
                operand->number = -operand->number;
                return operand;
            }
            Node* n = node(Kind::kUnary, t.begin);
            n->op = t.is("-") ? kNeg : kNot;
            give(n, operand);
            return n;
        }
        return postfix(primary());
    }

    Node* target(Node* n, const Token& t)
    {
        if (n->kind != Kind::kVar && n->kind != Kind::kIndex)
            fail(t.begin, "Only a variable can be changed.");
        return n;
    }

    Node* postfix(Node* n)
    {
        for (;;)
        {
            if (lex_.peek().is("["))
                n = index(n);
            else if (Node* c = component(n); c != n)
                n = c;
            else if (lex_.peek().is("++") || lex_.peek().is("--"))
            {
                const Token t = lex_.next();
                Node*       i = node(Kind::kIncrement, t.begin);
                i->number = t.text == "++" ? 1 : -1;
                give(i, target(n, t));
                i->mutates = true;
                n = i;
            }
            else
                return n;
        }
    }

    Node* index(Node* base)
    {
        const Token t = lex_.peek();
        expect("[");
        if (base->kind == Kind::kIndex)
        {
            if (base->kids.size() > 2)
                syntaxError(t);
            give(base, expression());
            expect("]");
            return base;
        }
        Node* n = node(Kind::kIndex, base->offset);
        give(n, base);
        give(n, expression());
        expect("]");
        return n;
    }

    /// `.x`, `.y` or `.z` right behind; else the node itself.
    Node* component(Node* n)
    {
        const char c = lex_.at(1);
        if (lex_.at() != '.' || c < 'x' || c > 'z' || isIdent(lex_.at(2)))
            return n;
        Node* out = node(Kind::kComponent, n->offset);
        out->op = Op(c - 'x');
        give(out, n);
        lex_.pos += 2;
        return out;
    }

    Node* primary()
    {
        Depth       depth(*this);
        const Token t = lex_.peek();
        switch (t.kind)
        {
        case Tok::kInt:
        case Tok::kFloat:
        {
            lex_.next();
            Node* n = node(t.kind == Tok::kInt ? Kind::kIntLit : Kind::kFloatLit, t.begin);
            n->number = t.number;
            return n;
        }
        case Tok::kString:
        case Tok::kVar:
        {
            lex_.next();
            Node* n = node(t.kind == Tok::kVar ? Kind::kVar : Kind::kStrLit, t.begin);
            n->text = t.text;
            return n;
        }
        case Tok::kIdent: return named();
        default: break;
        }
        if (t.is("(")) return parenthesisedOrCast();
        if (t.is("`")) return backticks();
        if (t.is("<<")) return vectorOrMatrix();
        if (t.is("{")) return arrayLiteral();
        syntaxError(t);
    }

    Node* named()
    {
        const Token t = lex_.next();
        if (!lex_.peek().is("("))
        {
            const int constant = constantWord(t.text);
            if (constant < 0)
                syntaxError(t);
            Node* n = node(Kind::kIntLit, t.begin);
            n->number = constant;
            return n;
        }
        lex_.next();
        const Type cast = namedType(t.text);
        Node*      n = node(cast == Type::kVoid ? Kind::kCall : Kind::kCast, t.begin);
        n->text = t.text;
        n->type = cast;
        n->calls = cast == Type::kVoid;
        if (!accept(")"))
        {
            do
                give(n, expression());
            while (accept(","));
            expect(")");
        }
        if (cast != Type::kVoid && n->kids.size() != 1)
            fail(t.begin, "A conversion takes one value.");
        return n;
    }

    Node* parenthesisedOrCast()
    {
        const uint32_t from = lex_.pos, offset = lex_.next().begin;
        if (lex_.peek().kind == Tok::kIdent && namedType(lex_.peek().text) != Type::kVoid)
        {
            const Type type = namedType(lex_.next().text);
            if (accept(")"))
            {
                Node* n = node(Kind::kCast, offset);
                n->type = type;
                give(n, unary());
                return n;
            }
        }
        lex_.pos = from;
        return parenthesised();
    }

    Node* backticks()
    {
        const Token open = lex_.next();
        const Token name = lex_.peek();
        if (name.kind != Tok::kIdent)
            syntaxError(name);
        Node* n = functionForm('`') ? expression() : command('`');
        const Token close = lex_.next();
        if (!close.is("`"))
            fail(open.begin, "Syntax error: a closing '`' is missing.");
        return n;
    }

    Node* vectorOrMatrix()
    {
        Node* n = node(Kind::kVectorLit, lex_.next().begin);
        int   rows = 1;
        for (;;)
        {
            give(n, expression());
            if (accept(","))
                continue;
            if (!accept(";"))
                break;
            ++rows;
        }
        expect(">>");
        const size_t count = n->kids.size();
        if (rows == 1 && count == 3)
            return n;
        if (count % size_t(rows))
            fail(n->offset, "The rows of a matrix must be of the same length.");
        n->kind = Kind::kMatrixLit;
        n->number = rows;
        return n;
    }

    Node* arrayLiteral()
    {
        Node* n = node(Kind::kArrayLit, lex_.next().begin);
        while (!accept("}"))
        {
            give(n, expression());
            if (!lex_.peek().is("}"))
                expect(",");
        }
        return n;
    }

    Lexer  lex_;
    Arena& arena_;
    int    depth_ = 0;
};

}  // namespace

std::vector<Node*> parse(const Source& source, Arena& arena) { return Parser(source, arena).text(); }

const char* typeName(Type t)
{
    static const char* const names[] = {"void", "int", "float", "string", "vector", "matrix", "int[]", "float[]", "string[]", "vector[]", "value", "array"};
    return names[int(t)];
}

Type arrayType(Type element)
{
    switch (element)
    {
    case Type::kInt:    return Type::kInts;
    case Type::kFloat:  return Type::kFloats;
    case Type::kString: return Type::kStrings;
    case Type::kVector: return Type::kVectors;
    default:            return Type::kVoid;
    }
}

Type elementType(Type array)
{
    switch (array)
    {
    case Type::kInts:    return Type::kInt;
    case Type::kFloats:  return Type::kFloat;
    case Type::kStrings: return Type::kString;
    case Type::kVectors: return Type::kVector;
    default:             return Type::kDyn;
    }
}

}  // namespace mirk::mel
