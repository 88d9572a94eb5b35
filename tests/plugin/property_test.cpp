// Every node that computes is fed data of every kind, length and shape, in order or not. It may not crash or read past
// an end, says something if it fails, and writes its outputs whatever comes. Nodes join as they are built.
#include <maya/MFnDependencyNode.h>
#include <maya/MFnGenericAttribute.h>

#include <cstdlib>
#include <functional>

#include "graph/access.h"
#include "graph/edit.h"
#include "graph/node.h"
#include "graph/scene.h"
#include "graph/undo.h"
#include "samples.h"
#include "scene.h"

using mirk::AttrKind;
using mirk::Attribute;
using mirk::Cell;
using mirk::Node;
using mirk::NodeType;
using samples::Numbers;
using samples::Sample;
using scene::run;
using NodeInputs = scene::Test;

namespace {

bool isArray(MFnData::Type t)
{
    return t >= MFnData::kStringArray && t <= MFnData::kMatrixArray;
}

/// Looks at what a node published, so that a sanitizer sees whatever is broken in it.
void touch(MObject data)
{
    if (data.hasFn(MFn::kMesh) || data.hasFn(MFn::kMeshData)) {
        MFnMesh           fn(data);
        MPointArray       points;
        MFloatVectorArray normals;
        MColorArray       colors;
        fn.getPoints(points, MSpace::kWorld);
        fn.getVertexNormals(true, normals);
        fn.getVertexColors(colors);
    } else if (data.hasFn(MFn::kNurbsCurveData)) {
        MPointArray points;
        MFnNurbsCurve(data).getCVs(points, MSpace::kWorld);
    }
}

/// One node, its inputs with a source each where they take data, and its outputs.
class Subject
{
public:
    explicit Subject(const NodeType& type)
    {
        run("createNode " + type.name + " -name subject; createNode network -name source");
        node_ = mirk::scene().first("subject");
        source_ = mirk::scene().first("source");
        if (!node_ || node_->type->name != type.name)   // a shape: the node itself stands below
            node_ = shapeOf(type);
        if (!node_)
            return;
        for (size_t slot = 0; slot < type.table.size(); ++slot) {
            const Attribute& a = *type.table[slot];
            if (a.parent)
                continue;
            const Place top = [this, &a] { return node_->cell(&a); };
            std::vector<Place> inputs;
            if (node_->isComputed(&a) || anyComputed(a))
                leaves(top, outputs_);
            else if (affectsAnything(type, a) && a.is(Attribute::kWritable))
                leaves(top, inputs);
            for (const Place& input : inputs)
                inputs_.push_back(input());
        }
        for (Cell* in : inputs_)
            sources_.push_back(takesData(*in) && in->attr->is(Attribute::kConnectable) ? addSource() : nullptr);
    }

    explicit operator bool() const { return node_ && !outputs_.empty(); }
    const std::vector<Cell*>& inputs() const { return inputs_; }
    Node&                     node() const { return *node_; }
    bool                      takesData(size_t input) const { return takesData(*inputs_[input]); }

    void connect(size_t input, bool wanted)
    {
        if (!sources_[input])
            return;
        Cell &from = *sources_[input], &to = *inputs_[input];
        if (wanted && !to.source)
            mirk::edit::connect(from, to);
        else if (!wanted && to.source)
            mirk::edit::disconnect(from, to);
    }
    void give(size_t input, const Sample& s)
    {
        mirk::PlugAccess::make(sources_[input] ? *sources_[input] : *inputs_[input]).setMObject(s.data);
    }
    void set(Cell& c, double v)
    {
        for (int i = 0; i < mirk::storeDimension(c.store()); ++i)
            mirk::edit::setNumber(c, v, i);
    }
    void setState(int state) { mirk::edit::setNumber(*node_->cell(mirk::nodeStateAttribute()), state); }

    /// Every input in order: data that fits, switches on, enums at one value.
    void inOrder(const std::vector<Sample>& all, int enumValue)
    {
        setState(0);
        for (size_t i = 0; i < inputs_.size(); ++i) {
            Cell& c = *inputs_[i];
            if (takesData(i)) {
                connect(i, true);
                give(i, fitting(all, *c.attr));
            } else if (c.store() == mirk::Store::kMatrix || c.store() == mirk::Store::kFloatMatrix) {
                mirk::PlugAccess::make(c).setMObject(MFnMatrixData().create(MMatrix()));
            } else {
                c.setDefault();
                if (c.attr->store == mirk::Store::kBool)
                    set(c, 1);
                else if (c.attr->kind == AttrKind::kEnum && enumValue >= 0)
                    set(c, enumValue);
            }
        }
    }

    /// Evaluates every output. `written`: arrays have to be there after it.
    void evaluate(const std::string& what, bool written)
    {
        int       said = 0;
        const int sink = mirk::message::addSink([&](mirk::message::Kind kind, const std::string&) {
            said += kind == mirk::message::kWarning || kind == mirk::message::kError;
        });
        bool failed = false;
        for (const Place& place : outputs_) {
            Cell*         out = place();
            const MPlug   plug = mirk::PlugAccess::make(*out);   // keeps the cell, even of an element that goes
            const MObject data = out->store() == mirk::Store::kData ? plug.asMObject() : (plug.asDouble(), MObject());
            touch(data);
            if (written && out->attr->kind == AttrKind::kTyped && isArray(out->attr->dataType) && data.isNull())
                complain(what + ": " + out->attr->longName + " was not written");
            failed = failed || (out->is(Cell::kDirty) && !out->is(Cell::kRemoved));
        }
        mirk::message::removeSink(sink);
        if (failed && written && said == 0)
            complain(what + ": failed without a word");
        if (node_->type->name == "point")   // it leaves an extrude behind for each curve that it reads
            run("string $left[] = `ls -type extrude`; if (size($left)) delete $left");
        if (mirk::scene().count() > 200)
            complain(what + ": left nodes behind");
    }

private:
    /// Where a cell is found: elements of outputs come and go.
    using Place = std::function<Cell*()>;

    static bool takesData(const Cell& c) { return c.store() == mirk::Store::kData; }
    static bool anyComputed(const Attribute& a)
    {
        return !a.is(Attribute::kWritable) && a.is(Attribute::kReadable) && !a.is(Attribute::kHidden);
    }
    bool affectsAnything(const NodeType& type, const Attribute& top) const
    {
        bool any = false;
        walkAttributes(const_cast<Attribute&>(top), [&](const Attribute& a) {
            any = any || (size_t(a.slot) < type.affects.size() && !type.affects[size_t(a.slot)].empty());
        });
        return any;
    }
    static Node* shapeOf(const NodeType& type)
    {
        for (Node* n : mirk::scene().nodes())
            if (n->type->name == type.name && !n->isDefault)
                return n;
        return nullptr;
    }
    /// Cells that hold values: two elements of a multi, tuples as a whole.
    static void leaves(const Place& place, std::vector<Place>& out)
    {
        Cell& c = *place();
        if (c.isMulti()) {
            leaves([place] { return place()->element(0); }, out);
            leaves([place] { return place()->element(5); }, out);
        } else if (c.store() != mirk::Store::kNone) {
            out.push_back(place);
        } else {
            for (size_t i = 0; i < c.attr->children.size(); ++i)
                leaves([place, i] { return place()->child(i); }, out);
        }
    }
    /// An attribute that holds any data, so that connections let every kind through.
    Cell* addSource()
    {
        const std::string   name = "d" + std::to_string(sources_.size());
        MFnGenericAttribute fn;
        MObject             attribute = fn.create(name.c_str(), name.c_str());
        for (int kind = MFnData::kNumeric; kind < MFnData::kAny; ++kind)
            fn.addDataAccept(MFnData::Type(kind));
        MFnDependencyNode(mirk::wrap(mirk::Ref<Node>(source_))).addAttribute(attribute);
        return source_->cell(source_->findAttribute(name));
    }
    static const Sample& fitting(const std::vector<Sample>& all, const Attribute& a)
    {
        for (const Sample& s : all)
            if (s.fits && a.acceptsData(s.kind))
                return s;
        return all.back();
    }
    void complain(const std::string& text)
    {
        if (++complaints_ < 6)
            ADD_FAILURE() << node_->type->name << ": " << text;
    }

    Node *             node_ = nullptr, *source_ = nullptr;
    std::vector<Cell*> inputs_, sources_;
    std::vector<Place> outputs_;
    int                complaints_ = 0;
};

constexpr double kNumbers[] = {-1, 0, 1, 2, 3, 7, 1000, 2147483647.0, -2147483648.0, 1e308, -1e308,
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()};

/// One input after the other gets everything, while the others are in order.
void sweep(Subject& s, const std::vector<Sample>& all, int enumValue)
{
    s.inOrder(all, enumValue);
    s.evaluate("in order", true);
    for (size_t i = 0; i < s.inputs().size(); ++i) {
        Cell&             in = *s.inputs()[i];
        const std::string name = in.attr->longName;
        for (const Sample& sample : all) {
            if (!s.takesData(i))
                break;
            s.give(i, sample);
            s.evaluate(name + " = " + sample.name, true);
        }
        for (double v : kNumbers) {
            if (s.takesData(i))
                break;
            s.set(in, v);
            s.evaluate(name + " = " + std::to_string(v), true);
        }
        if (s.takesData(i)) {
            s.connect(i, false);
            s.evaluate(name + " unconnected", false);
        }
        s.inOrder(all, enumValue);
    }
}

/// All inputs at once get anything.
void anything(Subject& s, const std::vector<Sample>& all, Numbers& r, int times)
{
    for (int t = 0; t < times; ++t) {
        bool connected = true;
        s.setState(r.below(8) ? 0 : r.below(5) - 1);
        for (size_t i = 0; i < s.inputs().size(); ++i) {
            Cell& in = *s.inputs()[i];
            if (!s.takesData(i)) {
                if (in.attr->kind == AttrKind::kEnum)
                    s.set(in, r.below(6) - 1);
                else
                    s.set(in, r.below(3) ? r.below(2) : kNumbers[r.below(int(std::size(kNumbers)))]);
                continue;
            }
            std::vector<const Sample*> accepted;
            for (const Sample& sample : all)
                if (in.attr->acceptsData(sample.kind))
                    accepted.push_back(&sample);
            const bool any = accepted.empty() || r.below(5) == 0;
            s.give(i, any ? all[size_t(r.below(int(all.size())))] : *accepted[size_t(r.below(int(accepted.size())))]);
            const bool on = r.below(10) > 0;
            s.connect(i, on);
            connected = connected && on;
        }
        s.evaluate("case " + std::to_string(t), false);
    }
}

} // namespace

TEST_F(NodeInputs, NoneCrashesANode)
{
    const std::vector<Sample> all = samples::all();
    mirk::undo::setEnabled(false);
    const char* only = std::getenv("MIRK_NODE");   // a node type, to look closer
    int nodes = 0;
    for (const NodeType* type : mirk::nodeTypes()) {
        if (type->plugin != "mirk" || type->ownFirst >= type->table.size() || (only && type->name != only))
            continue;
        SCOPED_TRACE(type->name);
        run("file -force -new");
        Subject s(*type);
        if (!s)
            continue;
        Numbers r(11);
        for (int enumValue : {-1, 1})
            sweep(s, all, enumValue);
        anything(s, all, r, 400);
        ++nodes;
    }
    mirk::undo::setEnabled(true);
    run("file -force -new");
    EXPECT_GE(nodes, only ? 1 : 23);
}
