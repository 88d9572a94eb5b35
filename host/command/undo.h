// What run() tells the undo queue. The graph layer sets the hooks; without them commands run and record nothing.
#pragma once

namespace mirk::command {

/// The undo queue as commands see it. Scopes nest; the outermost one becomes one undo step.
class UndoHooks
{
public:
    virtual ~UndoHooks() = default;
    virtual void begin(const char* commandName) = 0;
    virtual void commit() = 0;              ///< ends the innermost scope, keeps what it did
    virtual void rollback() noexcept = 0;   ///< ends the innermost scope, undoes what it did
};

/// Set once at start-up; null switches undo off. The object must outlive all commands.
/// Gives those before.
UndoHooks* setUndoHooks(UndoHooks* hooks);

/// One scope of the undo queue. Rolls back at its end unless it was committed.
class UndoScope
{
public:
    explicit UndoScope(const char* name);
    ~UndoScope();
    UndoScope(const UndoScope&) = delete;
    UndoScope& operator=(const UndoScope&) = delete;

    void rollback();
    void commit();

private:
    UndoHooks* hooks_;   ///< those the scope began with; null once it has ended
};

}  // namespace mirk::command
