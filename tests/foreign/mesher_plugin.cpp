// A mesh generator and a mesh modifier.
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPlug.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

// a strip of quads along x, each one unit wide, the rows at y = 0 and y = 1
class stripMaker : public MPxNode
{
public:
    static void* creator() { return new stripMaker(); }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& data) override;

    static const MTypeId id;
    static MObject quads;
    static MObject outMesh;
};

const MTypeId stripMaker::id(0x00070f10);
MObject stripMaker::quads;
MObject stripMaker::outMesh;

MStatus stripMaker::initialize()
{
    MFnNumericAttribute numeric;
    quads = numeric.create("quads", "q", MFnNumericData::kInt, 2);
    numeric.setMin(1);
    numeric.setKeyable(true);
    addAttribute(quads);
    MFnTypedAttribute typed;
    outMesh = typed.create("outMesh", "om", MFnData::kMesh);
    typed.setStorable(false);
    typed.setWritable(false);
    addAttribute(outMesh);
    attributeAffects(quads, outMesh);
    return MS::kSuccess;
}

MStatus stripMaker::compute(const MPlug& plug, MDataBlock& data)
{
    if (plug != outMesh)
        return MS::kUnknownParameter;
    MStatus stat;
    int n = data.inputValue(quads, &stat).asInt();
    if (MS::kSuccess != stat)
        return stat;

    MFloatPointArray points;
    MIntArray counts(n, 4), connects;
    MFloatArray us, vs;
    for (int x = 0; x <= n; ++x) {
        points.append(MFloatPoint(float(x), 0.0f, 0.0f));
        points.append((float)x, 1.0f, 0.0f);
        us.append(float(x) / n);
        vs.append(0.0f);
        us.append(float(x) / n);
        vs.append(1.0f);
    }
    for (int q = 0; q < n; ++q) {
        int corner[] = {2 * q, 2 * q + 2, 2 * q + 3, 2 * q + 1};
        for (int c : corner)
            connects.append(c);
    }

    MFnMeshData dataCreator;
    MObject newOutputData = dataCreator.create(&stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    MFnMesh meshFn;
    meshFn.create(points.length(), counts.length(), points, counts, connects, us, vs, newOutputData, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    CHECK_MSTATUS(meshFn.assignUVs(counts, connects));

    MDataHandle handle = data.outputValue(outMesh, &stat);
    handle.set(newOutputData);
    data.setClean(plug);
    return MS::kSuccess;
}

// moves vertices along their normals, colours by the number of faces around, slides UVs, bends the border back
class inflate : public MPxNode
{
public:
    static void* creator() { return new inflate(); }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& data) override;
    static MTypeId id;
    static MObject inMesh, amount, outMesh, area, border;
};

MTypeId inflate::id(0x00070f11);
MObject inflate::inMesh, inflate::amount, inflate::outMesh, inflate::area, inflate::border;

MStatus inflate::initialize()
{
    MFnTypedAttribute typed;
    MFnNumericAttribute numeric;
    inMesh = typed.create("inMesh", "im", MFnMeshData::kMesh);
    outMesh = typed.create("outMesh", "om", MFnMeshData::kMesh);
    typed.setStorable(false);
    typed.setWritable(false);
    amount = numeric.create("amount", "am", MFnNumericData::kDouble, 0.5);
    numeric.setKeyable(true);
    area = numeric.create("area", "ar", MFnNumericData::kDouble, 0.0);
    numeric.setWritable(false);
    border = numeric.create("border", "bo", MFnNumericData::kInt, 0);
    numeric.setWritable(false);
    CHECK_MSTATUS(addAttribute(inMesh));
    CHECK_MSTATUS(addAttribute(amount));
    CHECK_MSTATUS(addAttribute(outMesh));
    CHECK_MSTATUS(addAttribute(area));
    CHECK_MSTATUS(addAttribute(border));
    attributeAffects(inMesh, outMesh);
    attributeAffects(amount, outMesh);
    attributeAffects(inMesh, area);
    attributeAffects(inMesh, border);
    return MStatus::kSuccess;
}

MStatus inflate::compute(const MPlug& plug, MDataBlock& data)
{
    MStatus stat;
    if (plug == area || plug == border) {
        MObject mesh = data.inputValue(inMesh, &stat).asMesh();
        if (mesh.isNull())
            return MS::kFailure;
        double sum = 0;
        for (MItMeshPolygon faces(mesh); !faces.isDone(); faces.next()) {
            double one = 0;
            faces.getArea(one);
            sum += one;
        }
        int rim = 0;
        for (MItMeshEdge edges(mesh); !edges.isDone(); edges.next())
            rim += edges.onBoundary() ? 1 : 0;
        data.outputValue(area).setDouble(sum);
        data.outputValue(border).setInt(rim);
        data.setClean(area);
        data.setClean(border);
        return MS::kSuccess;
    }
    if (plug != outMesh)
        return MS::kUnknownParameter;

    MDataHandle inHandle = data.inputValue(inMesh, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    MDataHandle outHandle = data.outputValue(outMesh, &stat);
    outHandle.copy(inHandle);
    MObject mesh = outHandle.asMesh();
    MFnMesh meshFn(mesh, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    const double by = data.inputValue(amount).asDouble();

    MColorArray colors;
    MIntArray   ids;
    MItMeshVertex vertexIt(mesh, &stat);
    for (; !vertexIt.isDone(); vertexIt.next()) {
        MPoint  p = vertexIt.position(MSpace::kObject);
        MVector n;
        vertexIt.getNormal(n, MSpace::kObject);
        p += n * by;
        vertexIt.setPosition(p);
        int around = 0;
        vertexIt.numConnectedFaces(around);
        colors.append(MColor(around == 1 ? 1.0f : 0.0f, around == 2 ? 1.0f : 0.0f, 0.0f));
        ids.append(vertexIt.index());
    }

    MPointArray points;
    meshFn.getPoints(points);
    for (unsigned i = 0; i < points.length(); ++i)
        points[i].x *= 2.0;
    CHECK_MSTATUS(meshFn.setPoints(points));
    MString set("counts");
    CHECK_MSTATUS(meshFn.createColorSetDataMesh(set));
    CHECK_MSTATUS(meshFn.setVertexColors(colors, ids));

    MFloatArray u, v;
    CHECK_MSTATUS(meshFn.getUVs(u, v));
    for (unsigned i = 0; i < u.length(); ++i)
        u[i] += 10.0f;
    CHECK_MSTATUS(meshFn.setUVs(u, v));
    meshFn.updateSurface();
    outHandle.setClean();
    return stat;
}

MStatus initializePlugin(MObject obj)
{
    MFnPlugin plugin(obj, "Somebody", "1.0", "Any");
    MStatus status = plugin.registerNode("stripMaker", stripMaker::id, &stripMaker::creator, &stripMaker::initialize,
                                         MPxNode::kDependNode);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    const MString classification("utility/general");
    status = plugin.registerNode("inflate", inflate::id, inflate::creator, inflate::initialize, MPxNode::kDependNode,
                                 &classification);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MGlobal::displayInfo(MString("mesher ") + plugin.version() + " by " + plugin.vendor());
    return status;
}

MStatus uninitializePlugin(MObject obj)
{
    MFnPlugin plugin(obj);
    MStatus status = plugin.deregisterNode(inflate::id);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    status = plugin.deregisterNode(stripMaker::id);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    return status;
}
