// Value cells: where the values, dirty marks and connections of a node live. A node's store is sparse: a cell is made
// at its first use and keeps its address to the end of the outermost evaluation, also when it is removed meanwhile.
#pragma once
#include <cstdint>
#include <vector>

#include "data/data.h"
#include "graph/attribute.h"

namespace mirk {

class Node;
struct Cell;

/// The elements of a multi: sparse, sorted by logical index.
struct Elements
{
    std::vector<Cell*> cells;
    Cell*  find(int logical) const;
    size_t lowerBound(int logical) const;
};

struct Cell
{
    enum Flag : uint16_t {
        kDirty = 1,
        kComputing = 2,
        kSet = 4,            // somebody gave it a value: files store it
        kRemoved = 8,        // taken out of its node; freed later
        kLocked = 16,
        kLeaky = 32,         // was read while dirty: dirt does not stop here
        kWritten = 64,       // data was set through a handle in the running compute: to be sealed
        kOwnKeyable = 128, kIsKeyable = 256, kOwnChannelBox = 512, kIsChannelBox = 1024,  // overrides by setAttr
        kChildDirty = 2048,  // compound: some child may be dirty
        kMuteCycle = 4096,   // a cycle through it was reported in this evaluation
        kPrivate = 8192,     // stands in no node's tree: a builder's or a constructed handle's
        kInternal = 16384,   // the node may keep the value in its own way
    };

    // the first cache line is what evaluation of a number touches
    void*            v;             // the value: own storage, the matrix, or inside the parent's tuple
    int32_t          index = -1;    // logical index of an element
    uint16_t         flags = kDirty;
    Node*            node;
    const Attribute* attr;
    Cell*            source = nullptr;
    Cell*            parent;        // the compound's cell, or for an element its multi's; null at the top
    std::vector<Cell*>* targets = nullptr;
    union {
        double d[4];
        float  f[4];
        int64_t l;
        int32_t i[4];
        int16_t s[4];
        bool   b;
        signed char c;
        Data*  data;
        double* matrix;      // 16 doubles
        float*  floatMatrix; // 16 floats
    } own = {{0, 0, 0, 0}};
    Cell**           children = nullptr;   // compound, by child index; each null until used
    Elements*        elements = nullptr;   // multi
    int32_t          users = 0;            // plugs that hold it

    // cells come from slabs, so that those of one node stand together
    static void* operator new(size_t bytes);
    static void  operator delete(void* cell) noexcept;

    Cell(Node* node, const Attribute* attr, Cell* parent, int index);
    ~Cell();
    Cell(const Cell&) = delete;

    bool is(Flag f) const { return flags & f; }
    void set(Flag f, bool on) { flags = on ? flags | f : flags & ~f; }
    bool isMulti() const { return attr->isArray() && index < 0; }       // the multi itself, not an element
    bool isElement() const { return index >= 0; }
    Store store() const { return isMulti() ? Store::kNone : attr->store; }
    Data* data() const { return attr->store == Store::kData && !isMulti() ? *static_cast<Data**>(v) : nullptr; }

    /// Child by its place, made if missing. Null for an index past the end.
    Cell* child(size_t i);
    Cell* childIfAny(size_t i) const { return children && i < attr->children.size() ? children[i] : nullptr; }
    Cell* element(int logical);             ///< made if missing; null for a negative index
    Cell* elementIfAny(int logical) const { return elements ? elements->find(logical) : nullptr; }
    size_t elementCount() const { return elements ? elements->cells.size() : 0; }
    bool  hasTargets() const { return targets && !targets->empty(); }

    // Values. Reads convert; a kind that does not convert gives 0, "" or null.
    double   number(int component = 0) const;
    void     setNumber(double value, int component = 0);
    void     setData(Ref<Data> value);      // for Store::kData
    void     setDefault();
    /// Copies with the usual numeric conversion; data objects are shared. Compounds child by child, multis by index.
    void     copyFrom(const Cell& other);
    void     copyLeafFrom(const Cell& other);
};

/// Walks a cell and all existing cells below it.
template <class F>
void walkCells(Cell& cell, F&& visit)
{
    visit(cell);
    if (cell.children)
        for (size_t i = 0; i < cell.attr->children.size(); ++i)
            if (cell.children[i])
                walkCells(*cell.children[i], visit);
    if (cell.elements)
        for (size_t i = 0; i < cell.elements->cells.size(); ++i)
            walkCells(*cell.elements->cells[i], visit);
}

}  // namespace mirk
