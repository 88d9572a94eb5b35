#include "mel/direct.h"

#include <new>
#include <string>
#include <vector>

#include "mel/lexer.h"
#include "mel/machine.h"
#include "mel/native.h"
#include "mel/symbols.h"
#include "mel/words.h"

namespace mirk::mel {

namespace {

constexpr size_t kMostArguments = 64;   // longer ones are data, which the compiler keeps

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Reads words left to right; what it does not know makes it give up.
class Reader
{
public:
    explicit Reader(std::string_view text) : text_(text) {}

    void skipBlanks()
    {
        while (at_ < text_.size() && isBlank(text_[at_]))
            ++at_;
    }
    size_t place() const { return at_; }
    char   at(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    bool   atEnd() const { return at_ >= text_.size(); }
    /// Where a word may end, so that nothing of it is left for another reading.
    bool   atBreak() const { return atEnd() || isBlank(at()) || at() == ';'; }

    std::string_view name()
    {
        const size_t from = at_;
        if (isIdentStart(at()))
            while (isIdent(at()))
                ++at_;
        return text_.substr(from, at_ - from);
    }

    bool arguments(std::vector<Value>& out)
    {
        for (;;)
        {
            skipBlanks();
            if (atEnd())
                return true;
            if (at() == ';')
            {
                ++at_;
                skipBlanks();
                return atEnd();
            }
            if (out.size() == kMostArguments || !(at() == '"' ? quoted(out) : bare(out)) || !atBreak())
                return false;
        }
    }

private:
    bool quoted(std::vector<Value>& out)
    {
        const size_t end = text_.find_first_of("\"\\\n", at_ + 1);
        if (end == std::string_view::npos || text_[end] != '"')   // escapes are rare
            return false;
        out.emplace_back(std::string(text_.substr(at_ + 1, end - at_ - 1)));
        at_ = end + 1;
        return true;
    }

    bool bare(std::vector<Value>& out)
    {
        if (at() == '-' && isIdentStart(at(1)))
        {
            const std::string_view flag = flagAt(text_, at_);
            out.emplace_back(std::string(flag));
            at_ += flag.size();
            return true;
        }
        const std::string_view word = wordAt(text_, at_);
        if (word.empty())
            return false;
        const WordValue value = valueOfWord(word);
        if (value.kind == WordValue::kOutOfRange)
            return false;
        if (value.kind == WordValue::kText)
            out.emplace_back(std::string(word));
        else if (value.kind == WordValue::kInt)
            out.emplace_back(int(value.number));
        else
            out.emplace_back(value.number);
        at_ += word.size();
        return true;
    }

    std::string_view text_;
    size_t           at_ = 0;
};

/// The command that the name means to a text, if it is not also something that comes before commands.
const command::Command* commandOf(std::string_view name)
{
    const command::Command* found = command::find(name);
    if (!found || !nativesOf(name).empty() || name == "size" || name == "clear" || name == "catch" || name == "catchQuiet")
        return nullptr;
    for (const ProcSlot* slot : {symbols().findInteractive(name), symbols().findProc(name)})
        if (slot && slot->function)
            return nullptr;
    return found;
}

}  // namespace

bool runDirect(std::string_view text, std::string_view sourceName, Value& result)
{
    Reader reader(text);
    reader.skipBlanks();
    const size_t           from = reader.place();
    const std::string_view name = reader.name();
    if (name.empty() || !reader.atBreak())
        return false;
    const command::Command* const command = commandOf(name);
    std::vector<Value>            args;
    if (!command || !reader.arguments(args))
        return false;
    Machine& m = machine();
    if (m.interruptFlag || m.depth >= Machine::kMaxDepth)
        return false;
    const Machine::Entry entry(m);
    try
    {
        command::Call call = command::parse(*command, args);
        result = command::run(call);
    }
    catch (const ScriptError&)
    {
        throw;
    }
    catch (const std::bad_alloc&)
    {
        throw errorAt({std::string(sourceName), std::string(text), false}, uint32_t(from), "Out of memory.");
    }
    catch (const std::exception& e)
    {
        throw errorAt({std::string(sourceName), std::string(text), false}, uint32_t(from), e.what());
    }
    return true;
}

}  // namespace mirk::mel
