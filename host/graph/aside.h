// Values that wait while others stand in the cells.
#pragma once
#include <vector>

#include "graph/node.h"

namespace mirk::eval {

/// A child of a tuple has its value in the tuple.
inline bool valueAbove(const Cell& c) { return c.parent && !c.isElement() && c.parent->attr->isTuple(); }

/// One cell's value and flags in the context that does not stand in the cells. Keeps the cell alive.
class Aside
{
public:
    explicit Aside(Cell& cell);
    /// For a cell that the normal context has not used yet.
    Aside(Cell& cell, const Cell& fresh);
    Aside(const Aside&) = delete;
    ~Aside() { --cell_->users; }

    /// The context that comes in has its own data objects: what is written through them does not reach the others.
    void detach();
    void exchange();
    void dropElement(Cell& element) { std::erase(elements_, &element); }
    /// Elements that only the context that ends had.
    void freeElements();

private:
    void take(const Cell& c);
    void exchangeElements();

    Ref<Node>           node_;
    Cell*               cell_;
    uint16_t            flags_;
    unsigned char       bytes_[32] = {};
    Ref<Data>           data_;
    std::vector<double> matrix_;
    std::vector<float>  floatMatrix_;
    std::vector<Cell*>  elements_;
};

}  // namespace mirk::eval
