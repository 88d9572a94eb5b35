// Data objects of every kind, the awkward ones first of all: what nodes are fed in property tests.
#pragma once
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <maya/MColor.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixArrayData.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MMatrix.h>
#include <maya/MMatrixArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

namespace samples {

struct Sample
{
    std::string   name;
    MFnData::Type kind;
    MObject       data;
    bool          fits = false;   ///< the one to take where every input is to be in order
};

constexpr int kPointCount = 8;    ///< of the geometry that is in order

/// Numbers of a fixed seed; wild ones are NaN, infinite, huge or tiny now and then.
class Numbers
{
public:
    explicit Numbers(unsigned seed) : random_(seed) {}
    int  below(int n) { return int(random_() % unsigned(n)); }
    double tame() { return below(2001) / 500.0 - 2.0; }
    double wild()
    {
        constexpr double awkward[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                      -std::numeric_limits<double>::infinity(), 1e308, -1e308, 5e-324, -0.0, 4294967296.0};
        return below(3) == 0 ? awkward[below(8)] : tame();
    }
    double number(bool isWild) { return isWild ? wild() : tame(); }

private:
    std::mt19937 random_;
};

inline MMatrix matrix(Numbers& r, bool wild)
{
    MMatrix m;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m(unsigned(i), unsigned(j)) = r.number(wild);
    return m;
}

inline MObject arrayOf(MFnData::Type kind, unsigned length, Numbers& r, bool wild)
{
    const auto fill = [&](auto array, auto fn, auto element) {
        array.setLength(length);
        for (unsigned i = 0; i < length; ++i)
            array[i] = element();
        return fn.create(array);
    };
    const auto n = [&] { return r.number(wild); };
    switch (kind) {
    case MFnData::kDoubleArray: return fill(MDoubleArray(), MFnDoubleArrayData(), n);
    case MFnData::kFloatArray:  return fill(MFloatArray(), MFnFloatArrayData(), [&] { return float(n()); });
    case MFnData::kIntArray:
        return fill(MIntArray(), MFnIntArrayData(), [&] {
            constexpr int awkward[] = {-1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), kPointCount};
            return wild && r.below(3) == 0 ? awkward[r.below(4)] : r.below(kPointCount);
        });
    case MFnData::kVectorArray: return fill(MVectorArray(), MFnVectorArrayData(), [&] { return MVector(n(), n(), n()); });
    case MFnData::kPointArray:  return fill(MPointArray(), MFnPointArrayData(), [&] { return MPoint(n(), n(), n(), wild ? n() : 1.0); });
    case MFnData::kMatrixArray: return fill(MMatrixArray(), MFnMatrixArrayData(), [&] { return matrix(r, wild); });
    default:
        return fill(MStringArray(), MFnStringArrayData(), [&] { return MString(r.below(2) ? "map1" : "\xff\"`;$%s"); });
    }
}

inline void addArrays(std::vector<Sample>& out, Numbers& r)
{
    constexpr struct { MFnData::Type kind; const char* name; } kinds[] = {
        {MFnData::kDoubleArray, "doubles"}, {MFnData::kFloatArray, "floats"}, {MFnData::kIntArray, "ints"},
        {MFnData::kVectorArray, "vectors"}, {MFnData::kPointArray, "points"}, {MFnData::kMatrixArray, "matrices"},
        {MFnData::kStringArray, "strings"}};
    const unsigned n = kPointCount;
    for (const auto& k : kinds)
        for (unsigned length : {n, 0u, 1u, 3u, 4u, 12u, n - 1, n + 1, 3 * n, 4 * n})
            for (bool wild : {false, true})
                out.push_back({std::string(k.name) + " " + std::to_string(length) + (wild ? " wild" : ""), k.kind,
                               arrayOf(k.kind, length, r, wild), length == n && !wild});
}

inline MObject mesh(int points, const std::vector<std::vector<int>>& faces, Numbers& r, bool wild = false)
{
    MPointArray at;
    for (int i = 0; i < points; ++i)
        at.append(MPoint(r.number(wild), r.number(wild), r.number(wild)));
    MIntArray counts, ids;
    for (const auto& f : faces) {
        counts.append(int(f.size()));
        for (int v : f)
            ids.append(v);
    }
    MObject data = MFnMeshData().create();
    MFnMesh().create(points, int(faces.size()), at, counts, ids, data);
    return data;
}

inline void addMeshes(std::vector<Sample>& out, Numbers& r)
{
    const std::vector<std::vector<int>> cube = {{0, 1, 3, 2}, {2, 3, 5, 4}, {4, 5, 7, 6}, {6, 7, 1, 0}, {1, 7, 5, 3}, {6, 0, 2, 4}};
    const auto add = [&](const char* name, MObject data, bool fits = false) {
        out.push_back({name, MFnData::kMesh, std::move(data), fits});
    };
    MObject whole = mesh(8, cube, r);
    {
        MFnMesh     fn(whole);
        MFloatArray u(4, 0.25f), v(4, 0.75f);
        fn.setUVs(u, v);
        MIntArray counts(6, 4), ids;
        for (int i = 0; i < 24; ++i)
            ids.append(i % 4);
        fn.assignUVs(counts, ids);
        MColorArray colors(3, MColor(0.1f, 0.2f, 0.3f, 1.0f));
        MIntArray   some(3, 0);
        some[1] = 5, some[2] = 7;
        fn.setVertexColors(colors, some);
    }
    add("cube", whole, true);
    add("bare cube", mesh(8, cube, r));
    add("wild cube", mesh(8, cube, r, true));
    add("no data", MFnMeshData().create());
    add("nothing", mesh(0, {}, r));
    add("one point", mesh(1, {}, r));
    add("points", mesh(8, {}, r));
    add("triangle", mesh(3, {{0, 1, 2}}, r));
    add("loose points", mesh(9, {{0, 1, 2}, {0, 3, 1}}, r));
    add("three on an edge", mesh(5, {{0, 1, 2}, {0, 1, 3}, {1, 0, 4}}, r));
    add("twice one point", mesh(4, {{0, 1, 0, 2}, {3, 3, 3}}, r));
}

inline MDoubleArray knots(int count, bool clamped, int degree)
{
    MDoubleArray k;
    for (int i = 0; i < count; ++i)
        k.append(clamped ? std::min(std::max(0, i - degree + 1), count - 2 * degree + 1) : i - degree + 1);
    return k;
}

inline MObject curve(int cvs, int degree, MFnNurbsCurve::Form form, bool rational, Numbers& r, bool wild = false)
{
    MPointArray points;
    for (int i = 0; i < cvs; ++i)
        points.append(MPoint(r.number(wild), r.number(wild), r.number(wild), rational ? 0.5 + r.below(3) : 1.0));
    if (form == MFnNurbsCurve::kPeriodic)
        for (int i = 0; i < degree; ++i)
            points[unsigned(cvs - degree + i)] = points[unsigned(i)];
    MObject data = MFnNurbsCurveData().create();
    MFnNurbsCurve().create(points, knots(cvs + degree - 1, form == MFnNurbsCurve::kOpen, degree), unsigned(degree), form,
                           false, rational, data);
    return data;
}

inline void addCurves(std::vector<Sample>& out, Numbers& r)
{
    using Fn = MFnNurbsCurve;
    const auto add = [&](const char* name, MObject data, bool fits = false) {
        out.push_back({name, MFnData::kNurbsCurve, std::move(data), fits});
    };
    add("cubic", curve(8, 3, Fn::kOpen, false, r), true);
    add("line", curve(2, 1, Fn::kOpen, false, r));
    add("rational", curve(5, 2, Fn::kOpen, true, r));
    add("periodic", curve(9, 3, Fn::kPeriodic, false, r));
    add("wild curve", curve(8, 3, Fn::kOpen, false, r, true));
    add("no curve", MFnNurbsCurveData().create());
}

inline MObject surface(int u, int v, int degree, MFnNurbsSurface::Form formU, bool rational, Numbers& r, bool wild = false)
{
    MPointArray points;
    for (int i = 0; i < u; ++i)
        for (int j = 0; j < v; ++j)
            points.append(MPoint(r.number(wild), r.number(wild), r.number(wild), rational ? 0.5 + r.below(3) : 1.0));
    const bool open = formU == MFnNurbsSurface::kOpen;
    for (int i = 0; !open && i < degree; ++i)
        for (int j = 0; j < v; ++j)
            points[unsigned((u - degree + i) * v + j)] = points[unsigned(i * v + j)];
    MObject data = MFnNurbsSurfaceData().create();
    MFnNurbsSurface().create(points, knots(u + degree - 1, open, degree), knots(v + degree - 1, true, degree), unsigned(degree),
                             unsigned(degree), formU, MFnNurbsSurface::kOpen, rational, data);
    return data;
}

inline void addSurfaces(std::vector<Sample>& out, Numbers& r)
{
    using Fn = MFnNurbsSurface;
    const auto add = [&](const char* name, MObject data, bool fits = false) {
        out.push_back({name, MFnData::kNurbsSurface, std::move(data), fits});
    };
    add("patch", surface(4, 4, 3, Fn::kOpen, false, r), true);
    add("bilinear", surface(2, 2, 1, Fn::kOpen, true, r));
    add("tube", surface(7, 4, 3, Fn::kPeriodic, false, r));
    add("wild patch", surface(4, 4, 3, Fn::kOpen, false, r, true));
    add("no surface", MFnNurbsSurfaceData().create());
}

inline MObject components(const std::vector<std::pair<MFn::Type, std::vector<int>>>& parts)
{
    MFnComponentListData list;
    MObject              data = list.create();
    for (const auto& [type, elements] : parts) {
        MFnSingleIndexedComponent single;
        MFnDoubleIndexedComponent pairs;
        MObject component = type == MFn::kSurfaceCVComponent ? pairs.create(type) : single.create(type);
        for (size_t i = 0; i < elements.size(); ++i)
            if (type != MFn::kSurfaceCVComponent)
                single.addElement(elements[i]);
            else if (i + 1 < elements.size())
                pairs.addElement(elements[i], elements[i + 1]);
        list.add(component);
    }
    return data;
}

inline void addComponents(std::vector<Sample>& out)
{
    const auto add = [&](const char* name, MObject data, bool fits = false) {
        out.push_back({name, MFnData::kComponentList, std::move(data), fits});
    };
    constexpr int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    MFnSingleIndexedComponent all;
    MObject                   every = all.create(MFn::kMeshVertComponent);
    all.setCompleteData(kMax);
    MFnComponentListData list;
    MObject              complete = list.create();
    list.add(every);
    add("vertices", components({{MFn::kMeshVertComponent, {1, 2, 5}}}), true);
    add("no component", components({}));
    add("empty component", components({{MFn::kMeshVertComponent, {}}}));
    add("faces", components({{MFn::kMeshPolygonComponent, {0, 1}}}));
    add("outside", components({{MFn::kMeshVertComponent, {-7, kMin, 2, 8, 1000000, kMax}}}));
    add("two", components({{MFn::kMeshPolygonComponent, {0}}, {MFn::kMeshVertComponent, {3}}}));
    add("curve points", components({{MFn::kCurveCVComponent, {0, 3, 99}}}));
    add("surface points", components({{MFn::kSurfaceCVComponent, {0, 3, -1, 2, kMax, kMin, 1, 1}}}));
    add("complete", complete);
}

inline void addNamedArrays(std::vector<Sample>& out)
{
    MFnArrayAttrsData fn;
    out.push_back({"no named array", MFnData::kDynArrayAttrs, fn.create()});
    MObject data = fn.create();
    fn.vectorArray("position").setLength(kPointCount);
    for (int i = 0; i < kPointCount; ++i)
        fn.vectorArray("position")[unsigned(i)] = MVector(i, -i, 0.5 * i);
    fn.doubleArray("map1").append(std::numeric_limits<double>::quiet_NaN());
    fn.intArray("id").setLength(0);
    fn.stringArray("\xff\"`;$%s").append("a b");
    out.push_back({"named arrays", MFnData::kDynArrayAttrs, data, true});
}

/// Everything; no data at all stands last.
inline std::vector<Sample> all()
{
    Numbers             r(7);
    std::vector<Sample> out;
    addMeshes(out, r);
    addArrays(out, r);
    addCurves(out, r);
    addSurfaces(out, r);
    addComponents(out);
    addNamedArrays(out);
    out.push_back({"text", MFnData::kString, MFnStringData().create("map1"), true});
    out.push_back({"odd text", MFnData::kString, MFnStringData().create("\xff \"`;$x%s%n\n")});
    out.push_back({"long text", MFnData::kString, MFnStringData().create(std::string(100000, 'x').c_str())});
    out.push_back({"matrix", MFnData::kMatrix, MFnMatrixData().create(MMatrix()), true});
    out.push_back({"wild matrix", MFnData::kMatrix, MFnMatrixData().create(matrix(r, true))});
    out.push_back({"null", MFnData::kInvalid, MObject()});
    return out;
}

} // namespace samples
