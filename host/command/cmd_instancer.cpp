// Instancers: making them, their objects and settings, and the particles that they follow.
#include "command/cmd_util.h"
#include "command/texture_commands.h"
#include "dynamics/instancer.h"
#include "dynamics/particle.h"
#include "graph/evaluate.h"

namespace mirk::command {
namespace {

constexpr uint8_t kSet = kCreate | kEdit, kAny = kCreate | kQuery | kEdit;

constexpr Flag kInstancer[] = {
    {"a", "addObject", "", kSet}, {"c", "cycle", "s", kAny}, {"cs", "cycleStep", "f", kAny}, {"csu", "cycleStepUnits", "s", kAny},
    {"i", "index", "i", kEdit | kQuery, false, true}, {"lod", "levelOfDetail", "s", kAny}, {"n", "name", "s", kSet},
    {"obj", "object", "s", kAny, true}, {"pds", "pointDataSource", "", kQuery}, {"rm", "removeObject", "", kEdit},
    {"ro", "rotationOrder", "s", kAny}, {"ru", "rotationUnits", "s", kAny},
};

/// Settings that are an attribute of the same name.
constexpr const char* kSettings[] = {"cycle", "cycleStepUnits", "levelOfDetail", "rotationOrder", "rotationUnits"};

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

Node& objectOf(const std::string& name)
{
    Node& node = oneNode(name);
    if (!node.dag)
        fail("'" + name + "' stands in no hierarchy: it cannot be instanced");
    return node;
}

/// Each field is written without spaces; case does not matter.
int fieldOf(const Attribute& attribute, std::string name, const std::string& flag)
{
    const auto lower = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        return text;
    };
    for (const auto& [field, value] : attribute.fields)
        if (lower(field) == lower(name))
            return value;
    std::string all;
    for (const auto& [field, value] : attribute.fields)
        all += (all.empty() ? "" : ", ") + field;
    fail("'" + name + "' is no value of -" + flag + ": it is one of " + all);
}

/// Values of flags and objects, looked up before anything is changed.
struct Settings
{
    explicit Settings(const Call& call)
    {
        const NodeType* type = findNodeType("instancer");
        for (const char* name : kSettings)
            if (call.has(name))
                fields.emplace_back(name, fieldOf(*type->find(name), call.str(name), name));
        if (call.has("cycleStep") && !(call.num("cycleStep") > 0))
            fail("The step of a cycle has to be above 0");
        for (const auto* use : call.all("object"))
            objects.push_back(&objectOf(use->args[0].asString()));
    }
    void apply(Node& node, const Call& call) const
    {
        for (const auto& [name, value] : fields)
            edit::setNumber(cellOf(node, name), value);
        if (call.has("cycleStep"))
            edit::setNumber(cellOf(node, "cycleStep"), call.num("cycleStep"));
    }

    std::vector<std::pair<const char*, int>> fields;
    std::vector<Node*>                       objects;
};

void addObjects(Node& instancer, const std::vector<Node*>& objects)
{
    Cell& all = cellOf(instancer, "inputHierarchy");
    for (Node* object : objects) {
        const int next = all.elements && !all.elements->cells.empty() ? all.elements->cells.back()->index + 1 : 0;
        edit::connect(cellOf(*object, "matrix"), edit::addElement(all, next));
    }
}

/// The element at a place of the list.
Cell& elementAt(Node& instancer, int place)
{
    Cell& all = cellOf(instancer, "inputHierarchy");
    if (place < 0 || size_t(place) >= all.elementCount())
        fail("'" + nodeName(instancer) + "' has no object number " + std::to_string(place));
    return *all.elements->cells[size_t(place)];
}

void removeObjects(Node& instancer, const Call& call, const std::vector<Node*>& objects)
{
    std::vector<Cell*> gone;
    if (call.has("index"))
        gone.push_back(&elementAt(instancer, call.integer("index")));
    for (Node* object : objects) {
        const std::vector<Node*> all = dynamics::instancedObjects(instancer);
        const auto               at = std::find(all.begin(), all.end(), object);
        if (at == all.end())
            fail("'" + nodeName(*object) + "' is no object of '" + nodeName(instancer) + "'");
        gone.push_back(&elementAt(instancer, int(at - all.begin())));
    }
    for (Cell* element : gone)
        edit::removeElement(*element);
}

void putObject(Node& instancer, int place, Node& object)
{
    edit::connect(cellOf(object, "matrix"), elementAt(instancer, place), true);
}

Node& instancerOf(const Call& call)
{
    for (const Item& item : callItems(call))
        if (dynamics::isInstancer(*item.node))
            return *item.node;
    fail(std::string(call.command->name) + ": no instancer is given");
}

void change(Node& node, const Call& call, const Settings& settings)
{
    if (call.has("removeObject"))
        removeObjects(node, call, settings.objects);
    else if (call.has("index") && settings.objects.size() == 1)
        putObject(node, call.integer("index"), *settings.objects[0]);
    else
        addObjects(node, settings.objects);
    settings.apply(node, call);
}

Value queryOf(Node& node, const Call& call)
{
    for (const char* name : kSettings)
        if (call.has(name)) {
            Cell& cell = cellOf(node, name);
            eval::pull(cell);
            for (const auto& [field, value] : cell.attr->fields)
                if (value == int(cell.number()))
                    return Value(field);
            return Value("");
        }
    if (call.has("cycleStep")) {
        eval::pull(cellOf(node, "cycleStep"));
        return Value(cellOf(node, "cycleStep").number());
    }
    if (call.has("pointDataSource")) {
        const Cell* source = cellOf(node, "inputPoints").source;
        return Value(source ? nodeName(*source->node) : "");
    }
    Strings out;
    for (Node* object : dynamics::instancedObjects(node))
        out.push_back(object ? nodeName(*object) : "");
    if (!call.has("index"))
        return Value(out);
    const int at = call.integer("index");
    elementAt(node, at);
    return Value(out[size_t(at)]);
}

Value instancer(Call& call)
{
    if (call.isQuery())
        return queryOf(instancerOf(call), call);
    if (call.isEdit()) {
        Node&          node = instancerOf(call);
        const Settings settings(call);
        change(node, call, settings);
        if (call.has("name"))
            dag::renameNode(node, call.str("name"));
        return Value(nodeName(node));
    }
    Settings settings(call);
    for (const std::string& name : call.names())
        settings.objects.push_back(&objectOf(name));
    Node* node = dag::createNode(findNodeType("instancer"), call.str("name", "instancer#"));
    change(*node, call, settings);
    selection::set({itemOf(*node)});
    return Value(nodeName(*node));
}

// ---- particles ---------------------------------------------------------------------------------------------------

/// Flags that give an instancer's array a per-particle attribute.
constexpr const char* kOptions[] = {"position", "scale", "shear", "visibility", "objectIndex", "rotationType", "rotation", "aimDirection",
                                    "aimPosition", "aimAxis", "aimUpAxis", "aimWorldUp", "particleAge"};

constexpr Flag kParticleInstancer[] = {
    {"a", "addObject", "", kSet}, {"aa", "aimAxis", "s", kAny}, {"ad", "aimDirection", "s", kAny}, {"ap", "aimPosition", "s", kAny},
    {"aua", "aimUpAxis", "s", kAny}, {"awu", "aimWorldUp", "s", kAny}, {"c", "cycle", "s", kAny}, {"cs", "cycleStep", "f", kAny},
    {"csu", "cycleStepUnits", "s", kAny}, {"i", "index", "i", kEdit | kQuery, false, true}, {"lod", "levelOfDetail", "s", kAny},
    {"n", "name", "s", kAny, false, true}, {"obj", "object", "s", kAny, true}, {"oi", "objectIndex", "s", kAny}, {"p", "position", "s", kAny},
    {"age", "particleAge", "s", kAny}, {"rm", "removeObject", "", kEdit}, {"r", "rotation", "s", kAny}, {"ro", "rotationOrder", "s", kAny},
    {"rt", "rotationType", "s", kAny}, {"ru", "rotationUnits", "s", kAny}, {"sc", "scale", "s", kAny}, {"sh", "shear", "s", kAny},
    {"vis", "visibility", "s", kAny},
};

const char* arrayName(const std::string& option) { return option == "particleAge" ? "age" : option.c_str(); }

/// `-query -name` alone asks for names: what follows it is the particle object.
bool asksNames(const Call& call) { return call.isQuery() && call.has("name") && call.names().empty(); }

Node& particleOf(const Call& call)
{
    for (const Item& item : asksNames(call) ? someItems(call.str("name")) : callItems(call))
        for (Node* shape : shapesOf(*item.node))
            if (dynamics::isParticle(*shape))
                return *shape;
    fail("particleInstancer: no particle object is given");
}

/// Elements of instanceData with the instancers that they drive, in order.
struct Link { Cell* element; Node* instancer; };
std::vector<Link> linksOf(Node& particle)
{
    std::vector<Link> out;
    Cell& all = cellOf(particle, "instanceData");
    for (Cell* element : all.elements ? all.elements->cells : std::vector<Cell*>())
        if (const Cell* data = element->childIfAny(1); data && data->targets)
            for (const Cell* target : *data->targets)
                if (dynamics::isInstancer(*target->node))
                    out.push_back({element, target->node});
    return out;
}

Link linkOf(Node& particle, const Call& call)
{
    const std::string wanted = call.str("name");
    for (const Link& link : linksOf(particle))
        if (wanted.empty() || nodeName(*link.instancer) == wanted)
            return link;
    fail("'" + nodeName(particle) + "' drives no instancer" + (wanted.empty() ? "" : " '" + wanted + "'"));
}

std::vector<MString> mappingOf(const Cell& element)
{
    const Cell* cell = element.childIfAny(0);
    const auto* data = cell ? dynamic_cast<const StringArrayData*>(cell->data()) : nullptr;
    if (!data)
        return {};
    const auto& b = std::as_const(*data->buffer);
    return {b.begin(), b.end()};
}

/// An attribute that the particles do not have is refused; an empty name gives the option up.
void map(Node& particle, Cell& element, const Call& call)
{
    std::vector<MString> all = mappingOf(element);
    for (const char* option : kOptions) {
        if (!call.has(option))
            continue;
        const std::string attribute = call.str(option);
        if (!attribute.empty() && !dynamics::vectorCell(particle, attribute) && !dynamics::doubleCell(particle, attribute))
            fail("'" + nodeName(particle) + "' has no per-particle attribute '" + attribute + "'");
        size_t at = 0;
        while (at + 1 < all.size() && std::string(all[at].asChar()) != arrayName(option))
            at += 2;
        if (at + 1 < all.size())
            all.erase(all.begin() + long(at), all.begin() + long(at) + 2);
        if (!attribute.empty())
            all.insert(all.end(), {MString(arrayName(option)), MString(attribute.c_str())});
    }
    auto data = make<StringArrayData>();
    for (const MString& s : all)
        data->buffer->push(s);
    edit::setData(*element.child(0), data);
}

Value particleInstancer(Call& call)
{
    Node& particle = particleOf(call);
    if (call.isQuery()) {
        if (asksNames(call)) {
            Strings names;
            for (const Link& link : linksOf(particle))
                names.push_back(nodeName(*link.instancer));
            return Value(names);
        }
        const Link link = linkOf(particle, call);
        for (const char* option : kOptions)
            if (call.has(option)) {
                const std::vector<MString> all = mappingOf(*link.element);
                for (size_t i = 0; i + 1 < all.size(); i += 2)
                    if (std::string(all[i].asChar()) == arrayName(option))
                        return Value(all[i + 1].asChar());
                return Value("");
            }
        return queryOf(*link.instancer, call);
    }
    const Settings settings(call);
    if (call.isEdit()) {
        const Link link = linkOf(particle, call);
        map(particle, *link.element, call);
        change(*link.instancer, call, settings);
        return Value(nodeName(*link.instancer));
    }
    Cell&     all = cellOf(particle, "instanceData");
    const int next = all.elements && !all.elements->cells.empty() ? all.elements->cells.back()->index + 1 : 0;
    Cell&     element = edit::addElement(all, next);
    map(particle, element, call);
    Node* node = dag::createNode(findNodeType("instancer"), call.str("name", "instancer#"));
    edit::connect(*element.child(1), cellOf(*node, "inputPoints"));
    change(*node, call, settings);
    return Value(nodeName(*node));
}

const Command kCommands[] = {
    {"instancer", kInstancer, instancer},
    {"particleInstancer", kParticleInstancer, particleInstancer},
};

}  // namespace

void registerInstancerCommands() { add(kCommands); }

}  // namespace mirk::command
