// Evaluation at other times than the scene's current one.
//
// The values at another time live in a private store. While its context is the ambient one, the store stands in the
// cells themselves, so that evaluation, handles and nodes need not know of it, and the normal values wait aside; on
// leaving the two change places. Into the store goes what depends on time: at first everything that dirt of the time
// node reaches, then every node that turns out to have read from the store while it computed. The rest is read, and
// if need be computed, as at the current time.
#pragma once
#include <functional>

#include "graph/node.h"

namespace mirk::eval {

struct When
{
    bool   normal = true;
    double seconds = 0;     ///< unless normal
};

/// The ambient context: what plug reads, commands and computes go by.
When now();
/// Changes it and gives the one before. The private store of the context left goes, unless a compute runs in it.
When enter(const When& when);

/// A context for a scope.
class At
{
public:
    explicit At(const When& when) : before_(enter(when)) {}
    ~At() { enter(before_); }
    At(const At&) = delete;
    At& operator=(const At&) = delete;

private:
    When before_;
};

/// The cell's value (all below it included) in a context, as a cell that stands in no node. The caller deletes it.
Cell* copyAt(Cell& cell, const When& when);
/// Deletes it when nobody evaluates any more.
void  deleteLater(Cell* copy);
void  deleteCopies();

/// What the evaluator asks and tells; each is for the time that a private store stands in the cells, if not said
/// otherwise.
namespace other {

extern bool active;      ///< a private store stands in the cells
extern bool quiet;       ///< no time but the current one was ever read
bool any();              ///< there are private stores, in the cells or aside

/// A cell was made in a node.
void noteNew(Cell& cell);
/// A cell was read that needed no evaluation.
void noteRead(Cell& cell);
/// The value of `source` goes into `cell`.
void receive(Cell& cell, Cell& source);

/// Around a compute: in a private store it saves the node's normal values, and takes them for the normal ones again if
/// nothing private was read. In the normal context it repeats setDependentsDirty for a node that a private read computed.
class Computing
{
public:
    explicit Computing(Node& node) : node_(node)
    {
        if (!quiet)
            begin();
    }
    ~Computing()
    {
        if (begun_)
            end();
    }
    Computing(const Computing&) = delete;
    Computing& operator=(const Computing&) = delete;

private:
    friend struct ComputingAccess;
    void begin();
    void end();

    Node&              node_;
    Computing*         outer_ = nullptr;
    void*              store_ = nullptr;
    bool               begun_ = false, depends_ = false;
    std::vector<Cell*> saved_;      // by this compute
};

/// Dirt that must reach every store: it then stops at cells it has been to, not at dirty ones.
extern bool walking;
bool first(Cell& cell);
bool seen(Cell& cell);
/// setDependentsDirty is being called for the cell.
void noteCall(Cell& cell);
/// Runs `spread` for the normal values and for each private store.
void everyStore(const std::function<void()>& spread);

/// An edit gives the cell a value that holds at any time.
void forget(Cell& cell);
/// An edit takes an element out of its multi.
void forgetElement(Cell& element);
/// A compute drops an element: with its connections, but for its own context only.
void hideElement(Cell& element);

}  // namespace other
}  // namespace mirk::eval
