// Connections: making, breaking and listing them.
#include "command/cmd_util.h"
#include "graph/convert.h"

namespace mirk::command {

namespace {

constexpr Flag kConnectAttr[] = {{"f", "force"}, {"l", "lock", "b"}, {"na", "nextAvailable"}, {"rd", "referenceDest", "s"}};

bool connectedBelow(Cell& cell)
{
    bool any = false;
    walkCells(cell, [&](Cell& c) { any |= c.source != nullptr; });
    return any;
}

/// The element that the next connection to a multi takes: the first one without a connection. `like` is the child of
/// the element that was named, or null.
Cell& nextAvailable(Cell& multi)
{
    for (int i = 0;; ++i)
    {
        Cell* element = multi.elementIfAny(i);
        if (!element || !connectedBelow(*element))
            return *multi.element(i);
    }
}

Value connectAttr(Call& call)
{
    const Strings names = call.names();
    if (names.size() != 2)
        fail("connectAttr: a source and a destination attribute have to be given");
    Cell& source = onePlug(names[0]);
    Cell* target = &onePlug(names[1]);
    if (call.has("nextAvailable"))
    {
        if (!target->isMulti())
            fail("The destination attribute '" + names[1] + "' is no multi: -nextAvailable cannot be used");
        if (target->attr->is(Attribute::kIndexMatters))
            fail("The -nextAvailable flag cannot be used on '" + names[1] + "': its indices matter");
        target = &nextAvailable(*target);
    }
    if (!call.has("force") && target->source == &source)
        fail("'" + plugText(source) + "' is already connected to '" + plugText(*target) + "'.");
    if (target->is(Cell::kLocked))
        fail("The destination attribute '" + plugText(*target) + "' is locked and cannot be connected.");
    edit::connectConverting(source, *target, call.has("force"));
    if (call.has("lock"))
        edit::setFlag(*target, Cell::kLocked, call.boolean("lock"));
    return Value("Connected " + plugText(source) + " to " + plugText(*target) + ".");
}

constexpr Flag kDisconnectAttr[] = {{"na", "nextAvailable"}};

Cell* elementConnectedTo(Cell& multi, const Cell& source)
{
    for (size_t i = 0; i < multi.elementCount(); ++i)
        if (multi.elements->cells[i]->source == &source)
            return multi.elements->cells[i];
    return nullptr;
}

Value disconnectAttr(Call& call)
{
    const Strings names = call.names();
    if (names.size() == 1)
    {
        Cell& target = onePlug(names[0], false);
        if (!target.source)
            fail("There is no connection to '" + names[0] + "' to break.");
        Cell& from = *target.source;
        edit::disconnect(from, target);
        return Value("Disconnect " + plugText(from) + " from " + names[0] + ".");
    }
    if (names.size() != 2)
        fail("disconnectAttr: a source and a destination attribute have to be given");
    Cell& source = onePlug(names[0]);
    Cell* target = &onePlug(names[1]);
    const std::string text = plugText(*target);
    if (call.has("nextAvailable") && target->isMulti())
        target = elementConnectedTo(*target, source);
    if (!target)
        fail("There is no connection from '" + names[0] + "' to '" + names[1] + "' to disconnect");
    if (target->is(Cell::kLocked))
        fail("The destination attribute '" + text + "' is locked and cannot be disconnected.");
    const std::string done = "Disconnect " + plugText(source) + " from " + plugText(*target) + ".";
    edit::disconnectConverting(source, *target);
    return Value(done);
}

constexpr Flag kIsConnected[] = {{"iuc", "ignoreUnitConversion"}};

Value isConnected(Call& call)
{
    call.truth = true;
    const Strings names = call.names();
    if (names.size() != 2)
        fail("isConnected: two attributes have to be given");
    Cell& source = onePlug(names[0]);
    Cell& target = onePlug(names[1]);
    Cell* from = call.has("ignoreUnitConversion") ? edit::behindConversion(target.source) : target.source;
    return Value(from == &source);
}

constexpr Flag kConnectionInfo[] = {
    {"dfs", "destinationFromSource"}, {"ged", "getExactDestination"}, {"ges", "getExactSource"}, {"gla", "getLockedAncestor"},
    {"id", "isDestination"}, {"ied", "isExactDestination"}, {"ies", "isExactSource"}, {"il", "isLocked"}, {"is", "isSource"},
    {"sfd", "sourceFromDestination"},
};

Cell* ancestorWith(Cell* cell, bool (*has)(const Cell&))
{
    for (; cell; cell = cell->parent)
        if (has(*cell))
            return cell;
    return nullptr;
}

Value connectionInfo(Call& call)
{
    const Strings names = call.names();
    if (names.size() != 1)
        fail("connectionInfo: one attribute has to be given");
    Cell& cell = onePlug(names[0]);
    Cell* target = ancestorWith(&cell, [](const Cell& c) { return c.source != nullptr; });
    Cell* source = ancestorWith(&cell, [](const Cell& c) { return c.hasTargets(); });
    Cell* locked = ancestorWith(&cell, [](const Cell& c) { return c.is(Cell::kLocked); });
    const auto text = [](Cell* c) { return Value(c ? plugText(*c) : std::string()); };
    const auto yes = [&](bool b) { return call.truth = true, Value(b); };
    if (call.has("isSource"))
        return yes(source);
    if (call.has("isDestination"))
        return yes(target);
    if (call.has("isExactSource"))
        return yes(cell.hasTargets());
    if (call.has("isExactDestination"))
        return yes(cell.source);
    if (call.has("isLocked"))
        return yes(locked);
    if (call.has("getLockedAncestor"))
        return text(locked);
    if (call.has("getExactSource"))
        return text(source);
    if (call.has("getExactDestination"))
        return text(target);
    if (call.has("sourceFromDestination"))
        return text(cell.source);
    if (call.has("destinationFromSource"))
    {
        Strings out;
        if (cell.targets)
            for (Cell* t : *cell.targets)
                out.push_back(plugText(*t));
        return Value(out);
    }
    fail("connectionInfo: a flag that says what to ask has to be given");
}

constexpr Flag kListConnections[] = {
    {"c", "connections", "b"}, {"d", "destination", "b"}, {"et", "exactType", "b"}, {"p", "plugs", "b"}, {"scn", "skipConversionNodes", "b"},
    {"s", "source", "b"}, {"sh", "shapes", "b"}, {"t", "type", "s"},
};

class ConnectionLister
{
public:
    explicit ConnectionLister(const Call& call)
        : sources_(call.boolean("source", true)), targets_(call.boolean("destination", true)), plugs_(call.boolean("plugs")),
          own_(call.boolean("connections")), shapes_(call.boolean("shapes")), exact_(call.boolean("exactType")),
          skip_(call.boolean("skipConversionNodes")), type_(call.str("type"))
    {
        if (!type_.empty() && !findNodeType(type_))
            fail("Unknown object type: " + type_);
    }

    void visit(Cell& cell)
    {
        if (sources_ && cell.source)
            list(cell, *cell.source);
        if (targets_ && cell.hasTargets())
            for (Cell* t : *cell.targets)
                list(cell, *t);
    }

    Strings out;

private:
    void list(Cell& own, Cell& other)
    {
        if (skip_ && edit::isConversion(*other.node))
        {
            passConversion(own, other);
            return;
        }
        const NodeType& type = *other.node->type;
        if (!type_.empty() && (exact_ ? type.name != type_ : !type.isA(type_)))
            return;
        if (own_)
            out.push_back(plugText(own));
        if (plugs_)
            out.push_back(plugText(other));
        else
        {
            Node* transform = shapes_ || !isShape(*other.node) ? nullptr : transformOf(*other.node);
            out.push_back(nodeName(transform ? *transform : *other.node));
        }
    }

    void passConversion(Cell& own, Cell& at)
    {
        const bool  upstream = own.source == &at;
        const char* name = upstream ? "input" : "output";
        const Attribute* a = at.node->findAttribute(name);
        Cell* cell = a ? at.node->cellIfAny(a) : nullptr;
        if (!cell)
            return;
        if (upstream && cell->source)
            list(own, *cell->source);
        if (!upstream && cell->hasTargets())
            for (Cell* t : *cell->targets)
                list(own, *t);
    }

    bool        sources_, targets_, plugs_, own_, shapes_, exact_, skip_;
    std::string type_;
};

Value listConnections(Call& call)
{
    ConnectionLister lister(call);
    for (const Item& item : callItems(call))
    {
        if (item.plug)
            walkCells(*item.plug, [&](Cell& c) { lister.visit(c); });
        else
            for (Cell* top : nodeOf(item)->cells)
                if (top && !top->parent)
                    walkCells(*top, [&](Cell& c) { lister.visit(c); });
    }
    return lister.out.empty() ? Value() : Value(lister.out);
}

constexpr Flag kListHistory[] = {
    {"f", "future", "b"}, {"pdo", "pruneDagObjects", "b"}, {"lv", "levels", "i"}, {"ac", "allConnections"}, {"il", "interestLevel", "i"}, {"bf", "breadthFirst"},
};

void history(Node& node, bool future, bool pruneDag, int levels, std::vector<Node*>& seen)
{
    if (std::find(seen.begin(), seen.end(), &node) != seen.end() || (pruneDag && node.dag && !seen.empty()))   // the walk may begin at a shape
        return;
    seen.push_back(&node);
    if (levels == 1)
        return;
    std::vector<Node*> next;
    for (Cell* top : node.cells)
        if (top && !top->parent)
            walkCells(*top, [&](Cell& c) {
                if (!future && c.source)
                    next.push_back(c.source->node);
                if (future && c.targets)
                    for (Cell* t : *c.targets)
                        next.push_back(t->node);
            });
    for (Node* n : next)
        history(*n, future, pruneDag, levels ? levels - 1 : 0, seen);
}

Value listHistory(Call& call)
{
    std::vector<Node*> seen;
    for (Node* node : callNodes(call))
        for (Node* from : isTransform(*node) ? shapesOf(*node) : std::vector<Node*>{node})
            history(*from, call.boolean("future"), call.boolean("pruneDagObjects"), call.integer("levels"), seen);
    Strings out;
    for (Node* n : seen)
        if (!n->dag || !call.boolean("pruneDagObjects"))
            out.push_back(nodeName(*n));
    return out.empty() ? Value() : Value(out);
}

const Command kCommands[] = {
    {"connectAttr", kConnectAttr, connectAttr},
    {"disconnectAttr", kDisconnectAttr, disconnectAttr},
    {"isConnected", kIsConnected, isConnected, false},
    {"connectionInfo", kConnectionInfo, connectionInfo, false},
    {"listConnections", kListConnections, listConnections, false},
    {"listHistory", kListHistory, listHistory, false},
};

}  // namespace

void registerConnectCommands() { add(kCommands); }

}  // namespace mirk::command
