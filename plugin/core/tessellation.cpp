#include "core/tessellation.h"

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

namespace {

void run(const MString& command) { MGlobal::executeCommand(command, false, false); }

} // namespace

namespace tessellation {

MString createNode(const char* type)
{
    MString name;
    MGlobal::executeCommand(MString("createNode -ss ") + type, name, false, false);
    return name;
}

void set(const MString& node, const char* assignment) { run("setAttr " + node + assignment); }
void connect(const MString& fromPlug, const MString& toPlug) { run("connectAttr " + fromPlug + " " + toPlug); }
void deleteNodes(const MString& names) { run("delete " + names); }

MString createTessellator()
{
    const MString tessellator = createNode("nurbsTessellate");
    set(tessellator, ".polygonType 1");
    set(tessellator, ".format 3");
    set(tessellator, ".matchNormalDir 1");
    return tessellator;
}

MObject copyOfPolygon(const MString& tessellator)
{
    MSelectionList list;
    MPlug          polygon;
    MObject        source;
    if (!list.add(tessellator + ".outputPolygon") || !list.getPlug(0, polygon) || !polygon.getValue(source) ||
        !source.hasFn(MFn::kMesh))
        return MObject::kNullObj;
    MFnMeshData data;
    MObject     mesh = data.create();
    MFnMesh     fn;
    fn.copy(source, mesh);
    return mesh;
}

} // namespace tessellation

using namespace tessellation;

MObject tessellatedCurve(const MPlug& curve)
{
    const MString rebuild = createNode("rebuildCurve");
    set(rebuild, ".rebuildType 3");
    set(rebuild, ".endKnots 1");
    connect(curve.name(), rebuild + ".inputCurve");

    const MString extrude = createNode("extrude");
    set(extrude, ".extrudeType 0");
    connect(rebuild + ".outputCurve ", extrude + ".profile");

    const MString tessellator = createTessellator();
    connect(extrude + ".outputSurface ", tessellator + ".inputSurface");

    const MObject mesh = copyOfPolygon(tessellator);
    deleteNodes(extrude + " " + tessellator + " " + rebuild);
    return mesh;
}

MObject tessellatedSurface(const MPlug& surface)
{
    const MString tessellator = createTessellator();
    set(tessellator, ".normalizeTrimmedUVRange 0");
    connect(surface.name(), tessellator + ".inputSurface");

    const MObject mesh = copyOfPolygon(tessellator);
    deleteNodes(tessellator);
    return mesh;
}
