// addAttr: dynamic attributes.
#include "command/attr_value.h"
#include "command/cmd_util.h"
#include "data/plugin_data.h"
#include "graph/undo.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

constexpr Flag kAddAttr[] = {
    {"at", "attributeType", "s", kCreate | kQuery}, {"ci", "cachedInternally", "b", kAll}, {"ct", "category", "s", kAll, true}, {"dt", "dataType", "s", kCreate | kQuery, true},
    {"dv", "defaultValue", "f", kAll}, {"en", "enumName", "s", kAll}, {"ex", "exists", "", kQuery}, {"h", "hidden", "b", kAll}, {"hmx", "hasMaxValue", "b", kAll},
    {"hmn", "hasMinValue", "b", kAll}, {"hsx", "hasSoftMaxValue", "b", kAll}, {"hsn", "hasSoftMinValue", "b", kAll}, {"im", "indexMatters", "b", kCreate | kQuery},
    {"dcb", "disconnectBehaviour", "i", kAll}, {"is", "internalSet", "b", kAll}, {"k", "keyable", "b", kAll}, {"ln", "longName", "s", kCreate | kQuery},
    {"max", "maxValue", "f", kAll}, {"min", "minValue", "f", kAll}, {"m", "multi", "", kCreate | kQuery}, {"nc", "numberOfChildren", "i", kCreate | kQuery}, {"nn", "niceName", "s", kAll},
    {"p", "parent", "s", kCreate | kQuery}, {"pxy", "proxy", "s"}, {"r", "readable", "b", kAll}, {"s", "storable", "b", kAll}, {"sn", "shortName", "s", kCreate | kQuery},
    {"smx", "softMaxValue", "f", kAll}, {"smn", "softMinValue", "f", kAll}, {"uac", "usedAsColor", "", kAll}, {"uaf", "usedAsFilename", "", kAll}, {"w", "writable", "b", kAll},
};

struct SimpleType { const char* name; AttrKind kind; Store store; MFnNumericData::Type numeric; MFnUnitAttribute::Type unit; };
constexpr SimpleType kTypes[] = {
    {"bool", AttrKind::kNumeric, Store::kBool, MFnNumericData::kBoolean, MFnUnitAttribute::kInvalid},
    {"byte", AttrKind::kNumeric, Store::kChar, MFnNumericData::kByte, MFnUnitAttribute::kInvalid},
    {"char", AttrKind::kNumeric, Store::kChar, MFnNumericData::kChar, MFnUnitAttribute::kInvalid},
    {"short", AttrKind::kNumeric, Store::kShort, MFnNumericData::kShort, MFnUnitAttribute::kInvalid},
    {"long", AttrKind::kNumeric, Store::kInt, MFnNumericData::kInt, MFnUnitAttribute::kInvalid},
    {"int64", AttrKind::kNumeric, Store::kInt64, MFnNumericData::kInt64, MFnUnitAttribute::kInvalid},
    {"float", AttrKind::kNumeric, Store::kFloat, MFnNumericData::kFloat, MFnUnitAttribute::kInvalid},
    {"double", AttrKind::kNumeric, Store::kDouble, MFnNumericData::kDouble, MFnUnitAttribute::kInvalid},
    {"enum", AttrKind::kEnum, Store::kShort, MFnNumericData::kShort, MFnUnitAttribute::kInvalid},
    {"doubleAngle", AttrKind::kUnit, Store::kDouble, MFnNumericData::kDouble, MFnUnitAttribute::kAngle},
    {"doubleLinear", AttrKind::kUnit, Store::kDouble, MFnNumericData::kDouble, MFnUnitAttribute::kDistance},
    {"time", AttrKind::kUnit, Store::kDouble, MFnNumericData::kDouble, MFnUnitAttribute::kTime},
    {"message", AttrKind::kMessage, Store::kNone, MFnNumericData::kInvalid, MFnUnitAttribute::kInvalid},
    {"compound", AttrKind::kCompound, Store::kNone, MFnNumericData::kInvalid, MFnUnitAttribute::kInvalid},
    {"matrix", AttrKind::kMatrix, Store::kMatrix, MFnNumericData::kInvalid, MFnUnitAttribute::kInvalid},
    {"fltMatrix", AttrKind::kMatrix, Store::kFloatMatrix, MFnNumericData::kInvalid, MFnUnitAttribute::kInvalid},
    {"short2", AttrKind::kNumeric, Store::kShort2, MFnNumericData::k2Short, MFnUnitAttribute::kInvalid},
    {"short3", AttrKind::kNumeric, Store::kShort3, MFnNumericData::k3Short, MFnUnitAttribute::kInvalid},
    {"long2", AttrKind::kNumeric, Store::kInt2, MFnNumericData::k2Int, MFnUnitAttribute::kInvalid},
    {"long3", AttrKind::kNumeric, Store::kInt3, MFnNumericData::k3Int, MFnUnitAttribute::kInvalid},
    {"float2", AttrKind::kNumeric, Store::kFloat2, MFnNumericData::k2Float, MFnUnitAttribute::kInvalid},
    {"float3", AttrKind::kNumeric, Store::kFloat3, MFnNumericData::k3Float, MFnUnitAttribute::kInvalid},
    {"double2", AttrKind::kNumeric, Store::kDouble2, MFnNumericData::k2Double, MFnUnitAttribute::kInvalid},
    {"double3", AttrKind::kNumeric, Store::kDouble3, MFnNumericData::k3Double, MFnUnitAttribute::kInvalid},
    {"double4", AttrKind::kNumeric, Store::kDouble4, MFnNumericData::k4Double, MFnUnitAttribute::kInvalid},
    {"reflectance", AttrKind::kNumeric, Store::kFloat3, MFnNumericData::k3Float, MFnUnitAttribute::kInvalid},
    {"spectrum", AttrKind::kNumeric, Store::kFloat3, MFnNumericData::k3Float, MFnUnitAttribute::kInvalid},
};

struct DataType { const char* name; MFnData::Type type; };
constexpr DataType kDataTypes[] = {
    {"string", MFnData::kString}, {"stringArray", MFnData::kStringArray}, {"matrix", MFnData::kMatrix}, {"doubleArray", MFnData::kDoubleArray},
    {"floatArray", MFnData::kFloatArray}, {"Int32Array", MFnData::kIntArray}, {"vectorArray", MFnData::kVectorArray}, {"pointArray", MFnData::kPointArray},
    {"matrixArray", MFnData::kMatrixArray}, {"componentList", MFnData::kComponentList}, {"mesh", MFnData::kMesh}, {"nurbsCurve", MFnData::kNurbsCurve},
    {"nurbsSurface", MFnData::kNurbsSurface}, {"lattice", MFnData::kLattice}, {"dataDynArrayAttrs", MFnData::kDynArrayAttrs},
};

/// Fields "a:b=5:c"; numbers run on.
void setFields(Attribute& a, const std::string& text)
{
    a.fields.clear();
    int next = 0;
    for (size_t at = 0; at <= text.size() && !text.empty();)
    {
        const size_t end = std::min(text.find(':', at), text.size());
        std::string  field = text.substr(at, end - at);
        if (const size_t equals = field.find('='); equals != std::string::npos)
        {
            next = std::atoi(field.c_str() + equals + 1);
            field.erase(equals);
        }
        if (!field.empty())
            a.fields.emplace_back(field, short(next++));
        at = end + 1;
    }
}

void setLimits(Attribute& a, const Call& call)
{
    const struct { const char* flag; const char* has; uint8_t bit; double* value; } limits[] = {
        {"minValue", "hasMinValue", Attribute::kMin, &a.min}, {"maxValue", "hasMaxValue", Attribute::kMax, &a.max},
        {"softMinValue", "hasSoftMinValue", Attribute::kSoftMin, &a.softMin}, {"softMaxValue", "hasSoftMaxValue", Attribute::kSoftMax, &a.softMax}};
    for (const auto& l : limits)
    {
        if (call.has(l.flag))
        {
            *l.value = fromUi(a, call.num(l.flag));
            a.limits |= l.bit;
        }
        if (call.has(l.has) && !call.boolean(l.has))
            a.limits &= uint8_t(~l.bit);
    }
}

void setProperties(Attribute& a, const Call& call)
{
    const struct { const char* flag; Attribute::Flag bit; } flags[] = {
        {"cachedInternally", Attribute::kCached}, {"hidden", Attribute::kHidden}, {"keyable", Attribute::kKeyable}, {"readable", Attribute::kReadable},
        {"storable", Attribute::kStorable}, {"usedAsColor", Attribute::kUsedAsColor}, {"usedAsFilename", Attribute::kUsedAsFilename}, {"writable", Attribute::kWritable},
        {"indexMatters", Attribute::kIndexMatters}, {"internalSet", Attribute::kInternal}};
    for (const auto& f : flags)
        if (call.has(f.flag))
            a.set(f.bit, call.boolean(f.flag));
    setLimits(a, call);
    if (call.has("defaultValue"))
        for (double& d : a.defaults)
            d = fromUi(a, call.num("defaultValue"));
    if (call.has("enumName"))
        setFields(a, call.str("enumName"));
    if (call.has("niceName"))
        a.niceName = call.str("niceName");
    if (call.has("disconnectBehaviour"))
        a.disconnect = uint8_t(std::clamp(call.integer("disconnectBehaviour"), 0, 2));
    for (const auto* use : call.all("category"))
        a.categories.push_back(use->args[0].asString());
}

Ref<Attribute> makeAttribute(const Call& call)
{
    const std::string longName = call.str("longName", call.str("shortName")), shortName = call.str("shortName", longName);
    if (longName.empty())
        fail("New attribute needs either a long (-ln) or short (-sn) attribute name.");
    if (!edit::validName(longName) || !edit::validName(shortName))
        fail("The attribute name '" + longName + "' has illegal characters");
    std::string type = call.str("attributeType");
    Ref<Attribute> a;
    if (!call.has("dataType"))
    {
        if (type.empty())
            type = "double";
        for (const SimpleType& t : kTypes)
            if (type == t.name)
            {
                a = make<Attribute>(t.kind, longName, shortName);
                a->store = t.store;
                a->numeric = t.numeric;
                a->unit = t.unit;
            }
        if (!a)
            fail("Type specified for new attribute is unknown: " + type);
    }
    else
    {
        type = call.str("dataType");
        for (const DataType& t : kDataTypes)
            if (type == t.name)
            {
                a = make<Attribute>(AttrKind::kTyped, longName, shortName);
                a->dataType = t.type;
            }
        if (!a)
            for (const SimpleType& t : kTypes)   // -dt "double3" and its kin make tuples too
                if (type == t.name && storeDimension(t.store) > 1)
                {
                    a = make<Attribute>(t.kind, longName, shortName);
                    a->store = t.store;
                    a->numeric = t.numeric;
                }
        if (const unsigned id = a ? 0 : dataTypeId(type))
        {
            a = make<Attribute>(AttrKind::kTyped, longName, shortName);
            a->dataType = MFnData::kPlugin;
            a->pluginDataId = id;
        }
        if (!a)
            fail("Type specified for new attribute is unknown: " + type);
        if (a->kind == AttrKind::kTyped)
            a->store = Store::kData;
    }
    if (call.has("multi"))
        a->set(Attribute::kArray, true);
    a->set(Attribute::kDynamic, true);
    setProperties(*a, call);
    return a;
}

/// Children that a compound or tuple still waits for: it goes onto the node with its last child.
struct Waiting
{
    Ref<Node>      node;
    Ref<Attribute> top;
    std::vector<std::pair<Attribute*, size_t>> open;   ///< compounds and how many children each wants
};
std::vector<Waiting>& waiting()
{
    static std::vector<Waiting> all;
    return all;
}

size_t wantedChildren(const Attribute& a, const Call& call)
{
    if (a.kind == AttrKind::kCompound)
    {
        const int n = call.integer("numberOfChildren");
        if (n < 1)
            fail("The compound attribute '" + a.longName + "' needs its number of children (-nc)");
        return size_t(n);
    }
    return storeDimension(a.store) > 1 && call.has("attributeType") ? size_t(storeDimension(a.store)) : 0;
}

void addChild(Attribute& parent, const Ref<Attribute>& child)
{
    if (parent.isTuple() && child->store != storeElement(parent.store))
        fail("The child '" + child->longName + "' does not fit into '" + parent.longName + "'");
    child->parent = &parent;
    child->childIndex = int(parent.children.size());
    parent.children.push_back(child);
}

void addTo(Node& node, const Call& call)
{
    if (node.locked)
        fail("Cannot add an attribute to the locked node '" + nodeName(node) + "'");
    Ref<Attribute>    a = makeAttribute(call);
    const size_t      wants = wantedChildren(*a, call);
    const std::string parent = call.str("parent");
    if (node.findAttribute(a->longName) || node.findAttribute(a->shortName))
        fail("Name used for the new attribute '" + a->longName + "' is already used on '" + nodeName(node) + "'");
    if (parent.empty())
    {
        std::erase_if(waiting(), [&](const Waiting& w) { return w.node.get() == &node; });   // one begun and never finished
        if (!wants)
            return edit::addDynamic(node, a);
        waiting().push_back({Ref<Node>(&node), a, {{a.get(), wants}}});
        return;
    }
    for (size_t i = 0; i < waiting().size(); ++i)
    {
        Waiting& w = waiting()[i];
        if (w.node.get() != &node)
            continue;
        for (auto& [compound, left] : w.open)
            if (compound->longName == parent || compound->shortName == parent)
            {
                if (!left)
                    fail("The attribute '" + parent + "' has all its children already");
                addChild(*compound, a);
                --left;
                if (wants)
                    w.open.emplace_back(a.get(), wants);
                if (std::all_of(w.open.begin(), w.open.end(), [](const auto& o) { return o.second == 0; }))
                {
                    const Ref<Attribute> top = w.top;
                    waiting().erase(waiting().begin() + long(i));
                    edit::addDynamic(node, top);
                }
                return;
            }
    }
    fail("No compound attribute '" + parent + "' waits for children on '" + nodeName(node) + "'");
}

Value queryAttribute(Call& call, const Attribute& a)
{
    const auto yes = [&](bool b) { return call.truth = true, Value(b); };
    if (call.has("attributeType"))
        return Value(typeNameOf(a));
    if (call.has("dataType"))
        return Value(Strings{typeNameOf(a)});
    if (call.has("longName"))
        return Value(a.longName);
    if (call.has("shortName"))
        return Value(a.shortName);
    if (call.has("niceName"))
        return Value(a.niceName.empty() ? a.longName : a.niceName);
    if (call.has("defaultValue"))
        return Value(toUi(a, a.defaults[0]));
    if (call.has("minValue"))
        return a.limits & Attribute::kMin ? Value(toUi(a, a.min)) : Value();
    if (call.has("maxValue"))
        return a.limits & Attribute::kMax ? Value(toUi(a, a.max)) : Value();
    if (call.has("softMinValue"))
        return a.limits & Attribute::kSoftMin ? Value(toUi(a, a.softMin)) : Value();
    if (call.has("softMaxValue"))
        return a.limits & Attribute::kSoftMax ? Value(toUi(a, a.softMax)) : Value();
    if (call.has("hasMinValue"))
        return yes(a.limits & Attribute::kMin);
    if (call.has("hasMaxValue"))
        return yes(a.limits & Attribute::kMax);
    if (call.has("hasSoftMinValue"))
        return yes(a.limits & Attribute::kSoftMin);
    if (call.has("hasSoftMaxValue"))
        return yes(a.limits & Attribute::kSoftMax);
    if (call.has("keyable"))
        return yes(a.is(Attribute::kKeyable));
    if (call.has("hidden"))
        return yes(a.is(Attribute::kHidden));
    if (call.has("multi"))
        return yes(a.isArray());
    if (call.has("storable"))
        return yes(a.is(Attribute::kStorable));
    if (call.has("numberOfChildren"))
        return Value(int(a.children.size()));
    if (call.has("parent"))
        return Value(a.parent ? a.parent->longName : a.longName);
    if (call.has("enumName"))
        return Value(enumFields(a));
    fail("addAttr: a flag that says what to ask has to be given");
}

/// Properties of a dynamic attribute by assignment of a copy's: undone as a whole.
void editAttribute(Node& node, Attribute& a, const Call& call)
{
    if (!a.is(Attribute::kDynamic))
        fail("'" + a.longName + "' is no dynamic attribute of '" + nodeName(node) + "'");
    struct State { uint32_t flags; uint8_t limits, disconnect; double defaults[4], min, max, softMin, softMax; decltype(a.fields) fields; std::string nice; decltype(a.categories) categories; };
    const auto save = [](const Attribute& x) {
        State s{x.flags, x.limits, x.disconnect, {x.defaults[0], x.defaults[1], x.defaults[2], x.defaults[3]}, x.min, x.max, x.softMin, x.softMax, x.fields, x.niceName, x.categories};
        return s;
    };
    const auto restore = [](Attribute& x, const State& s) {
        x.flags = s.flags, x.limits = s.limits, x.disconnect = s.disconnect;
        std::copy(s.defaults, s.defaults + 4, x.defaults);
        x.min = s.min, x.max = s.max, x.softMin = s.softMin, x.softMax = s.softMax;
        x.fields = s.fields, x.niceName = s.nice, x.categories = s.categories;
    };
    const State before = save(a);
    setProperties(a, call);
    const State after = save(a);
    const Ref<Attribute> held(&a);
    undo::push([held, before, restore] { restore(*held, before); }, [held, after, restore] { restore(*held, after); });
}

Value addAttr(Call& call)
{
    if (call.isQuery() || call.isEdit())
    {
        const Strings names = call.names();
        if (names.size() != 1)
            fail("addAttr: one attribute has to be given");
        if (call.isQuery() && call.has("exists"))
        {
            const auto items = resolveItems(names[0]);
            return call.truth = true, Value(items.size() == 1 && items[0].plug);
        }
        Cell& cell = onePlug(names[0]);
        if (call.isQuery())
            return queryAttribute(call, *cell.attr);
        editAttribute(*cell.node, const_cast<Attribute&>(*cell.attr), call);
        return {};
    }
    const std::vector<Node*> nodes = callNodes(call);
    if (nodes.empty())
        fail("addAttr: no node is given or selected");
    for (Node* n : nodes)
        addTo(*n, call);
    return {};
}

const Command kCommands[] = {{"addAttr", kAddAttr, addAttr}};

}  // namespace

void registerAddAttr() { add(kCommands); }

}  // namespace mirk::command
