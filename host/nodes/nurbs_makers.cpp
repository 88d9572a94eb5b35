// Curve and surface makers: circle, plane, sphere, cylinder, rebuilt curves, extrusions and tessellation.
#include <cmath>
#include <numbers>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MVector.h>

#include "data/mobject.h"
#include "graph/access.h"
#include "mesh/mesh.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nurbs/construct.h"
#include "nurbs/primitives.h"
#include "nurbs/tessellate.h"

namespace mirk::nodes {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

/// What all of them share: reading inputs, telling what is wrong, handing out the result.
class Maker : public MPxNode
{
protected:
    static double  number(MDataBlock& b, const MObject& a) { return b.inputValue(a).asDouble(); }
    static int     integer(MDataBlock& b, const MObject& a) { return b.inputValue(a).asInt(); }
    static bool    flag(MDataBlock& b, const MObject& a) { return b.inputValue(a).asBool(); }
    static MVector vector(MDataBlock& b, const MObject& a)
    {
        const double3& v = b.inputValue(a).asDouble3();
        return {v[0], v[1], v[2]};
    }
    /// The geometry of an input with its matrix in the CVs; null if there is none.
    template <class T, class Body>
    static Ref<Body> input(MDataBlock& b, const MObject& a)
    {
        const auto* data = dynamic_cast<T*>(HandleAccess::data(b.inputValue(a)));
        if (!data || data->body->empty())
            return nullptr;
        if (data->body->identity)
            return data->body;
        auto body = make<Body>(*data->body);
        bakeMatrix(*body);
        return body;
    }
    template <class T, class Body>
    MStatus give(MDataBlock& b, const MObject& output, const Ref<Body>& body, const std::string& why) const
    {
        if (!body)
            return refuse(why);
        b.outputValue(output).setMObject(wrap(make<T>(body)));
        b.setClean(output);
        return MS::kSuccess;
    }
    /// An input that is missing gives no output, and is no error.
    static MStatus giveNothing(MDataBlock& b, const MObject& output)
    {
        b.outputValue(output).setMObject(MObject::kNullObj);
        b.setClean(output);
        return MS::kSuccess;
    }
    MStatus refuse(const std::string& why) const
    {
        MGlobal::displayError(name() + ": " + why.c_str());
        return MS::kFailure;
    }
};

void declare(std::initializer_list<MObject> inputs, const MObject& output)
{
    add(inputs);
    add({output});
    affects(inputs, {output});
}

/// A direction attribute with a default that is not zero.
MObject direction(const char* longName, const char* shortName, double x, double y, double z)
{
    MObject      a = triple(longName, shortName, Number::kDouble);
    const double v[3] = {x, y, z};
    for (unsigned i = 0; i < 3; ++i) {
        objectAs<Attribute>(a)->defaults[i] = v[i];
        objectAs<Attribute>(childOf(a, i))->defaults[0] = v[i];
    }
    return a;
}

MObject point(const char* longName, const char* shortName) { return triple(longName, shortName, Unit::kDistance); }
MObject degreeOf() { return choice("degree", "d", 3, {"", "Linear", "", "Cubic"}); }

class MakeCircle final : public Maker
{
public:
    static void*   creator() { return new MakeCircle; }
    static MStatus initialize()
    {
        out = typed("outputCurve", "oc", MFnData::kNurbsCurve, kOut);
        declare({normal = direction("normal", "nr", 0, 0, 1), center = point("center", "c"), radius = unit("radius", "r", Unit::kDistance, 1, kKey),
                 sweep = unit("sweep", "sw", Unit::kAngle, kTurn, kKey), degree = degreeOf(), sections = nodes::number("sections", "s", Number::kInt, 8, 1, 0, kKey)},
                out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        std::string why;
        const auto  curve = nurbs::circle({vector(b, center), vector(b, normal)}, number(b, radius), number(b, sweep), integer(b, degree), integer(b, sections), why);
        return give<CurveData>(b, out, curve, why);
    }

private:
    static inline MObject normal, center, radius, sweep, degree, sections, out;
};

class MakePlane final : public Maker
{
public:
    static void*   creator() { return new MakePlane; }
    static MStatus initialize()
    {
        out = typed("outputSurface", "os", MFnData::kNurbsSurface, kOut);
        declare({pivot = point("pivot", "p"), axis = direction("axis", "ax", 1, 0, 0), width = unit("width", "w", Unit::kDistance, 1, kKey),
                 ratio = nodes::number("lengthRatio", "lr", Number::kDouble, 1, kKey), degree = degreeOf(),
                 patchesU = nodes::number("patchesU", "u", Number::kInt, 1, 1, 0, kKey), patchesV = nodes::number("patchesV", "v", Number::kInt, 1, 1, 0, kKey)},
                out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        std::string why;
        const auto  surface = nurbs::plane({vector(b, pivot), vector(b, axis)}, number(b, width), number(b, ratio), integer(b, degree), integer(b, patchesU), integer(b, patchesV), why);
        return give<SurfaceData>(b, out, surface, why);
    }

private:
    static inline MObject pivot, axis, width, ratio, degree, patchesU, patchesV, out;
};

enum class Round { sphere, cylinder, cone, torus };

/// These differ in their defaults and in what they call; the torus has a sweep of its section as well.
template <Round Kind>
class MakeRevolved final : public Maker
{
public:
    static void*   creator() { return new MakeRevolved; }
    static MStatus initialize()
    {
        out = typed("outputSurface", "os", MFnData::kNurbsSurface, kOut);
        declare({pivot = point("pivot", "p"), axis = direction("axis", "ax", 1, 0, 0), start = unit("startSweep", "ssw", Unit::kAngle, 0, kKey),
                 end = unit("endSweep", "esw", Unit::kAngle, kTurn, kKey), radius = unit("radius", "r", Unit::kDistance, 1, kKey), degree = degreeOf(),
                 sections = nodes::number("sections", "s", Number::kInt, 8, 1, 0, kKey), spans = nodes::number("spans", "nsp", Number::kInt, kLong ? 1 : 4, 1, 0, kKey),
                 ratio = nodes::number("heightRatio", "hr", Number::kDouble, Kind == Round::torus ? 0.5 : 2, kKey)},
                out);
        if (Kind == Round::torus) {
            minor = unit("minorSweep", "msw", Unit::kAngle, kTurn, kKey);
            add({minor});
            affects({minor}, {out});
        }
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        const nurbs::Placement at{vector(b, pivot), vector(b, axis)};
        const double           from = number(b, start), sweep = number(b, end) - from;
        std::string            why;
        const double           r = number(b, radius), h = number(b, ratio);
        const int              d = integer(b, degree), around = integer(b, sections), along = integer(b, spans);
        Ref<SurfaceBody>       surface;
        switch (Kind) {
        case Round::sphere: surface = nurbs::sphere(at, r, from, sweep, d, around, along, why); break;
        case Round::cylinder: surface = nurbs::cylinder(at, r, h, sweep, d, around, along, why); break;
        case Round::cone: surface = nurbs::cone(at, r, h, sweep, d, around, along, why); break;
        case Round::torus: surface = nurbs::torus(at, r, h, sweep, number(b, minor), d, around, along, why); break;
        }
        return give<SurfaceData>(b, out, surface, why);
    }

private:
    static constexpr bool kLong = Kind == Round::cylinder || Kind == Round::cone;
    static inline MObject pivot, axis, start, end, radius, degree, sections, spans, ratio, minor, out;
};

/// Six planes, outward: top, bottom, left, right, front, back for an axis that points up.
class MakeCube final : public Maker
{
public:
    static void*   creator() { return new MakeCube; }
    static MStatus initialize()
    {
        const std::initializer_list<MObject> inputs = {
            pivot = point("pivot", "p"), axis = direction("axis", "ax", 1, 0, 0), width = unit("width", "w", Unit::kDistance, 1, kKey),
            length = nodes::number("lengthRatio", "lr", Number::kDouble, 1, kKey), height = nodes::number("heightRatio", "hr", Number::kDouble, 1, kKey),
            degree = degreeOf(), patchesU = nodes::number("patchesU", "u", Number::kInt, 1, 1, 0, kKey),
            patchesV = nodes::number("patchesV", "v", Number::kInt, 1, 1, 0, kKey)};
        add(inputs);
        for (int i = 0; i < 6; ++i) {
            const std::string number = i ? std::to_string(i) : "";
            out[i] = typed(("outputSurface" + number).c_str(), ("os" + number).c_str(), MFnData::kNurbsSurface, kOut);
            add({out[i]});
            affects(inputs, {out[i]});
        }
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        for (int i = 0; i < 6; ++i)
            if (plug == out[i]) {
                std::string why;
                const auto  side = nurbs::boxSide({vector(b, pivot), vector(b, axis)}, number(b, width), number(b, length), number(b, height), integer(b, degree),
                                                  integer(b, patchesU), integer(b, patchesV), i, why);
                return give<SurfaceData>(b, out[i], side, why);
            }
        return MS::kUnknownParameter;
    }

private:
    static inline MObject pivot, axis, width, length, height, degree, patchesU, patchesV, out[6];
};

class RebuildCurve final : public Maker
{
public:
    static void*   creator() { return new RebuildCurve; }
    static MStatus initialize()
    {
        out = typed("outputCurve", "oc", MFnData::kNurbsCurve, kOut);
        declare({in = typed("inputCurve", "ic", MFnData::kNurbsCurve), spans = nodes::number("spans", "s", Number::kInt, 4, 0, 0, kKey),
                 degree = nodes::number("degree", "d", Number::kInt, 3, 0, 7, kKey), tolerance = nodes::number("tolerance", "tol", Number::kDouble, 0.01),
                 ends = choice("endKnots", "end", 0, {"Uniform end knots", "Multiple end knots"}),
                 range = choice("keepRange", "kr", 1, {"0 to 1", "Original", "0 to #spans"}), keepCvs = nodes::number("keepControlPoints", "kcp", Number::kBoolean, 0),
                 type = choice("rebuildType", "rt", 0, {"Uniform", "Reduce Spans", "Match Knots", "No Multiple Knots", "Curvature"}),
                 match = typed("matchCurve", "mc", MFnData::kNurbsCurve)},
                out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        const auto curve = input<CurveData, CurveBody>(b, in), matched = input<CurveData, CurveBody>(b, match);
        if (!curve)
            return giveNothing(b, out);
        const int which = integer(b, type);
        if (which < 0 || which > 4)
            return refuse("rebuildType " + std::to_string(which) + " is none of 0 to 4.");
        nurbs::RebuildOptions o;
        o.type = nurbs::Rebuild(which);
        o.spans = integer(b, spans);
        o.degree = integer(b, degree);
        o.multipleEndKnots = integer(b, ends) == 1;
        o.keepControlPoints = flag(b, keepCvs);
        o.keepRange = integer(b, range);
        o.tolerance = number(b, tolerance);
        o.match = matched.get();
        std::string why;
        const auto  rebuilt = nurbs::rebuildCurve(*curve, o, why);
        return give<CurveData>(b, out, rebuilt, why);
    }

private:
    static inline MObject in, spans, degree, tolerance, ends, range, keepCvs, type, match, out;
};

class Extrude final : public Maker
{
public:
    static void*   creator() { return new Extrude; }
    static MStatus initialize()
    {
        out = typed("outputSurface", "os", MFnData::kNurbsSurface, kOut);
        declare({profile = typed("profile", "pr", MFnData::kNurbsCurve), path = typed("path", "pt", MFnData::kNurbsCurve),
                 type = choice("extrudeType", "et", 2, {"Distance", "Flat", "Tube"}), way = nodes::direction("direction", "d", 0, 1, 0),
                 length = nodes::number("length", "l", Number::kDouble, 1), along = nodes::number("degreeAlongLength", "dl", Number::kInt, 1, 1, 3),
                 fixed = nodes::number("fixedPath", "fpt", Number::kBoolean, 0), pivot = point("pivot", "p"),
                 byNormal = nodes::number("useProfileNormal", "upn", Number::kBoolean, 0), turn = unit("rotation", "ro", Unit::kAngle),
                 size = nodes::number("scale", "sc", Number::kDouble, 1)},
                out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        const auto curve = input<CurveData, CurveBody>(b, profile), rail = input<CurveData, CurveBody>(b, path);
        const int  which = integer(b, type);
        if (!curve || (which != 0 && !rail))
            return giveNothing(b, out);
        if (which < 0 || which > 2)
            return refuse("extrudeType " + std::to_string(which) + " is none of 0 to 2.");
        nurbs::ExtrudeOptions o;
        o.type = nurbs::Extrude(which);
        o.direction = vector(b, way);
        o.length = number(b, length);
        o.degreeAlongLength = integer(b, along);
        o.fixedPath = flag(b, fixed);
        o.pivot = vector(b, pivot);
        o.useProfileNormal = flag(b, byNormal);
        o.rotation = number(b, turn);
        o.scale = number(b, size);
        std::string why;
        const auto  surface = nurbs::extrude(*curve, rail.get(), o, why);
        return give<SurfaceData>(b, out, surface, why);
    }

private:
    static inline MObject profile, path, type, way, length, along, fixed, pivot, byNormal, turn, size, out;
};

Ref<MeshData> meshOf(const nurbs::Polygons& p, std::string& why)
{
    Ref<Topology> topology = Topology::create(int(p.points.size()), p.counts.data(), p.counts.size(), p.connects.data(), p.connects.size(), &why);
    if (!topology)
        return nullptr;
    auto points = make<Buffer<float>>(p.points.size() * 3);
    for (size_t i = 0; i < p.points.size(); ++i) {
        (*points)[3 * i] = float(p.points[i].x);
        (*points)[3 * i + 1] = float(p.points[i].y);
        (*points)[3 * i + 2] = float(p.points[i].z);
    }
    auto uvs = make<Buffer<F2>>(p.u.size());
    for (size_t i = 0; i < p.u.size(); ++i)
        (*uvs)[i] = {p.u[i], p.v[i]};
    auto mesh = make<MeshData>();
    mesh->body->reset(points, topology);
    mesh->body->writeUVSet(0).uvs = uvs;
    mesh->body->assignUVs(0, make<Buffer<int>>(p.uvIds.data(), p.uvIds.size()));
    return mesh;
}

class Tessellate final : public Maker
{
public:
    static void*   creator() { return new Tessellate; }
    static MStatus initialize()
    {
        out = typed("outputPolygon", "op", MFnData::kMesh, kOut);
        const auto spread = [](const char* longName, const char* shortName) {
            return choice(longName, shortName, 3, {"", "Per Surface # of Isoparms in 3D", "Per Surface # of Isoparms", "Per Span # of Isoparms"});
        };
        declare({in = typed("inputSurface", "is", MFnData::kNurbsSurface), format = choice("format", "f", 2, {"Count", "Standard Fit", "General", "CVs"}),
                 type = choice("polygonType", "pt", 0, {"Triangles", "Quads"}), count = nodes::number("polygonCount", "pc", Number::kInt, 200, 1, 0),
                 normals = nodes::number("matchNormalDir", "mnd", Number::kBoolean, 0), uvRange = nodes::number("normalizeTrimmedUVRange", "nt", Number::kBoolean, 1),
                 chord = nodes::number("chordHeight", "cht", Number::kDouble, 0.1), typeU = spread("uType", "ut"), typeV = spread("vType", "vt"),
                 numberU = nodes::number("uNumber", "un", Number::kInt, 3, 1, 0), numberV = nodes::number("vNumber", "vn", Number::kInt, 3, 1, 0)},
                out);
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& b) override
    {
        if (plug != out)
            return MS::kUnknownParameter;
        const auto surface = input<SurfaceData, SurfaceBody>(b, in);
        if (!surface)
            return giveNothing(b, out);
        using Options = nurbs::TessellateOptions;
        Options   o;
        const int which = integer(b, format), u = integer(b, typeU), v = integer(b, typeV);
        if (which < 0 || which > 3 || u < 1 || u > 3 || v < 1 || v > 3)
            return refuse("format, uType or vType is out of range.");
        o.format = Options::Format(which);
        o.quads = integer(b, type) == 1;
        o.matchNormalDir = flag(b, normals);
        o.normalizeUV = flag(b, uvRange);
        o.polygonCount = integer(b, count);
        o.chordHeight = number(b, chord);
        o.spreadU = Options::Spread(u);
        o.spreadV = Options::Spread(v);
        o.numberU = integer(b, numberU);
        o.numberV = integer(b, numberV);
        nurbs::Polygons polygons;
        std::string     why;
        if (!nurbs::tessellate(*surface, o, polygons, why))
            return refuse(why);
        const Ref<MeshData> mesh = meshOf(polygons, why);
        if (!mesh)
            return refuse(why);
        b.outputValue(out).setMObject(wrap(mesh));
        b.setClean(plug);
        return MS::kSuccess;
    }

private:
    static inline MObject in, format, type, count, normals, uvRange, chord, typeU, typeV, numberU, numberV, out;
};

}  // namespace

void registerNurbsMakers()
{
    const Row rows[] = {
        {"abstractBaseCreate", "node", 0, MFn::kCreate, nullptr, nullptr},
        {"makeNurbCircle", "abstractBaseCreate", 0x4E435243, MFn::kCircle, MakeCircle::creator, MakeCircle::initialize},
        {"makeNurbPlane", "abstractBaseCreate", 0x4E504C4E, MFn::kNurbsPlane, MakePlane::creator, MakePlane::initialize},
        {"makeNurbSphere", "abstractBaseCreate", 0x4E535048, MFn::kSphere, MakeRevolved<Round::sphere>::creator, MakeRevolved<Round::sphere>::initialize},
        {"makeNurbCylinder", "abstractBaseCreate", 0x4E43594C, MFn::kCylinder, MakeRevolved<Round::cylinder>::creator, MakeRevolved<Round::cylinder>::initialize},
        {"makeNurbCone", "abstractBaseCreate", 0x4E434F4E, MFn::kCone, MakeRevolved<Round::cone>::creator, MakeRevolved<Round::cone>::initialize},
        {"makeNurbTorus", "abstractBaseCreate", 0x4E544F52, MFn::kTorus, MakeRevolved<Round::torus>::creator, MakeRevolved<Round::torus>::initialize},
        {"makeNurbCube", "abstractBaseCreate", 0x4E435542, MFn::kNurbsCube, MakeCube::creator, MakeCube::initialize},
        {"rebuildCurve", "abstractBaseCreate", 0x4E524243, MFn::kRebuildCurve, RebuildCurve::creator, RebuildCurve::initialize},
        {"extrude", "abstractBaseCreate", 0x4E455854, MFn::kExtrude, Extrude::creator, Extrude::initialize},
        {"nurbsTessellate", "abstractBaseCreate", 0x4E544553, MFn::kNurbsTesselate, Tessellate::creator, Tessellate::initialize},
    };
    for (const Row& row : rows)
        registerRow(row);
}

}  // namespace mirk::nodes
