// Particle objects: particle, nParticle.
#include <algorithm>
#include <cmath>

#include <maya/MDistance.h>

#include "command/anim_commands.h"
#include "command/cmd_util.h"
#include "dynamics/particle.h"

namespace mirk::command {
namespace {

constexpr uint8_t kAny = kCreate | kQuery | kEdit;

constexpr Flag kParticle[] = {
    {"at", "attribute", "s", kAny, false, true}, {"ct", "count", "", kQuery}, {"dal", "dynamicAttrList", "", kQuery}, {"fv", "floatValue", "f", kEdit},
    {"grs", "gridSpacing", "l", kCreate, true}, {"id", "particleId", "i", kAny, false, true}, {"ll", "lowerLeft", "lll", kCreate, true},
    {"n", "name", "s", kCreate}, {"or", "order", "i", kAny, false, true}, {"p", "position", "lll", kCreate, true}, {"ppd", "perParticleDouble", "", kQuery},
    {"ppv", "perParticleVector", "", kQuery}, {"sn", "shapeName", "s", kCreate}, {"ur", "upperRight", "lll", kCreate, true}, {"vv", "vectorValue", "fff", kEdit},
};

constexpr size_t kMostParticles = 50'000'000;

double length(const Value& v) { return MDistance(v.asFloat(), MDistance::uiUnit()).asCentimeters(); }

MVector point(const Call::Use& use) { return MVector(length(use.args[0]), length(use.args[1]), length(use.args[2])); }

/// A box of particles at equal distances, x fastest.
void addGrid(const MVector& low, const MVector& high, double spacing, std::vector<MVector>& out)
{
    if (!(spacing > 0))
        fail("particle: the grid spacing has to be above 0");
    size_t n[3], all = 1;
    for (unsigned k = 0; k < 3; ++k) {
        const double steps = std::floor(std::abs(high[k] - low[k]) / spacing + 1e-9);
        if (!(steps < double(kMostParticles)))
            fail("particle: the grid has too many particles");
        n[k] = size_t(steps) + 1;
        all *= n[k];
        if (all > kMostParticles)
            fail("particle: the grid has too many particles");
    }
    const MVector from(std::min(low.x, high.x), std::min(low.y, high.y), std::min(low.z, high.z));
    for (size_t z = 0; z < n[2]; ++z)
        for (size_t y = 0; y < n[1]; ++y)
            for (size_t x = 0; x < n[0]; ++x)
                out.push_back(from + MVector(double(x), double(y), double(z)) * spacing);
}

Value create(Call& call)
{
    const std::string    type = call.command->name;
    std::vector<MVector> positions;
    for (const auto* use : call.all("position"))
        positions.push_back(point(*use));
    const auto low = call.all("lowerLeft"), high = call.all("upperRight"), spacing = call.all("gridSpacing");
    if (low.size() != high.size() || low.size() != spacing.size())
        fail(type + ": a grid needs -lowerLeft, -upperRight and -gridSpacing");
    for (size_t i = 0; i < low.size(); ++i)
        addGrid(point(*low[i]), point(*high[i]), length(spacing[i]->args[0]), positions);
    const std::string name = call.str("name", type + "#");
    Node* shape = dynamics::create(type, name, call.str("shapeName"), positions);
    Node* transform = shape->dag->parents.front();
    if (!call.has("shapeName"))
        dag::renameNode(*shape, shapeName(transform->name));
    selection::set({itemOf(*transform)});
    return Value(Strings{nodeName(*transform), nodeName(*shape)});
}

Node& particleOf(const Call& call)
{
    for (const Item& item : callItems(call))
        for (Node* shape : shapesOf(*item.node))
            if (dynamics::isParticle(*shape))
                return *shape;
    fail(std::string(call.command->name) + ": no particle object is given");
}

/// Place of the particle that -id or -order names.
size_t particleAt(const Call& call, Node& shape)
{
    const size_t n = dynamics::count(shape);
    if (call.has("particleId")) {
        const auto ids = dynamics::doubles(shape, "particleId");
        for (size_t i = 0; i < ids.size() && i < n; ++i)
            if (ids[i] == call.integer("particleId"))
                return i;
        fail("'" + nodeName(shape) + "' has no particle with the id " + std::to_string(call.integer("particleId")) + ".");
    }
    const int order = call.integer("order");
    if (order < 0 || size_t(order) >= n)
        fail("'" + nodeName(shape) + "' has no particle number " + std::to_string(order) + ".");
    return size_t(order);
}

Strings dynamicNames(Node& shape)
{
    Strings out;
    for (const auto& a : shape.dynamics)
        out.push_back(a->longName);
    return out;
}

Value query(Call& call)
{
    Node& shape = particleOf(call);
    if (call.has("count"))
        return Value(int(dynamics::count(shape)));
    if (call.has("perParticleDouble") || call.has("perParticleVector"))
        return Value(Strings(dynamics::perParticleNames(shape, call.has("perParticleVector"))));
    if (call.has("dynamicAttrList"))
        return Value(dynamicNames(shape));
    if (!call.has("attribute"))
        fail(std::string(call.command->name) + ": a flag that says what to ask has to be given");
    const std::string name = call.str("attribute");
    const bool        one = call.has("particleId") || call.has("order");
    const size_t      at = one ? particleAt(call, shape) : 0;
    if (dynamics::vectorCell(shape, name)) {
        std::vector<double> out;
        const auto          all = dynamics::vectors(shape, name);
        for (size_t i = one ? at : 0; i < (one ? at + 1 : all.size()); ++i) {
            const MVector v = i < all.size() ? all[i] : MVector();
            out.insert(out.end(), {v.x, v.y, v.z});
        }
        call.rowWidth = 3;
        return Value(out);
    }
    if (!dynamics::doubleCell(shape, name))
        fail("'" + nodeName(shape) + "' has no per-particle attribute '" + name + "'.");
    const auto all = dynamics::doubles(shape, name);
    return one ? Value(std::vector<double>{at < all.size() ? all[at] : 0.0}) : Value(all);
}

Value editOne(Call& call)
{
    Node&             shape = particleOf(call);
    const std::string name = call.str("attribute");
    const size_t      at = particleAt(call, shape);
    if (!call.has("attribute") || call.has("vectorValue") == call.has("floatValue"))
        fail(std::string(call.command->name) + ": -attribute with either -vectorValue or -floatValue is needed");
    if (call.has("vectorValue")) {
        auto all = dynamics::vectors(shape, name);
        all.resize(std::max(all.size(), at + 1));
        const auto& v = call.use("vectorValue")->args;
        all[at] = MVector(v[0].asFloat(), v[1].asFloat(), v[2].asFloat());
        dynamics::setVectors(shape, name, all);
    } else {
        auto all = dynamics::doubles(shape, name);
        all.resize(std::max(all.size(), at + 1));
        all[at] = call.num("floatValue");
        dynamics::setDoubles(shape, name, all);
    }
    return Value(Strings{nodeName(shape)});
}

Value particle(Call& call) { return call.isQuery() ? query(call) : call.isEdit() ? editOne(call) : create(call); }

const Command kCommands[] = {
    {"particle", kParticle, particle},
    {"nParticle", kParticle, particle},
};

}  // namespace

void registerParticleCommands() { add(kCommands); }

}  // namespace mirk::command
