#include <maya/MFnParticleSystem.h>

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "api/api.h"
#include "dag/dag.h"
#include "dynamics/particle.h"
#include "graph/edit.h"

using namespace mirk;

namespace {

Node* shapeOf(const MObject& object)
{
    Node* node = objectAs<Node>(object);
    return node && dynamics::isParticle(*node) ? node : nullptr;
}

std::string text(const MString& s) { return {s.asChar(), s.length()}; }

template <class A, class V>
void fill(A& array, const V& values)
{
    array.setLength(unsigned(values.size()));
    for (unsigned i = 0; i < array.length(); ++i)
        array[i] = values[i];
}

void vectorsOf(const MObject& object, const char* attribute, MVectorArray& out)
{
    Node* node = shapeOf(object);
    fill(out, node ? dynamics::vectors(*node, attribute) : std::vector<MVector>());
}

void doublesOf(const MObject& object, const char* attribute, MDoubleArray& out)
{
    Node* node = shapeOf(object);
    fill(out, node ? dynamics::doubles(*node, attribute) : std::vector<double>());
}

bool has(const MObject& object, const char* attribute)
{
    Node* node = shapeOf(object);
    return node && node->findAttribute(attribute);
}

MStatus emitAll(const MObject& object, std::vector<MVector> positions, std::vector<MVector> velocities)
{
    Node* node = shapeOf(object);
    return node ? api::guarded([&] { dynamics::append(*node, positions, velocities); }) : MStatus(MS::kFailure);
}

}  // namespace

MFnParticleSystem::MFnParticleSystem(const MObject& object, MStatus* s)
{
    report(s, shapeOf(object) ? setObject(object).statusCode() : MS::kInvalidParameter);
}

MFnParticleSystem::MFnParticleSystem(const MDagPath& given, MStatus* s)
{
    MDagPath path = given;
    if (!path.hasFn(MFn::kParticle))
        path.extendToShape();
    report(s, shapeOf(path.node()) ? setObject(path).statusCode() : MS::kInvalidParameter);
}

MFnParticleSystem::~MFnParticleSystem() = default;
MFn::Type MFnParticleSystem::type() const { return MFn::kParticle; }

MObject MFnParticleSystem::create(MStatus* s) { return create(MObject::kNullObj, s); }

MObject MFnParticleSystem::create(MObject parent, MStatus* s)
{
    Node* above = objectAs<Node>(parent);
    if (!parent.isNull() && (!above || !above->hasFn(MFn::kTransform)))
        return reported(s, MS::kInvalidParameter, MObject());
    Node*         shape = nullptr;
    const MStatus status = api::guarded([&] {
        shape = above ? dag::createNode(findNodeType("particle"), "particleShape#", above)
                      : dynamics::create("particle", "particle#", "particleShape#", {});
    });
    report(s, status.statusCode());
    if (!status)
        return MObject();
    setObject(wrap(shape));
    return above ? wrap(shape) : wrap(shape->dag->parents.front());
}

bool     MFnParticleSystem::isValid() const { return shapeOf(object()) != nullptr; }
unsigned MFnParticleSystem::count() const
{
    Node* node = shapeOf(object());
    return node ? unsigned(dynamics::count(*node)) : 0;
}

void MFnParticleSystem::position(MVectorArray& a) const { vectorsOf(object(), "position", a); }
void MFnParticleSystem::velocity(MVectorArray& a) const { vectorsOf(object(), "velocity", a); }
void MFnParticleSystem::acceleration(MVectorArray& a) const { vectorsOf(object(), "acceleration", a); }
void MFnParticleSystem::position0(MVectorArray& a) const { vectorsOf(object(), "position0", a); }
void MFnParticleSystem::velocity0(MVectorArray& a) const { vectorsOf(object(), "velocity0", a); }
void MFnParticleSystem::mass(MDoubleArray& a) const { doublesOf(object(), "mass", a); }
void MFnParticleSystem::mass0(MDoubleArray& a) const { doublesOf(object(), "mass0", a); }
void MFnParticleSystem::rgb(MVectorArray& a) const { vectorsOf(object(), "rgbPP", a); }
void MFnParticleSystem::opacity(MDoubleArray& a) const { doublesOf(object(), "opacityPP", a); }
void MFnParticleSystem::radius(MDoubleArray& a) const { doublesOf(object(), "radiusPP", a); }
void MFnParticleSystem::lifespan(MDoubleArray& a) const { doublesOf(object(), "lifespanPP", a); }
bool MFnParticleSystem::hasRgb() const { return has(object(), "rgbPP"); }
bool MFnParticleSystem::hasOpacity() const { return has(object(), "opacityPP"); }
bool MFnParticleSystem::hasRadius() const { return has(object(), "radiusPP"); }
bool MFnParticleSystem::hasLifespan() const { return has(object(), "lifespanPP"); }

void MFnParticleSystem::particleIds(MIntArray& ids) const
{
    Node* node = shapeOf(object());
    const auto values = node ? dynamics::doubles(*node, "particleId") : std::vector<double>();
    ids.setLength(unsigned(values.size()));
    for (unsigned i = 0; i < ids.length(); ++i)
        ids[i] = std::abs(values[i]) < 2147483648.0 ? int(values[i]) : -1;
}

MFnParticleSystem::RenderType MFnParticleSystem::renderType() const
{
    constexpr RenderType types[] = {kMultiPoint, kMultiStreak, kNumeric, kPoints, kSpheres, kSprites, kStreak, kBlobby, kCloud, kTube};
    Node*     node = shapeOf(object());
    const int type = node ? int(node->cell(node->findAttribute("particleRenderType"))->number()) : 3;
    return type >= 0 && type < int(std::size(types)) ? types[type] : kPoints;
}

// ---- attributes by name ------------------------------------------------------------------------------------------

bool MFnParticleSystem::isPerParticleVectorAttribute(const MString& name, MStatus* s) const
{
    Node* node = shapeOf(object());
    return reported(s, node ? MS::kSuccess : MS::kFailure, node && dynamics::vectorCell(*node, text(name)));
}

bool MFnParticleSystem::isPerParticleDoubleAttribute(const MString& name, MStatus* s) const
{
    Node* node = shapeOf(object());
    return reported(s, node ? MS::kSuccess : MS::kFailure, node && dynamics::doubleCell(*node, text(name)));
}

bool MFnParticleSystem::isPerParticleIntAttribute(const MString& name, MStatus* s) const
{
    Node*            node = shapeOf(object());
    const Attribute* a = node ? node->findAttribute(text(name)) : nullptr;
    return reported(s, node ? MS::kSuccess : MS::kFailure, a && a->dataType == MFnData::kIntArray);
}

unsigned MFnParticleSystem::getPerParticleAttribute(const MString& name, MVectorArray& values, MStatus* s) const
{
    const bool found = isPerParticleVectorAttribute(name);
    report(s, found ? MS::kSuccess : MS::kFailure);
    vectorsOf(object(), text(name).c_str(), values);
    return values.length();
}

unsigned MFnParticleSystem::getPerParticleAttribute(const MString& name, MDoubleArray& values, MStatus* s) const
{
    const bool found = isPerParticleDoubleAttribute(name);
    report(s, found ? MS::kSuccess : MS::kFailure);
    doublesOf(object(), text(name).c_str(), values);
    return values.length();
}

unsigned MFnParticleSystem::getPerParticleAttribute(const MString& name, MIntArray& values, MStatus* s) const
{
    values.clear();
    const bool found = isPerParticleIntAttribute(name);
    report(s, found ? MS::kSuccess : MS::kFailure);
    if (!found)
        return 0;
    Node* node = shapeOf(object());
    const Cell* cell = node->cell(node->findAttribute(text(name)));
    if (const auto* data = cell ? dynamic_cast<IntArrayData*>(cell->data()) : nullptr)
        for (const int v : std::as_const(*data->buffer))
            values.append(v);
    return values.length();
}

void MFnParticleSystem::setPerParticleAttribute(const MString& name, const MVectorArray& values, MStatus* s)
{
    Node* node = shapeOf(object());
    std::vector<MVector> v;
    for (unsigned i = 0; i < values.length(); ++i)
        v.push_back(values[i]);
    report(s, node ? api::guarded([&] { dynamics::setVectors(*node, text(name), v); }).statusCode() : MS::kFailure);
}

void MFnParticleSystem::setPerParticleAttribute(const MString& name, const MDoubleArray& values, MStatus* s)
{
    Node* node = shapeOf(object());
    std::vector<double> v;
    for (unsigned i = 0; i < values.length(); ++i)
        v.push_back(values[i]);
    report(s, node ? api::guarded([&] { dynamics::setDoubles(*node, text(name), v); }).statusCode() : MS::kFailure);
}

// ---- new particles -----------------------------------------------------------------------------------------------

MStatus MFnParticleSystem::emit(const MPoint& p) { return emitAll(object(), {MVector(p)}, {}); }
MStatus MFnParticleSystem::emit(const MPoint& p, const MVector& v) { return emitAll(object(), {MVector(p)}, {v}); }
MStatus MFnParticleSystem::emit(const MPointArray& positions) { return emit(positions, MVectorArray()); }

MStatus MFnParticleSystem::emit(const MPointArray& positions, const MVectorArray& velocities)
{
    std::vector<MVector> p, v;
    for (unsigned i = 0; i < positions.length(); ++i)
        p.emplace_back(positions[i]);
    for (unsigned i = 0; i < velocities.length(); ++i)
        v.push_back(velocities[i]);
    if (!v.empty() && v.size() != p.size())
        return MS::kInvalidParameter;
    return emitAll(object(), std::move(p), std::move(v));
}

MStatus MFnParticleSystem::saveInitialState()
{
    Node* node = shapeOf(object());
    if (!node)
        return MS::kFailure;
    return api::guarded([&] {
        for (const char* name : {"position", "velocity", "acceleration"})
            dynamics::setVectors(*node, std::string(name) + "0", dynamics::vectors(*node, name));
        for (const char* name : {"mass", "particleId"})
            dynamics::setDoubles(*node, std::string(name) + "0", dynamics::doubles(*node, name));
    });
}
