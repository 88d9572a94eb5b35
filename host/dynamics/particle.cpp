#include "dynamics/particle.h"

#include <algorithm>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>

#include "command/registry.h"
#include "dag/dag.h"
#include "data/dyn_arrays.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/dag_attrs.h"

namespace mirk::dynamics {
namespace {

using namespace nodes;

using VectorBuffer = Buffer<MVector>;
using DoubleBuffer = Buffer<double>;

class Particle : public MPxNode
{
public:
    static void*   creator() { return new Particle; }
    static MStatus initialize();
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;

    /// An attribute with its state at the start.
    struct Pair { MObject start, now; };
    static inline Pair    position, velocity, acceleration, mass, id;
    static inline MObject worldPosition, worldVelocity, count, centroid, worldCentroid, mapping, pointData, instanceData;
};

Particle::Pair pair(const char* name, const char* brief, MFnData::Type type)
{
    const std::string start = std::string(name) + "0", startBrief = std::string(brief) + "0";
    return {typed(start.c_str(), startBrief.c_str(), type), typed(name, brief, type, kNoStore)};
}

MStatus Particle::initialize()
{
    position = pair("position", "pos", MFnData::kVectorArray);
    velocity = pair("velocity", "vel", MFnData::kVectorArray);
    acceleration = pair("acceleration", "acc", MFnData::kVectorArray);
    mass = pair("mass", "mas", MFnData::kDoubleArray);
    id = pair("particleId", "id", MFnData::kDoubleArray);
    worldPosition = typed("worldPosition", "wps", MFnData::kVectorArray, kOut);
    worldVelocity = typed("worldVelocity", "wvl", MFnData::kVectorArray, kOut);
    nodes::add({position.start, position.now, velocity.start, velocity.now, acceleration.start, acceleration.now, mass.start, mass.now, id.start,
                id.now, worldPosition, worldVelocity});
    count = number("count", "ct", Number::kInt, 0, kOut);
    centroid = triple("centroid", "ctd", Unit::kDistance, 0, kOut);
    worldCentroid = triple("worldCentroid", "wctd", Unit::kDistance, 0, kOut);
    nodes::add({count, centroid, worldCentroid,
                choice("particleRenderType", "prt", 3,
                       {"MultiPoint", "MultiStreak", "Numeric", "Points", "Spheres", "Sprites", "Streak", "Blobby Surface (s/w)", "Cloud (s/w)", "Tube (s/w)"}),
                number("pointSize", "psz", Number::kInt, 2, 1, 60, kKey), number("radius", "rad", Number::kDouble, 0.5, kKey)});

    mapping = typed("instanceAttributeMapping", "iam", MFnData::kStringArray);
    pointData = typed("instancePointData", "ipd", MFnData::kDynArrayAttrs, kOut);
    instanceData = compound("instanceData", "idt", {mapping, pointData}, kMulti);
    nodes::add({instanceData});

    const MObject world = wrap(const_cast<Attribute*>(dagAttrs().worldMatrix)), box = wrap(const_cast<Attribute*>(dagAttrs().boundingBox));
    const Pair*   pairs[] = {&position, &velocity, &acceleration, &mass, &id};
    for (const Pair* p : pairs)
        affects({p->start}, {p->now});
    affects({position.start, position.now},
            {velocity.now, acceleration.now, mass.now, id.now, worldPosition, worldVelocity, count, centroid, worldCentroid, box});
    affects({velocity.start, velocity.now}, {worldVelocity});
    affects({world}, {worldPosition, worldVelocity, worldCentroid, pointData});
    affects({mapping, position.start, position.now, velocity.start, velocity.now, acceleration.start, acceleration.now, mass.start, mass.now,
             id.start, id.now},
            {pointData});
    return MS::kSuccess;
}

template <class D>
auto bufferAt(MDataBlock& block, const MObject& attribute)
{
    block.inputValue(attribute);
    const Cell* cell = HandleAccess::node(block)->cell(objectAs<Attribute>(attribute));
    const auto* data = dynamic_cast<D*>(cell->data());
    return data ? data->buffer : decltype(D::buffer)();
}

void give(MDataBlock& block, const MObject& attribute, Ref<Data> data)
{
    MDataHandle out = block.outputValue(attribute);
    out.set(wrap(data));
    out.setClean();
}

/// The state at the start; particles that it leaves out get `fill`. Without `fill` it is all there is.
template <class D, class T>
void present(MDataBlock& block, const Particle::Pair& pair, size_t count, T (*fill)(size_t))
{
    auto buffer = bufferAt<D>(block, pair.start);
    if (fill && (!buffer || buffer->size() != count)) {
        const size_t known = buffer ? buffer->size() : 0;
        auto         whole = make<Buffer<T>>(count);
        for (size_t i = 0; i < count; ++i)
            (*whole)[i] = i < known ? std::as_const(*buffer)[i] : fill(i);
        buffer = whole;
    }
    give(block, pair.now, make<D>(buffer));
}

MMatrix worldMatrix(Node& node)
{
    Cell* cell = node.cell(dagAttrs().worldMatrix)->element(0);
    eval::pull(*cell);
    MMatrix m;
    std::copy(cell->own.matrix, cell->own.matrix + 16, &m.matrix[0][0]);
    return m;
}

MVector transformed(const MVector& v, const MMatrix& m, double w)
{
    const auto& a = m.matrix;
    return MVector(v.x * a[0][0] + v.y * a[1][0] + v.z * a[2][0] + w * a[3][0], v.x * a[0][1] + v.y * a[1][1] + v.z * a[2][1] + w * a[3][1],
                   v.x * a[0][2] + v.y * a[1][2] + v.z * a[2][2] + w * a[3][2]);
}

Ref<Data> throughMatrix(const Ref<VectorBuffer>& from, const MMatrix& m, double w)
{
    auto to = make<VectorBuffer>(from ? from->size() : 0);
    for (size_t i = 0; i < to->size(); ++i)
        (*to)[i] = transformed(std::as_const(*from)[i], m, w);
    return make<VectorArrayData>(to);
}

/// What a mapping offers instancers: pairs of the name that they know an array by and a per-particle attribute.
/// Positions are those in the world if nothing is said of them, and the ids come along.
Ref<Data> mappedArrays(Node& particle, const Cell* mapping)
{
    std::vector<std::pair<std::string, std::string>> pairs = {{"position", "worldPosition"}, {"id", "particleId"}};
    const auto* names = mapping ? dynamic_cast<const StringArrayData*>(mapping->data()) : nullptr;
    for (size_t i = 0; names && i + 1 < names->buffer->size(); i += 2) {
        const std::string option = (*std::as_const(*names).buffer)[i].asChar(), attribute = (*std::as_const(*names).buffer)[i + 1].asChar();
        const auto        known = std::find_if(pairs.begin(), pairs.end(), [&](const auto& p) { return p.first == option; });
        if (known == pairs.end())
            pairs.emplace_back(option, attribute);
        else
            known->second = attribute;
    }
    auto out = make<DynArrayAttrsData>();
    for (const auto& [option, attribute] : pairs)
        if (const Cell* vectors = vectorCell(particle, attribute)) {
            if (const auto* data = dynamic_cast<const VectorArrayData*>(vectors->data()))
                out->channels.push_back({option, data->buffer});
        } else if (const Cell* doubles = doubleCell(particle, attribute)) {
            if (const auto* data = dynamic_cast<const DoubleArrayData*>(doubles->data()))
                out->channels.push_back({option, data->buffer});
        }
    return out->share();
}

MStatus givePointData(Node& node, const MPlug& plug)
{
    Cell* cell = PlugAccess::cell(plug);
    if (!cell || !cell->parent || !cell->parent->isElement())
        return MS::kUnknownParameter;
    Cell* mapping = cell->parent->child(0);
    eval::pull(*mapping);
    cell->setData(mappedArrays(node, mapping));
    return MS::kSuccess;
}

MStatus Particle::compute(const MPlug& plug, MDataBlock& block)
{
    if (plug == pointData)
        return givePointData(*HandleAccess::node(block), plug);
    const MObject top = plug.isChild() ? plug.parent().attribute() : plug.attribute();
    Node&         node = *HandleAccess::node(block);
    if (top == position.now) {
        present<VectorArrayData, MVector>(block, position, 0, nullptr);
        return MS::kSuccess;
    }
    const auto   at = bufferAt<VectorArrayData>(block, position.now);
    const size_t n = at ? at->size() : 0;
    const auto   zero = [](size_t) { return MVector(); };
    if (top == velocity.now)
        present<VectorArrayData, MVector>(block, velocity, n, zero);
    else if (top == acceleration.now)
        present<VectorArrayData, MVector>(block, acceleration, n, zero);
    else if (top == mass.now)
        present<DoubleArrayData, double>(block, mass, n, [](size_t) { return 1.0; });
    else if (top == id.now)
        present<DoubleArrayData, double>(block, id, n, [](size_t i) { return double(i); });
    else if (top == worldPosition)
        give(block, worldPosition, throughMatrix(at, worldMatrix(node), 1));
    else if (top == worldVelocity)
        give(block, worldVelocity, throughMatrix(bufferAt<VectorArrayData>(block, velocity.now), worldMatrix(node), 0));
    else if (top == count) {
        block.outputValue(count).setInt(int(n));
        block.setClean(count);
    } else if (top == centroid || top == worldCentroid) {
        MVector sum;
        for (size_t i = 0; i < n; ++i)
            sum += std::as_const(*at)[i];
        sum = n ? sum / double(n) : sum;
        if (top == worldCentroid)
            sum = transformed(sum, worldMatrix(node), 1);
        block.outputValue(top).set3Double(sum.x, sum.y, sum.z);
        block.setClean(top);
    } else
        return MS::kUnknownParameter;
    return MS::kSuccess;
}

Cell* arrayCell(Node& particle, const std::string& name, MFnData::Type type)
{
    const Attribute* a = particle.findAttribute(name);
    Cell*            cell = a && a->kind == AttrKind::kTyped && a->dataType == type && !a->isArray() ? particle.cell(a) : nullptr;
    if (cell)
        eval::pull(*cell);
    return cell;
}

/// Where a new value of the attribute goes.
Cell& writable(Node& particle, const std::string& name, MFnData::Type type)
{
    Cell* now = arrayCell(particle, name, type);
    if (!now)
        throw command::Error("'" + particle.name + "' has no per-particle attribute '" + name + "' of this kind.");
    Cell* start = arrayCell(particle, name + "0", type);
    return start && !now->source ? *start : *now;
}

template <class D, class T>
std::vector<T> valuesOf(const Cell* cell)
{
    const auto* data = cell ? dynamic_cast<D*>(cell->data()) : nullptr;
    if (!data)
        return {};
    const auto& b = std::as_const(*data->buffer);
    return {b.begin(), b.end()};
}

}  // namespace

bool isParticle(const Node& node) { return node.type->isA("particle"); }

size_t count(Node& particle)
{
    const Cell* cell = vectorCell(particle, "position");
    const auto* data = cell ? dynamic_cast<VectorArrayData*>(cell->data()) : nullptr;
    return data ? data->buffer->size() : 0;
}

Cell* vectorCell(Node& particle, const std::string& name) { return arrayCell(particle, name, MFnData::kVectorArray); }
Cell* doubleCell(Node& particle, const std::string& name) { return arrayCell(particle, name, MFnData::kDoubleArray); }
std::vector<MVector> vectors(Node& p, const std::string& name) { return valuesOf<VectorArrayData, MVector>(vectorCell(p, name)); }
std::vector<double>  doubles(Node& p, const std::string& name) { return valuesOf<DoubleArrayData, double>(doubleCell(p, name)); }

std::vector<std::string> perParticleNames(Node& particle, bool vectors)
{
    std::vector<std::string> out;
    const MFnData::Type      wanted = vectors ? MFnData::kVectorArray : MFnData::kDoubleArray;
    particle.eachAttribute([&](const Attribute& a) {
        if (a.kind == AttrKind::kTyped && a.dataType == wanted && !a.isArray() && !a.parent)
            out.push_back(a.longName);
    });
    return out;
}

void setVectors(Node& particle, const std::string& name, const std::vector<MVector>& values)
{
    edit::setData(writable(particle, name, MFnData::kVectorArray), make<VectorArrayData>(make<VectorBuffer>(values.data(), values.size())));
}

void setDoubles(Node& particle, const std::string& name, const std::vector<double>& values)
{
    edit::setData(writable(particle, name, MFnData::kDoubleArray), make<DoubleArrayData>(make<DoubleBuffer>(values.data(), values.size())));
}

Node* create(const std::string& type, const std::string& transformName, const std::string& shapeName, const std::vector<MVector>& positions)
{
    Node* transform = dag::createNode(findNodeType("transform"), transformName);
    Node* shape = dag::createNode(findNodeType(type), shapeName, transform);
    append(*shape, positions, {});
    return shape;
}

void append(Node& particle, const std::vector<MVector>& positions, const std::vector<MVector>& velocities)
{
    const size_t before = count(particle), n = before + positions.size();
    std::vector<MVector> at = vectors(particle, "position"), speed = vectors(particle, "velocity");
    std::vector<double>  mass = doubles(particle, "mass"), id = doubles(particle, "particleId");
    double next = 0;
    for (const double i : id)
        next = std::max(next, i + 1);
    speed.resize(before);
    mass.resize(before, 1);
    id.resize(before);
    at.insert(at.end(), positions.begin(), positions.end());
    for (size_t i = 0; i < positions.size(); ++i) {
        speed.push_back(i < velocities.size() ? velocities[i] : MVector());
        mass.push_back(1);
        id.push_back(next++);
    }
    // arrays that users added keep a value a particle
    for (const bool asVectors : {true, false})
        for (const std::string& name : perParticleNames(particle, asVectors))
            if (const Attribute* a = particle.findAttribute(name); a->is(Attribute::kDynamic) && !particle.cell(a)->source) {
                if (asVectors) {
                    auto values = vectors(particle, name);
                    values.resize(n);
                    setVectors(particle, name, values);
                } else {
                    auto values = doubles(particle, name);
                    values.resize(n);
                    setDoubles(particle, name, values);
                }
            }
    setVectors(particle, "position", at);
    setVectors(particle, "velocity", speed);
    setDoubles(particle, "mass", mass);
    setDoubles(particle, "particleId", id);
}

bool box(Node& particle, double out[6])
{
    const std::vector<MVector> at = vectors(particle, "position");
    for (size_t i = 0; i < at.size(); ++i)
        for (unsigned k = 0; k < 3; ++k) {
            out[k] = i ? std::min(out[k], at[i][k]) : at[i][k];
            out[3 + k] = i ? std::max(out[3 + k], at[i][k]) : at[i][k];
        }
    return !at.empty();
}

/// Arrays that users add may go to instancers too.
void dirtyInstanceData(Node& node, const Attribute& a, std::vector<Cell*>& also)
{
    findNodeType("deformableShape")->onDirty(node, a, also);
    if (!a.is(Attribute::kDynamic))
        return;
    const Cell* all = node.cellIfAny(objectAs<Attribute>(Particle::instanceData));
    for (Cell* element : all && all->elements ? all->elements->cells : std::vector<Cell*>())
        also.push_back(element->childIfAny(1));
}

void registerTypes()
{
    const auto hooks = [](NodeType& type) { type.onDirty = dirtyInstanceData; };
    registerRow({"particle", "deformableShape", 0x594D5054, MFn::kParticle, Particle::creator, Particle::initialize}, Role::shape, hooks);
    registerRow({"nParticle", "particle", 0x4E504152, MFn::kNParticle, Particle::creator, nullptr}, Role::shape, hooks);
}

}  // namespace mirk::dynamics
