// Statements of the parser, and the words that have a meaning of their own.
#include <algorithm>

#include "mel/parser_impl.h"

namespace mirk::mel {

Type namedType(const std::string& s)
{
    if (s == "int") return Type::kInt;
    if (s == "float") return Type::kFloat;
    if (s == "string") return Type::kString;
    if (s == "vector") return Type::kVector;
    if (s == "matrix") return Type::kMatrix;
    return Type::kVoid;
}

int constantWord(const std::string& s)
{
    if (s == "true" || s == "yes" || s == "on") return 1;
    if (s == "false" || s == "no" || s == "off") return 0;
    return -1;
}

Node* Parser::statement(bool top)
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

Node* Parser::block()
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

Node* Parser::keywordStatement(const Token& t, bool top)
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

Node* Parser::globalOrProc(bool top)
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

Node* Parser::declaration(uint32_t offset, Type type, bool global)
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
        constexpr double kMostInMatrix = 4096;
        if (type == Type::kMatrix && (size->number < 1 || size2->number < 1 || std::max(size->number, size2->number) > kMostInMatrix))
            fail(t.begin, "A matrix has 1 to 4096 rows and columns.");
        if (accept("="))
            init = expression();
        for (Node* kid : {size, size2, init})
            give(v, kid);
        give(n, v);
    } while (accept(","));
    endStatement();
    return n;
}

Node* Parser::procedure(uint32_t offset, bool global)
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

Node* Parser::parameter()
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

Node* Parser::condition()
{
    expect("(");
    Node* n = expression();
    expect(")");
    return n;
}

Node* Parser::ifStatement()
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

Node* Parser::whileStatement()
{
    Node* n = node(Kind::kWhile, lex_.next().begin);
    give(n, condition());
    give(n, statement());
    return n;
}

Node* Parser::doStatement()
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

Node* Parser::list(const char* until)
{
    Node* n = node(Kind::kList, lex_.peek().begin);
    if (lex_.peek().is(until))
        return n;
    do
        give(n, listItem());
    while (accept(","));
    return n;
}

Node* Parser::listItem()
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

Node* Parser::forStatement()
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

Node* Parser::forIn(uint32_t offset)
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

Node* Parser::switchStatement()
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
