// The undo queue. Every primitive edit pushes its inverse here; commands group them into steps.
#pragma once
#include <memory>
#include <string>
#include <vector>

namespace mirk::undo {

/// One reversible edit. `undo` and `redo` never throw.
struct Edit
{
    virtual ~Edit() = default;
    virtual void undo() = 0;
    virtual void redo() = 0;
};

/// True if edits have to be recorded at the moment.
bool recording();
void push(std::unique_ptr<Edit> edit);
template <class U, class R>
void push(U undo, R redo)
{
    struct E : Edit
    {
        E(U u, R r) : u(std::move(u)), r(std::move(r)) {}
        void undo() override { u(); }
        void redo() override { r(); }
        U u;
        R r;
    };
    if (recording())
        push(std::unique_ptr<Edit>(new E(std::move(undo), std::move(redo))));
}

/// One command's edits. Scopes nest; a nested scope's edits become part of the outer one when it ends well.
/// A scope whose edits are not kept (`keep` false) still can roll back, but leaves no trace in the queue.
class Scope
{
public:
    explicit Scope(std::string name, bool keep = true);
    ~Scope();                 ///< commits if neither was called
    void commit();
    void rollback();          ///< undoes everything since the scope began
    /// Ends the scope and hands out what it recorded, which then is the caller's to undo and redo.
    std::vector<std::unique_ptr<Edit>> take();

private:
    friend bool recording();
    friend void push(std::unique_ptr<Edit>);
    std::string name_;
    bool        keep_, done_ = false;
    Scope*      outer_;
    std::vector<std::unique_ptr<Edit>> edits_;
};

/// Suspends recording: evaluation, file reading, undo itself.
struct Suspend { Suspend(); ~Suspend(); };

bool undoOne();               ///< false if there is nothing to undo
bool redoOne();
void flush();
bool enabled();
void setEnabled(bool on);
void setLength(int steps);    ///< 0 for no limit
int  length();
void openChunk(const std::string& name);
void closeChunk();
std::string undoName();       ///< "" if there is none
std::string redoName();
bool isUndoing();
std::vector<std::string> names();

}  // namespace mirk::undo
