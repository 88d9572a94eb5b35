// getAttr and setAttr.
#include <maya/MDistance.h>

#include "anim/curve_node.h"
#include "command/attr_value.h"
#include "command/cmd_util.h"
#include "io/scene_file.h"
#include "command/lend.h"
#include "command/message.h"
#include "command/shape_edit.h"
#include "graph/context.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "io/ma_mesh.h"
#include "nodes/geometry_shape.h"
#include "nurbs/nurbs_data.h"

namespace mirk::command {

namespace {

constexpr Flag kGetAttr[] = {
    {"as", "asString"}, {"ca", "caching"}, {"cb", "channelBox"}, {"x", "expandEnvironmentVariables"}, {"k", "keyable"},
    {"l", "lock"}, {"mi", "multiIndices"}, {"se", "settable"}, {"sl", "silent"}, {"s", "size"}, {"t", "time", "t"}, {"typ", "type"},
};

bool effective(const Cell& cell, Cell::Flag own, Cell::Flag is, Attribute::Flag attr)
{
    return cell.is(own) ? cell.is(is) : cell.attr->is(attr);
}

bool lockedAbove(const Cell& cell)
{
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->is(Cell::kLocked))
            return true;
    return false;
}

/// What a curve animates can be set: the value lasts until the time changes. So with other passive outputs.
bool drivenAbove(Cell& cell)
{
    for (Cell* c = &cell; c; c = c->parent)
        if (c->source)
            return edit::isDriven(*c) && !anim::curveDriving(*c);
    return false;
}

std::string enumText(const Cell& cell)
{
    const int value = int(cell.number());
    for (const auto& [field, number] : cell.attr->fields)
        if (number == value)
            return field;
    return std::to_string(value);
}

/// The answer of a flag that asks about the plug and not for its value.
bool plugFact(Cell& cell, Call& call, Value& out)
{
    call.truth = true;
    if (call.has("lock"))
        out = Value(lockedAbove(cell));
    else if (call.has("keyable"))
        out = Value(effective(cell, Cell::kOwnKeyable, Cell::kIsKeyable, Attribute::kKeyable));
    else if (call.has("channelBox"))
        out = Value(effective(cell, Cell::kOwnChannelBox, Cell::kIsChannelBox, Attribute::kChannelBox));
    else if (call.has("caching"))
        out = Value(cell.attr->is(Attribute::kCached));
    else if (call.has("settable"))
        out = Value(cell.attr->is(Attribute::kWritable) && !lockedAbove(cell) && !edit::isDriven(const_cast<Cell&>(cell)));
    else
    {
        call.truth = false;
        if (call.has("type"))
            out = Value(typeNameOf(cell));
        else if (call.has("size"))
        {
            if (cell.isMulti())
                eval::pullDeep(cell);
            out = Value(cell.isMulti() ? int(cell.elementCount()) : 1);
        }
        else if (call.has("multiIndices"))
        {
            Ints indices;
            if (cell.isMulti())
            {
                eval::pullDeep(cell);
                for (size_t i = 0; i < cell.elementCount(); ++i)
                    indices.push_back(cell.elements->cells[i]->index);
            }
            out = indices.empty() ? Value() : Value(indices);
        }
        else
            return false;
    }
    return true;
}

/// The plain name of a world-space output means its first instance.
Cell& firstInstance(Cell& cell)
{
    return cell.isMulti() && cell.attr->is(Attribute::kWorldSpace) ? *cell.element(0) : cell;
}

/// The points that "curve.cv[*]" or "mesh.vtx[0:3]" names: CVs of a shape without history, else the offsets on top of what
/// history makes, as of meshes always. False if the name is no such component.
bool readPoints(const std::string& name, std::vector<double>& out)
{
    const size_t dot = name.rfind('.');
    if (dot == std::string::npos || (name.compare(dot + 1, 3, "cv[") != 0 && name.compare(dot + 1, 4, "vtx[") != 0))
        return false;
    for (const Item& item : someItems(name))
    {
        Node* node = item.path.nodes.empty() ? nullptr : item.path.node();
        auto* shape = dynamic_cast<nodes::GeometryShape*>(node);
        if (!shape || !item.component)
            return false;
        const bool offsets = hasHistory(*shape) || dynamic_cast<MeshSource*>(node);
        const std::vector<MPoint> points = offsets ? std::vector<MPoint>() : shapePoints(*shape);
        Cell* stored = shape->cell(shape->attrs().offsets);
        for (int i : pointIndices(*shape, *item.component))
        {
            const Cell* offset = stored->elementIfAny(i);
            for (unsigned k = 0; k < 3; ++k)
                out.push_back(MDistance::internalToUI(!offsets ? points[size_t(i)][k] : offset ? offset->number(int(k)) : 0));
        }
    }
    return true;
}

Value getAttr(Call& call)
{
    Lending* const lending = Lending::take();
    const Strings  plugs = call.names();
    if (plugs.empty())
        fail("No attribute was specified.");
    const eval::At context(call.has("time") ? eval::When{false, timeSeconds(call.use("time")->args[0])} : eval::now());
    if (std::vector<double> points; plugs.size() == 1 && call.uses.size() == size_t(call.has("time")) && readPoints(plugs[0], points))
    {
        call.rowWidth = 3;
        return Value(points);
    }
    std::vector<Cell*> cells;
    for (const std::string& name : plugs)
        for (Cell* c : somePlugs(name))
            cells.push_back(c);
    if (cells.empty())
        return {};
    Value out;
    if (cells.size() == 1)
    {
        const bool aboutElements = call.has("size") || call.has("multiIndices");
        Cell&      cell = aboutElements ? *cells.front() : firstInstance(*cells.front());
        if (plugFact(cell, call, out))
            return out;
        if (call.has("asString") && cell.attr->kind == AttrKind::kEnum && !cell.isMulti())
            return eval::pull(cell), Value(enumText(cell));
        return readPlug(cell, call, lending);
    }
    Strings texts;
    std::vector<double> numbers;
    for (Cell* cell : cells)
    {
        if (!plugFact(*cell, call, out))
            out = readPlug(*cell, call);
        if (out.kind() == Value::kString || out.kind() == Value::kStrings)
            for (std::string& s : out.asStrings())
                texts.push_back(std::move(s));
        else
            for (const Floats all = out.asFloats(); double d : *all)
                numbers.push_back(d);
    }
    call.truth = false;
    return texts.empty() ? Value(numbers) : Value(texts);
}

constexpr Flag kSetAttr[] = {
    {"av", "alteredValue"}, {"ca", "caching", "b"}, {"ch", "capacityHint", "i"}, {"cb", "channelBox", "b"}, {"c", "clamp"},
    {"k", "keyable", "b"}, {"l", "lock", "b"}, {"s", "size", "i"}, {"typ", "type", "s"},
};

void setState(Cell& cell, Call& call)
{
    // unlocking first, locking last: the value in the same call goes between
    if (call.has("keyable"))
    {
        edit::setFlag(cell, Cell::kOwnKeyable, true);
        edit::setFlag(cell, Cell::kIsKeyable, call.boolean("keyable"));
    }
    if (call.has("channelBox"))
    {
        edit::setFlag(cell, Cell::kOwnChannelBox, true);
        edit::setFlag(cell, Cell::kIsChannelBox, call.boolean("channelBox"));
    }
}

void checkWritable(const Cell& cell)
{
    bool childSource = false;
    if (cell.attr->isCompound() && !cell.isMulti())
        walkCells(const_cast<Cell&>(cell), [&](Cell& c) {
            childSource |= (c.source && drivenAbove(c)) || (c.is(Cell::kLocked) && !io::readingFile());   // files lock first
        });
    if (!cell.attr->is(Attribute::kWritable))
        fail("The attribute '" + plugText(cell) + "' is not writable and cannot be modified.");
    if (lockedAbove(cell) || drivenAbove(const_cast<Cell&>(cell)) || childSource)
        fail("The attribute '" + plugText(cell) + "' is locked or connected and cannot be modified.");
}

void writeTyped(Cell& cell, const std::string& type, Arguments& args, bool clamp)
{
    const Attribute& a = *cell.attr;
    if (a.store != Store::kData)
    {
        const std::string own = typeNameOf(a);
        const bool numeric = type == own || numbersOf(a) > 1 ||
                             type == "double" || type == "float" || type == "long" || type == "short" || type == "bool";
        if (!numeric || type == "string" || type.find("Array") != std::string::npos)
            fail("Type '" + type + "' specified for new attribute value does not match '" + plugText(cell) + "', which is of type " + own + ".");
        return writeNumbers(cell, args, clamp);
    }
    Ref<Data> data = dataFromArguments(type, args);
    if (!data)
        fail("Invalid type '" + type + "' for '" + plugText(cell) + "'.");
    const bool fits = a.kind == AttrKind::kGeneric ? a.acceptsData(data->type()) || data->type() == MFnData::kNumeric
                                                   : a.dataType == data->type() || a.dataType == MFnData::kAny;
    if (!fits)
        fail("Type '" + type + "' specified for new attribute value does not match '" + plugText(cell) + "', which is of type " + typeNameOf(a) + ".");
    edit::setData(cell, data);
}

void writeUntyped(Cell& cell, Arguments& args, bool clamp)
{
    const Attribute& a = *cell.attr;
    if (a.kind == AttrKind::kMessage)
        fail("Message attributes have no data values: " + plugText(cell));
    if (a.store != Store::kData)
    {
        if (!numbersOf(a))
            fail("'" + plugText(cell) + "' is a compound and cannot be set as a whole.");
        return writeNumbers(cell, args, clamp);
    }
    if (a.kind == AttrKind::kGeneric && args.left() && args.peek().kind() != Value::kString)
    {
        const bool isInt = args.peek().kind() == Value::kInt;
        auto data = make<NumericData>(isInt ? MFnNumericData::kInt : MFnNumericData::kDouble);
        data->value[0] = args.number();
        return edit::setData(cell, data);
    }
    if (a.dataType == MFnData::kString || a.kind == AttrKind::kGeneric)
        fail("'" + plugText(cell) + "': use the -type flag to set a string.");
    fail("'" + plugText(cell) + "': use the -type flag to set a value of type " + typeNameOf(a) + ".");
}

void writeValue(Cell& cell, const std::string& type, Arguments& args, bool clamp)
{
    try
    {
        type.empty() ? writeUntyped(cell, args, clamp) : writeTyped(cell, type, args, clamp);
    }
    catch (const Error& e)
    {
        if (std::string(e.what()).starts_with("Error reading data element"))   // knows the value's place only
            fail("'" + plugText(cell) + "': " + e.what());
        throw;
    }
}

/// True if the text names a plug and is not a value.
bool namesPlug(const Value& v)
{
    if (v.kind() != Value::kString)
        return false;
    const std::string& s = v.get<std::string>();
    return s.find('.') != std::string::npos && (std::isalpha(static_cast<unsigned char>(s[0])) || s[0] == '|' || s[0] == ':' || s[0] == '_');
}

Value setAttr(Call& call)
{
    if (call.args.empty())
        fail("No attribute was specified.");
    std::vector<std::string> names{call.args[0].asString()};
    std::vector<Value>       rest(call.args.begin() + 1, call.args.end());
    const std::string        type = call.str("type");
    if (type.empty())
        while (!rest.empty() && namesPlug(rest.front()))
        {
            names.push_back(rest.front().asString());
            rest.erase(rest.begin());
        }
    Arguments args(std::move(rest));
    if (names.size() == 1 && io::setMeshAttribute(names[0], args))
        return {};
    const bool stateOnly = args.done() && type.empty();
    if (stateOnly && !call.has("lock") && !call.has("keyable") && !call.has("channelBox") && !call.has("size") && !call.has("caching") &&
        !call.has("capacityHint") && !call.has("alteredValue"))
        fail("Error reading data element number 1: no value was given for '" + names[0] + "'");
    std::vector<Cell*> cells;
    for (const std::string& name : names)
        for (Cell* c : somePlugs(name))
            cells.push_back(c);
    const std::vector<Value> again = names.size() > 1 ? std::vector<Value>(call.args.begin() + long(names.size()), call.args.end())
                                                      : std::vector<Value>();
    for (size_t i = 0; i < cells.size(); ++i)
    {
        Cell& cell = *cells[i];
        if (call.has("lock") && !call.boolean("lock"))
            edit::setFlag(cell, Cell::kLocked, false);
        setState(cell, call);
        if (!stateOnly)
        {
            checkWritable(cell);
            if (names.size() > 1)
                args = Arguments(again);   // every one of several plugs gets the same value
            writeValue(cell, type, args, call.has("clamp"));
        }
        if (call.boolean("lock"))
            edit::setFlag(cell, Cell::kLocked, true);
    }
    if (!args.done())
        fail("Too many values were given for '" + names[0] + "': " + std::to_string(args.left()) + " left over");
    return {};
}

const Command kCommands[] = {
    {"getAttr", kGetAttr, getAttr, false},
    {"setAttr", kSetAttr, setAttr},
};

}  // namespace

void registerGetSetCommands() { add(kCommands); }

}  // namespace mirk::command
