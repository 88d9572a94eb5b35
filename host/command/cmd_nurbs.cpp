// Curves and surfaces: primitives with history, curve and surface from points.
#include <maya/MFnNurbsCurve.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include "command/cmd_util.h"
#include "command/maker.h"
#include "data/mobject.h"
#include "nurbs/nurbs_data.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

#define MIRK_MAKER_FLAGS                                                                                                      \
    {"n", "name", "s", kAll}, {"ch", "constructionHistory", "b", kAll}, {"o", "object", "b"}, {"d", "degree", "i", kAll}, {"nds", "nodeState", "i", kAll}, \
    {"po", "polygon", "i"}, {"cch", "caching", "b", kAll}, {"ax", "axis", "fff", kAll}, {"p", "pivot", "lll", kAll}, {"tol", "tolerance", "f", kAll}, \
    {"ut", "useTolerance", "b", kAll}

constexpr Flag kCircleFlags[] = {
    MIRK_MAKER_FLAGS, {"r", "radius", "l", kAll}, {"s", "sections", "i", kAll}, {"sw", "sweep", "a", kAll}, {"nr", "normal", "fff", kAll}, {"c", "center", "lll", kAll},
    {"fc", "fixCenter", "b", kAll}, {"f", "first", "lll", kAll},
};
constexpr Flag kSurfaceFlags[] = {
    MIRK_MAKER_FLAGS, {"r", "radius", "l", kAll}, {"s", "sections", "i", kAll}, {"nsp", "spans", "i", kAll}, {"ssw", "startSweep", "a", kAll}, {"esw", "endSweep", "a", kAll},
    {"hr", "heightRatio", "f", kAll}, {"msw", "minorSweep", "a", kAll},
};
constexpr Flag kPlaneFlags[] = {
    MIRK_MAKER_FLAGS, {"w", "width", "l", kAll}, {"lr", "lengthRatio", "f", kAll}, {"u", "patchesU", "i", kAll}, {"v", "patchesV", "i", kAll}, {"hr", "heightRatio", "f", kAll},
};
#undef MIRK_MAKER_FLAGS

constexpr MakerFlag kAttributes[] = {
    {"radius", "radius"}, {"sections", "sections"}, {"sweep", "sweep"}, {"normal", "normal"}, {"center", "center"}, {"degree", "degree"}, {"tolerance", "tolerance"},
    {"useTolerance", "useTolerance"}, {"spans", "spans"}, {"startSweep", "startSweep"}, {"endSweep", "endSweep"}, {"heightRatio", "heightRatio"}, {"width", "width"},
    {"lengthRatio", "lengthRatio"}, {"patchesU", "patchesU"}, {"patchesV", "patchesV"}, {"axis", "axis"}, {"pivot", "pivot"}, {"first", "first"}, {"fixCenter", "fixCenter"},
    {"nodeState", "nodeState"}, {"minorSweep", "minorSweep"},
};

struct Row { const char* command; Maker maker; };
constexpr Row kMakers[] = {
    {"circle", {"makeNurbCircle", "nurbsCurve", "nurbsCircle#", "outputCurve", "create", kAttributes}},
    {"nurbsPlane", {"makeNurbPlane", "nurbsSurface", "nurbsPlane#", "outputSurface", "create", kAttributes}},
    {"sphere", {"makeNurbSphere", "nurbsSurface", "nurbsSphere#", "outputSurface", "create", kAttributes}},
    {"cylinder", {"makeNurbCylinder", "nurbsSurface", "nurbsCylinder#", "outputSurface", "create", kAttributes}},
    {"cone", {"makeNurbCone", "nurbsSurface", "nurbsCone#", "outputSurface", "create", kAttributes}},
    {"torus", {"makeNurbTorus", "nurbsSurface", "nurbsTorus#", "outputSurface", "create", kAttributes}},
};
constexpr Maker kCube = {"makeNurbCube", "nurbsSurface", "nurbsCube#", "outputSurface", "create", kAttributes};

Value primitive(Call& call)
{
    for (const Row& r : kMakers)
        if (std::string_view(r.command) == call.command->name)
            return runMaker(call, r.maker);
    return {};
}

/// Six surfaces below one transform.
Value cube(Call& call)
{
    static constexpr const char* kSides[] = {"top", "bottom", "left", "right", "front", "back"};
    return runMaker(call, kCube, kSides);
}

constexpr Flag kCurve[] = {
    {"d", "degree", "f"}, {"p", "point", "lll", kCreate, true}, {"pw", "pointWeight", "lllf", kCreate, true}, {"ep", "editPoint", "lll", kCreate, true}, {"k", "knot", "f", kCreate, true},
    {"per", "periodic", "b"}, {"n", "name", "s"}, {"a", "append"}, {"r", "replace"}, {"os", "objectSpace"}, {"ws", "worldSpace"}, {"bez", "bezier"},
};

std::vector<MPoint> cvsOf(const Call& call)
{
    std::vector<MPoint> out;
    for (const auto* use : call.all("point"))
        out.emplace_back(use->args[0].asFloat(), use->args[1].asFloat(), use->args[2].asFloat(), 1);
    for (const auto* use : call.all("pointWeight"))
    {
        const double w = use->args[3].asFloat();
        out.emplace_back(use->args[0].asFloat() * w, use->args[1].asFloat() * w, use->args[2].asFloat() * w, w);
    }
    return out;
}

std::vector<double> numbersOf(const Call& call, const char* flag)
{
    std::vector<double> out;
    for (const auto* use : call.all(flag))
        out.push_back(use->args[0].asFloat());
    return out;
}

/// Knots of a curve whose ends are clamped, spans of length one; of a periodic one they run on evenly.
std::vector<double> defaultKnots(size_t cvs, int degree, bool periodic)
{
    std::vector<double> out;
    const int count = int(cvs) + degree - 1, spans = int(cvs) - degree;
    for (int i = 0; i < count; ++i)
        out.push_back(periodic ? i - degree + 1 : std::clamp(i - degree + 1, 0, spans));
    return out;
}

/// The curve through edit points, which the interface's function set fits.
Ref<CurveData> throughEditPoints(const Call& call, int degree)
{
    MPointArray points;
    for (const auto* use : call.all("editPoint"))
        points.append(MPoint(use->args[0].asFloat(), use->args[1].asFloat(), use->args[2].asFloat()));
    auto            data = make<CurveData>();
    MObject         owner = wrap(data);
    MStatus         status;
    MFnNurbsCurve   fn;
    fn.createWithEditPoints(points, unsigned(std::max(degree, 1)), MFnNurbsCurve::kOpen, false, false, true, owner, &status);
    if (!status)
        fail("curve: no curve of degree " + std::to_string(degree) + " goes through " + std::to_string(points.length()) + " points");
    return data;
}

Value curve(Call& call)
{
    const int           degree = call.integer("degree", 3);
    std::vector<MPoint> cvs = cvsOf(call);
    if (call.has("append"))
        fail("curve -append: points cannot be added to a curve; use -replace");
    auto data = make<CurveData>();
    if (call.has("editPoint"))
        data = throughEditPoints(call, degree);
    else
    {
        const bool periodic = call.boolean("periodic");
        std::vector<double> knots = numbersOf(call, "knot");
        if (knots.empty())
            knots = defaultKnots(cvs.size(), degree, periodic);
        const std::string why = buildCurve(*data->body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree,
                                           periodic ? NurbsForm::periodic : NurbsForm::open, false, call.has("pointWeight"));
        if (!why.empty())
            fail("curve: " + why);
    }
    if (call.has("replace"))
    {
        for (const Item& item : callItems(call))
            for (Node* shape : shapesOf(*nodeOf(item)))
                if (shape->type->isA("nurbsCurve"))
                    return edit::setData(*shape->cell(shape->findAttribute("cached")), data), Value(nodeName(*transformOf(*shape)));
        fail("curve -replace: no curve is given");
    }
    Node* transform = dag::createNode(findNodeType("transform"), call.str("name", "curve#"));
    Node* shape = dag::createNode(findNodeType("nurbsCurve"), shapeName(transform->name), transform);
    edit::setData(*shape->cell(shape->findAttribute("cached")), data);
    selection::set({itemOf(*transform)});
    return Value(nodeName(*transform));
}

constexpr Flag kSurface[] = {
    {"du", "degreeU", "i"}, {"dv", "degreeV", "i"}, {"fu", "formU", "s"}, {"fv", "formV", "s"}, {"ku", "knotU", "f", kCreate, true}, {"kv", "knotV", "f", kCreate, true},
    {"p", "point", "lll", kCreate, true}, {"pw", "pointWeight", "lllf", kCreate, true}, {"n", "name", "s"}, {"os", "objectSpace"}, {"ws", "worldSpace"}, {"ch", "constructionHistory", "b"},
};

NurbsForm formNamed(const std::string& name)
{
    if (name == "open")
        return NurbsForm::open;
    if (name == "closed")
        return NurbsForm::closed;
    if (name == "periodic")
        return NurbsForm::periodic;
    fail("surface: unknown form '" + name + "'");
}

Value surface(Call& call)
{
    const std::vector<MPoint> cvs = cvsOf(call);
    const std::vector<double> knotsU = numbersOf(call, "knotU"), knotsV = numbersOf(call, "knotV");
    auto data = make<SurfaceData>();
    const std::string why = buildSurface(*data->body, cvs.data(), cvs.size(), knotsU.data(), knotsU.size(), knotsV.data(), knotsV.size(),
                                         call.integer("degreeU", 3), call.integer("degreeV", 3), formNamed(call.str("formU", "open")),
                                         formNamed(call.str("formV", "open")), call.has("pointWeight"));
    if (!why.empty())
        fail("surface: " + why);
    Node* transform = dag::createNode(findNodeType("transform"), call.str("name", "surface#"));
    Node* shape = dag::createNode(findNodeType("nurbsSurface"), shapeName(transform->name), transform);
    edit::setData(*shape->cell(shape->findAttribute("cached")), data);
    selection::set({itemOf(*transform)});
    return Value(nodeName(*transform));
}

const Command kCommands[] = {
    {"circle", kCircleFlags, primitive},   {"sphere", kSurfaceFlags, primitive}, {"cylinder", kSurfaceFlags, primitive},
    {"cone", kSurfaceFlags, primitive},    {"torus", kSurfaceFlags, primitive},  {"nurbsCube", kPlaneFlags, cube},
    {"nurbsPlane", kPlaneFlags, primitive}, {"curve", kCurve, curve},            {"surface", kSurface, surface},
};

}  // namespace

void registerNurbsCommands() { add(kCommands); }

}  // namespace mirk::command
