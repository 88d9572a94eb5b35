// polyCube, polySphere, polyPlane, polyCylinder, polyCone and polyTorus.
#include <algorithm>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>

#include "data/mobject.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/poly_shapes.h"

namespace mirk::nodes {
namespace {

MObject aAxis, aOutput;

MStatus initPrimitive()
{
    aAxis = triple("axis", "ax", Number::kDouble, 0, kIn);
    aOutput = typed("output", "out", MFnData::kMesh, kOut);
    Attribute* y = objectAs<Attribute>(childOf(aAxis, 1));
    y->defaults[0] = 1;
    objectAs<Attribute>(aAxis)->defaults[1] = 1;
    add({aAxis, aOutput});
    affects({aAxis}, {aOutput});
    return MS::kSuccess;
}

MObject count(const char* longName, const char* shortName, int value, int least) { return number(longName, shortName, Number::kInt, value, least, 0, kKey); }
MObject length(const char* longName, const char* shortName, double value)
{
    MObject a = unit(longName, shortName, Unit::kDistance, value, kKey);
    MFnUnitAttribute(a).setMin(0);
    return a;
}

/// What the primitives share: the gate, the axis, and handing the mesh out.
class Primitive : public MPxNode
{
public:
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        constexpr double kMostFaces = 5e7;
        if (faceCount(block) > kMostFaces)
            return refuse("the subdivisions would make too many faces");
        poly::Shape    shape = build(block);
        const double3& axis = block.inputValue(aAxis).asDouble3();
        poly::turnTo(shape, axis);
        std::string         why;
        const Ref<MeshData> mesh = poly::toMesh(shape, block.inputValue(uvSwitch()).asInt() != 0, why);
        if (!mesh)
            return refuse(why);
        block.outputValue(aOutput).setMObject(wrap(mesh));
        block.setClean(plug);
        return MS::kSuccess;
    }

protected:
    virtual double      faceCount(MDataBlock& block) const = 0;
    virtual poly::Shape build(MDataBlock& block) const = 0;
    virtual MObject     uvSwitch() const = 0;

    static int    integer(MDataBlock& b, const MObject& a, int least) { return std::max(b.inputValue(a).asInt(), least); }
    static double number(MDataBlock& b, const MObject& a) { return b.inputValue(a).asDouble(); }

private:
    MStatus refuse(const std::string& why) const
    {
        MGlobal::displayError(name() + ": " + why.c_str() + ".");
        return MS::kFailure;
    }
};

void declare(std::initializer_list<MObject> inputs)
{
    add(inputs);
    affects(inputs, {aOutput});
}

class PolyCube final : public Primitive
{
public:
    static void*   creator() { return new PolyCube; }
    static MStatus initialize()
    {
        declare({w = length("width", "w", 1), h = length("height", "h", 1), d = length("depth", "d", 1), sw = count("subdivisionsWidth", "sw", 1, 1),
                 sh = count("subdivisionsHeight", "sh", 1, 1), sd = count("subdivisionsDepth", "sd", 1, 1), uvs = nodes::number("createUVs", "cuv", Number::kShort, 4)});
        return MS::kSuccess;
    }

private:
    double faceCount(MDataBlock& b) const override
    {
        const double x = integer(b, sw, 1), y = integer(b, sh, 1), z = integer(b, sd, 1);
        return 2 * (x * y + y * z + x * z);
    }
    poly::Shape build(MDataBlock& b) const override
    {
        return poly::cube(number(b, w), number(b, h), number(b, d), integer(b, sw, 1), integer(b, sh, 1), integer(b, sd, 1));
    }
    MObject uvSwitch() const override { return uvs; }
    static inline MObject w, h, d, sw, sh, sd, uvs;
};

class PolyPlane final : public Primitive
{
public:
    static void*   creator() { return new PolyPlane; }
    static MStatus initialize()
    {
        declare({w = length("width", "w", 1), h = length("height", "h", 1), sw = count("subdivisionsWidth", "sw", 10, 1),
                 sh = count("subdivisionsHeight", "sh", 10, 1), uvs = nodes::number("createUVs", "cuv", Number::kShort, 2)});
        return MS::kSuccess;
    }

private:
    double      faceCount(MDataBlock& b) const override { return double(integer(b, sw, 1)) * integer(b, sh, 1); }
    poly::Shape build(MDataBlock& b) const override { return poly::plane(number(b, w), number(b, h), integer(b, sw, 1), integer(b, sh, 1)); }
    MObject     uvSwitch() const override { return uvs; }
    static inline MObject w, h, sw, sh, uvs;
};

class PolySphere final : public Primitive
{
public:
    static void*   creator() { return new PolySphere; }
    static MStatus initialize()
    {
        declare({r = length("radius", "r", 1), sa = count("subdivisionsAxis", "sa", 20, 3), sh = count("subdivisionsHeight", "sh", 20, 2),
                 uvs = nodes::number("createUVs", "cuv", Number::kShort, 2)});
        return MS::kSuccess;
    }

private:
    double      faceCount(MDataBlock& b) const override { return double(integer(b, sa, 3)) * integer(b, sh, 2); }
    poly::Shape build(MDataBlock& b) const override { return poly::sphere(number(b, r), integer(b, sa, 3), integer(b, sh, 2)); }
    MObject     uvSwitch() const override { return uvs; }
    static inline MObject r, sa, sh, uvs;
};

/// Cylinder and cone have the same attributes, with other defaults.
template <bool Cone>
class PolyCapped final : public Primitive
{
public:
    static void*   creator() { return new PolyCapped; }
    static MStatus initialize()
    {
        declare({r = length("radius", "r", 1), h = length("height", "h", 2), sa = count("subdivisionsAxis", "sa", 20, 3),
                 sh = count("subdivisionsHeight", "sh", 1, 1), sc = count("subdivisionsCaps", "sc", Cone ? 0 : 1, 0),
                 uvs = nodes::number("createUVs", "cuv", Number::kShort, Cone ? 2 : 3)});
        return MS::kSuccess;
    }

private:
    double      faceCount(MDataBlock& b) const override { return double(integer(b, sa, 3)) * (double(integer(b, sh, 1)) + 2.0 * integer(b, sc, 0)); }
    poly::Shape build(MDataBlock& b) const override
    {
        const auto make = Cone ? poly::cone : poly::cylinder;
        return make(number(b, r), number(b, h), integer(b, sa, 3), integer(b, sh, 1), integer(b, sc, 0));
    }
    MObject uvSwitch() const override { return uvs; }
    static inline MObject r, h, sa, sh, sc, uvs;
};

class PolyTorus final : public Primitive
{
public:
    static void*   creator() { return new PolyTorus; }
    static MStatus initialize()
    {
        declare({r = length("radius", "r", 1), sr = length("sectionRadius", "sr", 0.5), tw = unit("twist", "tw", Unit::kAngle, 0, kKey),
                 sa = count("subdivisionsAxis", "sa", 20, 3), sh = count("subdivisionsHeight", "sh", 20, 3), uvs = nodes::number("createUVs", "cuv", Number::kShort, 1)});
        return MS::kSuccess;
    }

private:
    double      faceCount(MDataBlock& b) const override { return double(integer(b, sa, 3)) * integer(b, sh, 3); }
    poly::Shape build(MDataBlock& b) const override { return poly::torus(number(b, r), number(b, sr), number(b, tw), integer(b, sa, 3), integer(b, sh, 3)); }
    MObject     uvSwitch() const override { return uvs; }
    static inline MObject r, sr, tw, sa, sh, uvs;
};

}  // namespace

void registerPolygonMakers()
{
    const Row rows[] = {
        {"polyBase", "node", 0, MFn::kDependencyNode, nullptr, nullptr},
        {"polyCreator", "polyBase", 0, MFn::kPolyCreator, nullptr, nullptr},
        {"polyPrimitive", "polyCreator", 0, MFn::kPolyPrimitive, nullptr, initPrimitive},
        {"polyCube", "polyPrimitive", 0x50435542, MFn::kPolyCube, PolyCube::creator, PolyCube::initialize},
        {"polySphere", "polyPrimitive", 0x50535048, MFn::kPolySphere, PolySphere::creator, PolySphere::initialize},
        {"polyPlane", "polyPrimitive", 0x504D4553, MFn::kPolyMesh, PolyPlane::creator, PolyPlane::initialize},
        {"polyCylinder", "polyPrimitive", 0x5043594C, MFn::kPolyCylinder, PolyCapped<false>::creator, PolyCapped<false>::initialize},
        {"polyCone", "polyPrimitive", 0x50434F4E, MFn::kPolyCone, PolyCapped<true>::creator, PolyCapped<true>::initialize},
        {"polyTorus", "polyPrimitive", 0x50544F52, MFn::kPolyTorus, PolyTorus::creator, PolyTorus::initialize},
    };
    for (const Row& row : rows)
        registerRow(row);
}

}  // namespace mirk::nodes
