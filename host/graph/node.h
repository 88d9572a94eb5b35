// Node types and nodes.
#pragma once
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <maya/MPxNode.h>

#include "graph/cell.h"

namespace mirk {

class Dag;
class Node;

/// A node type: immutable once registered. `table` is flat: base type's attributes first, then own, parents before
/// children; `affects[slot]` names slots.
class NodeType
{
public:
    std::string  name;
    unsigned     id = 0;
    NodeType*    base = nullptr;
    MPxNode::Type kind = MPxNode::kDependNode;
    MFn::Type    apiType = MFn::kDependencyNode;
    std::vector<MFn::Type> functionTypes;     ///< what MObject::hasFn says yes to, besides apiType and those of base
    std::string  classification;
    std::string  plugin;                      ///< name of the plug-in, empty for built-in ones
    std::string  namePrefix;                  ///< new nodes are called prefix + number; the type name if empty
    bool         dag = false;                 ///< stands in the DAG
    bool         shape = false;
    bool         abstract = false;
    void*      (*creator)() = nullptr;
    /// Built-in types that need more than Node: shapes are geometry sources, for instance.
    Node*      (*make)(NodeType*, std::string) = nullptr;
    /// Dirt that crosses the DAG or that the affects table cannot tell: called when an attribute of a node gets dirty,
    /// adds the cells that are dirty too. Evaluates nothing.
    void       (*onDirty)(Node&, const Attribute&, std::vector<Cell*>& alsoDirty) = nullptr;
    /// Computes attributes of the host's own base types, whatever the class built on them does with its plugs. False if
    /// the cell is none of them.
    bool       (*computeBase)(Node&, Cell&) = nullptr;
    size_t       order = 0;                   ///< of registration

    std::vector<Ref<Attribute>>    table;
    std::vector<std::vector<int>>  affects;
    std::vector<uint8_t>           computed;  ///< slot is affected by something
    std::unordered_map<std::string, Attribute*> byName;   ///< long and short names
    size_t ownFirst = 0;                      ///< table index of the first attribute that is not inherited

    Attribute* find(const std::string& name) const;
    bool       isA(const std::string& typeName) const;
    void       add(Ref<Attribute> top);       ///< adds an attribute tree
    void       inherit(NodeType* from);
    bool       addAffects(const Attribute& when, const Attribute& what);
};

NodeType* findNodeType(const std::string& name);
NodeType* findNodeType(unsigned id);
/// All, in order of registration.
std::vector<NodeType*> nodeTypes();
/// Registers; a type of the same name and id takes the old one's place. Null and a reason if name or id is taken by
/// another type. The type is kept for ever: nodes and handles point at it.
NodeType* registerNodeType(std::unique_ptr<NodeType> type, std::string* why = nullptr);
bool      deregisterNodeType(NodeType* type);
/// The type that `initialize` of a class is filling at the moment (MPxNode::addAttribute and friends).
NodeType*& typeBeingBuilt();

/// Registers the abstract type that all nodes derive from, with the attributes that MPxNode names; once.
NodeType* registerBaseType();
const Attribute* nodeStateAttribute();

class Node : public Object
{
public:
    Node(NodeType* type, std::string name);
    ~Node() override;

    MFn::Type apiType() const override { return type->apiType; }
    bool      hasFn(MFn::Type t) const override;
    bool      valid() const override { return inScene; }

    /// The cell of an attribute without multi ancestors, made if missing; of one below a multi: null.
    Cell* cell(const Attribute* a);
    Cell* cell(const Attribute* a, int slot) { return size_t(slot) < cells.size() && cells[slot] ? cells[slot] : cell(a); }
    Cell* cellIfAny(const Attribute* a) const { return a && size_t(a->slot) < cells.size() ? cells[a->slot] : nullptr; }
    /// By long, short or alias name (no indices, no dots); dynamic ones too.
    Attribute* findAttribute(const std::string& name) const;
    /// All attributes: the type's, then the dynamic ones.
    template <class F> void eachAttribute(F&& f) const
    {
        for (auto& a : type->table) f(*a);
        for (auto& a : dynamics) walkAttributes(*a, f);
    }
    bool owns(const Attribute* a) const;
    bool isComputed(const Attribute* a) const { return size_t(a->slot) < type->computed.size() && type->computed[a->slot]; }

    // what evaluation reads stands first
    NodeType*            type;
    std::vector<Cell*>   cells;               ///< by slot
    std::unique_ptr<MPxNode> user;            ///< null for a node of unknown type
    int                  computing = 0;
    bool                 dependsOnDirtyCall = false;  ///< overrides setDependentsDirty
    bool                 ownDependsOn = false;        ///< overrides dependsOn
    bool                 ownPassive = false;          ///< overrides isPassiveOutput
    bool                 inScene = false;
    std::string          name;
    bool                 isDefault = false;   ///< persp, time1 ...: neither deleted nor stored
    bool                 locked = false;
    bool                 referenced = false;
    size_t               order = 0;           ///< of creation, for deterministic lists
    std::string          uuid;
    std::unique_ptr<Dag> dag;                 ///< null for nodes outside the DAG
    std::vector<Ref<Attribute>> dynamics;     ///< top-level dynamic attributes, in order of creation
    int                  nextSlot = 0;        ///< for dynamic attributes
    std::vector<std::pair<std::string, std::string>> aliases;   ///< alias, plug (without node)
    std::vector<Cell*>   removed;             ///< cells taken out, freed when nothing can hold them
    std::string          unknownText;         ///< unknown type: what the file said, kept to be written back
    std::string          unknownType;
};

/// Full name of a cell without its node: "input[2].inputGeometry". Compounds that are no multis are left out.
std::string plugPath(const Cell& cell, bool shortNames = false);
std::string plugName(const Cell& cell);   ///< "node.path"

}  // namespace mirk
