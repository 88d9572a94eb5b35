#include "graph/undo.h"

#include <deque>

namespace mirk::undo {
namespace {

struct Step
{
    std::string                        name;
    std::vector<std::unique_ptr<Edit>> edits;
};

struct Queue
{
    std::deque<Step> done, undone;
    bool             enabled = true;
    int              limit = 0;
    int              suspended = 0;
    bool             undoing = false;
    int              chunks = 0;
    Step             chunk;
    Scope*           scope = nullptr;
};

Queue& queue()
{
    static Queue* q = new Queue;
    return *q;
}

void keepStep(Step step)
{
    Queue& q = queue();
    if (!q.enabled || step.edits.empty())
        return;
    q.undone.clear();
    q.done.push_back(std::move(step));
    while (q.limit > 0 && int(q.done.size()) > q.limit)
        q.done.pop_front();
}

void undoEdits(std::vector<std::unique_ptr<Edit>>& edits)
{
    Suspend quiet;
    for (size_t i = edits.size(); i-- > 0;)
        edits[i]->undo();
}

}  // namespace

bool recording() { return queue().scope && queue().suspended == 0; }

void push(std::unique_ptr<Edit> edit)
{
    if (recording())
        queue().scope->edits_.push_back(std::move(edit));
}

Scope::Scope(std::string name, bool keep) : name_(std::move(name)), keep_(keep), outer_(queue().scope)
{
    queue().scope = this;
}

Scope::~Scope()
{
    if (!done_)
        commit();
}

void Scope::commit()
{
    Queue& q = queue();
    done_ = true;
    q.scope = outer_;
    if (!keep_)
        return;
    auto& into = outer_ ? outer_->edits_ : q.chunk.edits;
    if (outer_ || q.chunks > 0) {
        for (auto& e : edits_)
            into.push_back(std::move(e));
        edits_.clear();
        return;
    }
    if (q.suspended == 0)
        keepStep({std::move(name_), std::move(edits_)});
}

void Scope::rollback()
{
    done_ = true;
    queue().scope = outer_;
    undoEdits(edits_);
    edits_.clear();
}

std::vector<std::unique_ptr<Edit>> Scope::take()
{
    done_ = true;
    queue().scope = outer_;
    return std::move(edits_);
}

Suspend::Suspend() { ++queue().suspended; }
Suspend::~Suspend() { --queue().suspended; }

bool undoOne()
{
    Queue& q = queue();
    if (q.done.empty() || q.undoing)
        return false;
    Step step = std::move(q.done.back());
    q.done.pop_back();
    q.undoing = true;
    undoEdits(step.edits);
    q.undoing = false;
    q.undone.push_back(std::move(step));
    return true;
}

bool redoOne()
{
    Queue& q = queue();
    if (q.undone.empty() || q.undoing)
        return false;
    Step step = std::move(q.undone.back());
    q.undone.pop_back();
    q.undoing = true;
    {
        Suspend quiet;
        for (auto& e : step.edits)
            e->redo();
    }
    q.undoing = false;
    q.done.push_back(std::move(step));
    return true;
}

void flush()
{
    queue().done.clear();
    queue().undone.clear();
}

bool enabled() { return queue().enabled; }

void setEnabled(bool on)
{
    if (!on)
        flush();
    queue().enabled = on;
}

void setLength(int steps) { queue().limit = steps < 0 ? 0 : steps; }
int  length() { return queue().limit; }

void openChunk(const std::string& name)
{
    Queue& q = queue();
    if (q.chunks++ == 0)
        q.chunk = {name, {}};
}

void closeChunk()
{
    Queue& q = queue();
    if (q.chunks == 0 || --q.chunks > 0)
        return;
    keepStep(std::move(q.chunk));
    q.chunk = {};
}

std::string undoName() { return queue().done.empty() ? "" : queue().done.back().name; }
std::string redoName() { return queue().undone.empty() ? "" : queue().undone.back().name; }
bool isUndoing() { return queue().undoing; }

std::vector<std::string> names()
{
    std::vector<std::string> all;
    for (auto& s : queue().done)
        all.push_back(s.name);
    return all;
}

}  // namespace mirk::undo
