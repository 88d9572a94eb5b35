// Commands and expressions of the parser; binary operators by precedence climbing.
#include "mel/parser_impl.h"
#include "mel/words.h"

namespace mirk::mel {

namespace {

struct BinaryOp { const char* text; Op op; int precedence; };
constexpr BinaryOp kBinaryOps[] = {
    {"||", kOr, 1}, {"&&", kAnd, 2}, {"==", kEq, 3}, {"!=", kNe, 3}, {"<", kLt, 4}, {"<=", kLe, 4}, {">", kGt, 4},
    {">=", kGe, 4}, {"+", kAdd, 5},  {"-", kSub, 5}, {"*", kMul, 6}, {"/", kDiv, 6}, {"%", kMod, 6}, {"^", kCross, 6},
};

struct AssignOp { const char* text; Op op; };
constexpr AssignOp kAssignOps[] = {
    {"=", kNoOp}, {"+=", kAdd}, {"-=", kSub}, {"*=", kMul}, {"/=", kDiv}, {"%=", kMod}, {"^=", kCross},
};

}  // namespace

// ---- commands

Node* Parser::commandStatement()
{
    Node* n = node(Kind::kExprStmt, lex_.peek().begin);
    if (functionForm(';'))
        give(n, expression());
    else
        give(n, command(';'));
    endStatement();
    return n;
}

bool Parser::functionForm(char terminator)
{
    const uint32_t from = lex_.pos;
    const bool     yes = scanFunctionForm(terminator);
    lex_.pos = from;
    return yes;
}

uint32_t Parser::closingOf(uint32_t open)
{
    if (const auto known = closing_.find(open); known != closing_.end())
        return known->second;
    const uint32_t        from = lex_.pos;
    std::vector<uint32_t> opens;
    lex_.pos = open;
    do
    {
        const Token t = lex_.next();
        if (t.kind == Tok::kEnd)
            break;
        if (t.is("("))
            opens.push_back(t.begin);
        else if (t.is(")"))
        {
            closing_[opens.back()] = t.end;
            opens.pop_back();
        }
    } while (!opens.empty());
    for (const uint32_t unclosed : opens)
        closing_[unclosed] = kUnclosed;
    lex_.pos = from;
    return closing_[open];
}

bool Parser::scanFunctionForm(char terminator)
{
    const Token name = lex_.next();
    if (!lex_.peek().is("("))
        return false;
    const uint32_t end = closingOf(lex_.peek().begin);
    if (end == kUnclosed)
        return true;   // the expression parser finds the fault
    lex_.pos = end;
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

Node* Parser::command(char terminator)
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

Node* Parser::argument()
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
            n->text = flagAt(lex_.text(), lex_.pos);
            lex_.pos += uint32_t(n->text.size());
            return n;
        }
        if (d == '$' || d == '(')
            return unary();
    }
    return word(offset);
}

Node* Parser::parenthesised()
{
    expect("(");
    Node* n = expression();
    expect(")");
    return n;
}

Node* Parser::variableArgument()
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

Node* Parser::word(uint32_t offset)
{
    const std::string_view text = wordAt(lex_.text(), lex_.pos);
    if (text.empty())
        syntaxError(lex_.peek());
    lex_.pos += uint32_t(text.size());
    const WordValue w = valueOfWord(text);
    if (w.kind == WordValue::kOutOfRange)
        fail(offset, "The number is out of range.");
    Node* n = node(w.kind == WordValue::kInt ? Kind::kIntLit : w.kind == WordValue::kFloat ? Kind::kFloatLit : Kind::kStrLit, offset);
    if (w.kind == WordValue::kText)
        n->text = text;
    else
        n->number = w.number;
    return n;
}

// ---- expressions

Node* Parser::expression()
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

Node* Parser::ternary()
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

Node* Parser::binary(int minimum)
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

Node* Parser::unary()
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

Node* Parser::target(Node* n, const Token& t)
{
    if (n->kind != Kind::kVar && n->kind != Kind::kIndex)
        fail(t.begin, "Only a variable can be changed.");
    return n;
}

Node* Parser::postfix(Node* n)
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

Node* Parser::index(Node* base)
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

Node* Parser::component(Node* n)
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

Node* Parser::primary()
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

Node* Parser::named()
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

Node* Parser::parenthesisedOrCast()
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

Node* Parser::backticks()
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

Node* Parser::vectorOrMatrix()
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

Node* Parser::arrayLiteral()
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

}  // namespace mirk::mel
