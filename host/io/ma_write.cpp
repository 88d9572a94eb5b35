// Writes .ma files: nodes with their set values, connections last.
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <set>

#include <maya/MString.h>

#include "command/attr_value.h"
#include "command/geometry_text.h"
#include "command/shape_edit.h"
#include "command/units_text.h"
#include "dag/component_text.h"
#include "io/ma_mesh.h"
#include "io/scene_file.h"
#include "mesh/mesh.h"
#include "nodes/geometry_shape.h"
#include "nurbs/nurbs_data.h"

namespace mirk::io {

using command::doubleText;
using command::fail;
using command::floatText;

namespace {

std::string quoted(const std::string& s)
{
    std::string out = "\"";
    for (char c : s)
        switch (c)
        {
        case '"':  out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        default:   out += c;
        }
    return out + "\"";
}

/// The stored numbers of a leaf in the user's units, exact.
std::string numberOf(const Cell& cell, int component)
{
    const Attribute& a = *cell.attr;
    const Attribute* leaf = a.child(size_t(component)) ? a.child(size_t(component)) : &a;
    const Store      store = a.isTuple() ? storeElement(a.store) : a.store;
    const double     value = cell.number(component);
    if (store == Store::kFloat)
        return floatText(float(value));
    if (store == Store::kDouble)
        return doubleText(leaf->kind == AttrKind::kUnit ? command::exactUi(*leaf, value) : value);
    if (store == Store::kBool)
        return value != 0 ? "yes" : "no";
    return std::to_string(int64_t(value));
}

template <class B>
std::string arrayText(const B& b, size_t perElement)
{
    std::string   out = std::to_string(b.size());
    const double* v = reinterpret_cast<const double*>(b.data());
    for (size_t i = 0; i < b.size() * perElement; ++i)
        out += (i % 12 == 11 ? "\n\t\t" : " ") + doubleText(v[i]);
    return out;
}

/// Type and arguments of a data object; empty if it cannot be stored.
std::string dataText(const Data& data)
{
    switch (data.type())
    {
    case MFnData::kString: return " -type \"string\" " + quoted(static_cast<const StringData&>(data).value);
    case MFnData::kStringArray:
    {
        const auto& b = *static_cast<const StringArrayData&>(data).buffer;
        std::string out = " -type \"stringArray\" " + std::to_string(b.size());
        for (const MString& s : std::as_const(b))
            out += " " + quoted(s.asChar());
        return out;
    }
    case MFnData::kDoubleArray: return " -type \"doubleArray\" " + arrayText(*static_cast<const DoubleArrayData&>(data).buffer, 1);
    case MFnData::kVectorArray: return " -type \"vectorArray\" " + arrayText(*static_cast<const VectorArrayData&>(data).buffer, 3);
    case MFnData::kPointArray:  return " -type \"pointArray\" " + arrayText(*static_cast<const PointArrayData&>(data).buffer, 4);
    case MFnData::kMatrixArray: return " -type \"matrixArray\" " + arrayText(*static_cast<const MatrixArrayData&>(data).buffer, 16);
    case MFnData::kFloatArray:
    {
        const auto& b = *static_cast<const FloatArrayData&>(data).buffer;
        std::string out = " -type \"floatArray\" " + std::to_string(b.size());
        for (float f : std::as_const(b))
            out += " " + floatText(f);
        return out;
    }
    case MFnData::kIntArray:
    {
        const auto& b = *static_cast<const IntArrayData&>(data).buffer;
        std::string out = " -type \"Int32Array\" " + std::to_string(b.size());
        for (int i : std::as_const(b))
            out += " " + std::to_string(i);
        return out;
    }
    case MFnData::kMatrix:
    {
        std::string out = " -type \"matrix\"";
        const double* m = &static_cast<const MatrixData&>(data).value[0][0];
        for (int i = 0; i < 16; ++i)
            out += " " + doubleText(m[i]);
        return out;
    }
    case MFnData::kNumeric:
    {
        const auto& n = static_cast<const NumericData&>(data);
        std::string out = " -type \"" + command::numericName(storeOf(n.numericType)) + "\"";
        for (int i = 0; i < n.count(); ++i)
            out += " " + doubleText(n.value[i]);
        return out;
    }
    case MFnData::kComponentList:
    {
        command::Strings texts;
        for (const auto& c : static_cast<const ComponentListData&>(data).list)
            for (std::string& s : componentTexts(*c))
                texts.push_back(std::move(s));
        std::string out = " -type \"componentList\" " + std::to_string(texts.size());
        for (const std::string& s : texts)
            out += " " + quoted(s);
        return out;
    }
    case MFnData::kMesh:         return " -type \"mesh\"\n\t\t" + command::meshText(*static_cast<const MeshData&>(data).body);
    case MFnData::kNurbsCurve:   return " -type \"nurbsCurve\"\n\t\t" + command::curveText(*static_cast<const CurveData&>(data).body);
    case MFnData::kNurbsSurface: return " -type \"nurbsSurface\"\n\t\t" + command::surfaceText(*static_cast<const SurfaceData&>(data).body);
    default: return {};
    }
}

class Writer
{
public:
    explicit Writer(std::set<const Node*> only) : only_(std::move(only)) {}

    void nodes(std::string& out)
    {
        for (Node* n : scene().nodes())
            if (n->dag && !n->dag->parents.empty() && n->dag->parents.front() == &dag::world())
                dagNode(*n, nullptr, out);
        for (Node* n : scene().nodes())
            if (!n->dag && !n->isDefault && wanted(*n))
                node(*n, nullptr, false, out);
        for (const auto& [child, parent] : instances_)
            out += "parent -s -nc -r -add " + quoted(nameOf(*child)) + " " + quoted(nameOf(*parent)) + ";\n";
        for (Node* n : scene().nodes())
            if (n->isDefault && !n->dag && only_.empty())
            {
                std::string values;
                attributes(*n, values);
                if (!values.empty())
                    out += "select -ne " + quoted(":" + n->name) + ";\n" + values;
            }
    }

    void connections(std::string& out) const
    {
        for (Node* n : scene().nodes())
            if (wanted(*n))
                for (Cell* top : n->cells)
                    if (top && !top->parent)
                        walkCells(*top, [&](Cell& c) {
                            if (c.source && wanted(*c.source->node))
                                out += "connectAttr " + quoted(plug(*c.source)) + " " + quoted(plug(c)) + (c.is(Cell::kLocked) ? " -l on" : "") + ";\n";
                        });
    }

private:
    bool wanted(const Node& n) const { return only_.empty() || only_.count(&n) || (n.isDefault && !n.dag); }
    static std::string nameOf(const Node& n) { return (n.isDefault ? ":" : "") + command::nodeName(n); }
    static std::string plug(const Cell& c) { return nameOf(*c.node) + "." + plugPath(c, true); }

    void dagNode(Node& n, Node* parent, std::string& out)
    {
        if (!wanted(n))
            return;
        if (!written_.insert(&n).second)
        {
            instances_.emplace_back(&n, parent);
            return;
        }
        node(n, parent, n.isDefault, out);
        for (Node* child : n.dag->children)
            dagNode(*child, &n, out);
    }

    void node(Node& n, Node* parent, bool shared, std::string& out)
    {
        const std::string& type = n.unknownType.empty() ? n.type->name : n.unknownType;
        out += "createNode " + type + (shared ? " -s" : "") + " -n " + quoted(n.name);
        if (parent)
            out += " -p " + quoted(command::nodeName(*parent));
        out += ";\n";
        for (const auto& a : n.dynamics)
            dynamicAttribute(*a, out);
        attributes(n, out);
        for (const auto& [alias, path] : n.aliases)
            out += "\taliasAttr " + quoted(alias) + " " + quoted("." + path) + ";\n";
    }

    void dynamicAttribute(const Attribute& a, std::string& out)
    {
        out += "\taddAttr -ci true -sn " + quoted(a.shortName) + " -ln " + quoted(a.longName);
        if (a.isArray())
            out += a.is(Attribute::kIndexMatters) ? " -m" : " -m -im false";
        if (a.parent)
            out += " -p " + quoted(a.parent->longName);
        const std::string type = command::typeNameOf(a);
        if (a.kind == AttrKind::kTyped)
            out += " -dt " + quoted(type);
        else if (a.kind == AttrKind::kCompound)
            out += " -at \"compound\" -nc " + std::to_string(a.children.size());
        else
            out += " -at " + quoted(type);
        if (a.kind == AttrKind::kEnum && !a.fields.empty())
        {
            std::string fields;
            for (const auto& [name, value] : a.fields)
                fields += (fields.empty() ? "" : ":") + name + "=" + std::to_string(value);
            out += " -en " + quoted(fields);
        }
        if (storeDimension(a.store) == 1 && a.defaults[0] != 0)
            out += " -dv " + doubleText(command::exactUi(a, a.defaults[0]));   // addAttr reads the user's units
        const struct { uint8_t bit; const char* flag; double value; } limits[] = {
            {Attribute::kMin, " -min ", a.min}, {Attribute::kMax, " -max ", a.max}, {Attribute::kSoftMin, " -smn ", a.softMin}, {Attribute::kSoftMax, " -smx ", a.softMax}};
        for (const auto& l : limits)
            if (a.limits & l.bit)
                out += l.flag + doubleText(command::exactUi(a, l.value));
        if (a.is(Attribute::kKeyable))
            out += " -k true";
        if (a.is(Attribute::kUsedAsColor))
            out += " -uac";
        if (a.is(Attribute::kUsedAsFilename))
            out += " -uaf";
        if (!a.is(Attribute::kStorable))
            out += " -s false";
        if (a.is(Attribute::kHidden))
            out += " -h true";
        out += ";\n";
        for (const auto& child : a.children)
            dynamicAttribute(*child, out);
    }

    /// A dynamic attribute that was deleted leaves its cell to undo.
    static bool isDeleted(const Node& n, const Attribute& a)
    {
        return a.is(Attribute::kDynamic) && std::none_of(n.dynamics.begin(), n.dynamics.end(), [&](const auto& d) { return d.get() == &a; });
    }

    void attributes(Node& n, std::string& out)
    {
        const auto* shape = dynamic_cast<nodes::GeometryShape*>(&n);
        for (Cell* top : n.cells)
            if (top && !top->parent && !isDeleted(n, *top->attr) && !(shape && (top->attr == shape->attrs().input || top->attr == shape->attrs().stored)))
                cell(*top, out);
        if (shape)
            geometry(n, *shape, out);
        out += n.unknownText;
    }

    /// What a shape without history holds, in whichever of its attributes.
    static void geometry(Node& n, const nodes::GeometryShape& shape, std::string& out)
    {
        const Cell* held = command::geometryCell(n);
        if (held->source || !held->data())
            return;
        if (const auto* mesh = dynamic_cast<MeshData*>(held->data()))
        {
            if (mesh->body->vertexCount())
                out += meshStatements(*mesh->body);
            return;
        }
        const auto* curve = dynamic_cast<CurveData*>(held->data());
        const auto* surface = dynamic_cast<SurfaceData*>(held->data());
        if ((curve && !curve->body->empty()) || (surface && !surface->body->empty()))
            out += "\tsetAttr " + quoted("." + shape.attrs().stored->shortName) + dataText(*held->data()) + ";\n";
    }

    /// State flags of a cell as setAttr flags.
    static std::string flags(const Cell& c)
    {
        std::string out;
        if (c.is(Cell::kLocked) && !c.source)
            out += " -l on";
        if (c.is(Cell::kOwnKeyable))
            out += c.is(Cell::kIsKeyable) ? " -k on" : " -k off";
        if (c.is(Cell::kOwnChannelBox))
            out += c.is(Cell::kIsChannelBox) ? " -cb on" : " -cb off";
        return out;
    }

    void cell(Cell& c, std::string& out)
    {
        const Attribute& a = *c.attr;
        if (!a.is(Attribute::kStorable))
            return;
        if (c.isMulti())
        {
            for (size_t i = 0; i < c.elementCount(); ++i)
                cell(*c.elements->cells[i], out);
            return;
        }
        const std::string name = quoted("." + plugPath(c, true));
        const std::string state = flags(c);
        bool childSource = false;
        if (a.isTuple() && c.children)
            for (size_t i = 0; i < a.children.size(); ++i)
                childSource |= c.children[i] && c.children[i]->source;
        if (c.source || a.kind == AttrKind::kMessage || (a.isCompound() && !a.isTuple()))
        {
            if (!state.empty())
                out += "\tsetAttr" + state + " " + name + ";\n";
        }
        else
        {
            const std::string value = childSource ? "" : valueText(c);
            if (!value.empty())
                out += "\tsetAttr" + state + " " + name + value + ";\n";
            else if (!state.empty())
                out += "\tsetAttr" + state + " " + name + ";\n";
        }
        if (c.children && (!a.isTuple() || childSource || anyFlags(c)))
            for (size_t i = 0; i < a.children.size(); ++i)
                if (c.children[i])
                    childCell(*c.children[i], a.isTuple() && !childSource, out);
    }

    bool anyFlags(const Cell& c) const
    {
        for (size_t i = 0; i < c.attr->children.size(); ++i)
            if (c.children[i] && !flags(*c.children[i]).empty())
                return true;
        return false;
    }

    /// A tuple's child: its value may have been written with the tuple.
    void childCell(Cell& c, bool valueWritten, std::string& out)
    {
        if (!valueWritten)
        {
            if (c.parent->attr->isTuple() && c.parent->is(Cell::kSet))
                c.set(Cell::kSet, true);
            return cell(c, out);
        }
        if (const std::string state = flags(c); !state.empty())
            out += "\tsetAttr" + state + " " + quoted("." + plugPath(c, true)) + ";\n";
    }

    bool isSet(const Cell& c) const
    {
        if (c.is(Cell::kSet))
            return true;
        if (c.attr->isTuple() && c.children)
            for (size_t i = 0; i < c.attr->children.size(); ++i)
                if (c.children[i] && c.children[i]->is(Cell::kSet))
                    return true;
        return false;
    }

    std::string valueText(Cell& c)
    {
        const Attribute& a = *c.attr;
        if (!isSet(c) && !c.isElement())
            return {};
        if (a.store == Store::kData)
        {
            if (!c.data())
                return {};
            return dataText(*c.data());
        }
        if (a.store == Store::kMatrix || a.store == Store::kFloatMatrix)
        {
            std::string out = " -type \"matrix\"";
            for (int i = 0; i < 16; ++i)
                out += " " + (a.store == Store::kMatrix ? doubleText(c.own.matrix[i]) : floatText(c.own.floatMatrix[i]));
            return out;
        }
        const int n = storeDimension(a.store);
        if (n < 1)
            return {};
        std::string out = n > 1 ? " -type \"" + command::numericName(a.store) + "\"" : "";
        for (int i = 0; i < n; ++i)
            out += " " + numberOf(c, i);
        return out;
    }


    std::set<const Node*>                only_, written_;
    std::vector<std::pair<Node*, Node*>> instances_;
};

/// Selected nodes, their parents, what stands below them, and everything they read from.
std::set<const Node*> selectedNodes()
{
    std::set<const Node*> out;
    std::vector<Node*>    pending;
    for (const Item& i : selection::get())
    {
        pending.push_back(i.node.get());
        if (!i.path.nodes.empty())
            dag::descend(i.path, [&](const Path& p) { return pending.push_back(p.node()), true; });
    }
    if (pending.empty())
        fail("Nothing is selected to be exported");
    while (!pending.empty())
    {
        Node* n = pending.back();
        pending.pop_back();
        if (n == &dag::world() || !out.insert(n).second)
            continue;
        if (n->dag)
            for (Node* p : n->dag->parents)
                pending.push_back(p);
        for (Cell* top : n->cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& c) {
                    if (c.source)
                        pending.push_back(c.source->node);
                });
    }
    return out;
}

std::set<std::string> pluginTypes(const std::set<const Node*>& only, std::set<std::string>& plugins)
{
    std::set<std::string> types;
    for (Node* n : scene().nodes())
        if (!n->type->plugin.empty() && (only.empty() || only.count(n)))
        {
            types.insert(n->type->plugin + "\n" + n->type->name);
            plugins.insert(n->type->plugin);
        }
    return types;
}

}  // namespace

std::string sceneText(const std::string& path, bool selectedOnly)
{
    const size_t      slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::set<const Node*> only = selectedOnly ? selectedNodes() : std::set<const Node*>();
    std::string out = "//Maya ASCII 2020 scene\n//Name: " + name + "\n//Codeset: UTF-8\nrequires maya \"2020\";\n";
    std::set<std::string> plugins;
    const std::set<std::string> types = pluginTypes(only, plugins);
    for (const std::string& plugin : plugins)
    {
        out += "requires";
        for (const std::string& t : types)
            if (t.compare(0, plugin.size() + 1, plugin + "\n") == 0)
                out += " -nodeType " + quoted(t.substr(plugin.size() + 1));
        out += " " + quoted(plugin) + " \"1.0\";\n";
    }
    for (const std::string& r : fileData().requirements)
        if (std::none_of(plugins.begin(), plugins.end(), [&](const std::string& p) { return r.find(quoted(p)) != std::string::npos; }))
            out += r + ";\n";
    out += "currentUnit -l " + command::linearUnitName(true) + " -a " + command::angularUnitName(true) + " -t " + command::timeUnitName() + ";\n";
    for (const auto& [key, value] : fileData().info)
        out += "fileInfo " + quoted(key) + " " + quoted(value) + ";\n";
    Writer writer(only);
    writer.nodes(out);
    writer.connections(out);
    for (const auto& s : fileData().foreign)
        if (!s.node || s.node->inScene)
            out += s.text + ";\n";
    return out + "// End of " + name + "\n";
}

void saveScene(const std::string& path, bool selectedOnly)
{
    const std::string text = sceneText(path, selectedOnly);
    const std::string part = path + ".part" + std::to_string(getpid());   // what was there stays until all is written
    {
        std::ofstream out(part, std::ios::binary);
        out << text;
        out.flush();
        if (!out)
        {
            std::remove(part.c_str());
            fail("Cannot write file \"" + path + "\"");
        }
    }
    if (std::rename(part.c_str(), path.c_str()) != 0)
    {
        std::remove(part.c_str());
        fail("Cannot write file \"" + path + "\"");
    }
}

}  // namespace mirk::io
