// The host's way into the interface's graph classes.
#pragma once
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>

#include "data/mobject.h"
#include "graph/node.h"

namespace mirk {

struct PlugAccess
{
    /// A plug of its own, which keeps node and cell alive.
    static MPlug make(Cell& cell);
    /// A plug lent for the time of a call: it counts nothing; copies of it do.
    static MPlug lend(Cell& cell)
    {
        MPlug p;
        p.node_ = cell.node;
        p.attr_ = cell.attr;
        p.cell_ = &cell;
        return p;
    }
    /// The cell, made if the plug only names node and attribute; null for a null plug, open indices or a dead node.
    static Cell* cell(const MPlug& plug);
    static Node* node(const MPlug& plug) { return plug.node_; }
};

struct HandleAccess
{
    static MDataHandle handle(Cell* cell, bool input = false) { MDataHandle h; h.cell_ = cell; h.input_ = input; return h; }
    static MArrayDataHandle array(Cell* cell, bool input = false) { MArrayDataHandle h; h.cell_ = cell; h.input_ = input; return h; }
    static MDataBlock block(Node* node) { MDataBlock b; b.node_ = node; return b; }
    static Cell* cell(const MDataHandle& h) { return h.cell_; }
    static Cell* cell(const MArrayDataHandle& h) { return h.cell_; }
    static Node* node(const MDataBlock& b) { return b.node_; }
    static Cell* inBlock(const MDataBlock& block, Cell* cell);
    static bool  isInput(const MDataHandle& h) { return h.input_; }
    /// The data object behind a handle, or null. For writers: `detachForWrite` gives the cell a data object of its own.
    static Object* data(const MDataHandle& h);
    static void    detachForWrite(const MDataHandle& h);
};

struct UserNodeAccess
{
    static void  bind(MPxNode& user, Node* node) { user.node_ = node; }
    static Node* node(const MPxNode& user) { return user.node_; }
};

}  // namespace mirk
