#include "generators/shell.h"

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MColorArray.h>
#include <maya/MDagPath.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVectorArray.h>

#include <algorithm>

#include "core/arrays.h"
#include "core/attr.h"
#include "core/node.h"
#include "core/tessellation.h"
#include "generators/shellSteps.h"

namespace {

enum Mode : short { kUvShells = 0, kPolygonShells = 1 };

constexpr double kRadians = 0.0174532925;   // of a degree, to the digits that saved scenes rely on

// ---- the mesh as shells ---------------------------------------------------------------------------------------------

shells::Faces facesOf(const MFnMesh& mesh)
{
    MIntArray counts, vertices, uvCounts, uvs;
    mesh.getVertices(counts, vertices);
    const bool    hasUvs = mesh.getAssignedUVs(uvCounts, uvs) && uvCounts.length() == counts.length();
    shells::Faces faces;
    faces.vertexCount = static_cast<std::size_t>(mesh.numVertices());
    unsigned int corner = 0, uv = 0;
    for (unsigned int f = 0; f < counts.length(); ++f) {
        const bool has = hasUvs && uvCounts[f] > 0;
        for (int k = 0; k < counts[f]; ++k, ++corner) {
            faces.vertices.push_back(vertices[corner]);
            faces.uvs.push_back(has ? uvs[uv++] : -1);
        }
        faces.first.push_back(corner);
    }
    return faces;
}

shells::Shells uvShells(const MFnMesh& mesh, const shells::Faces& faces)
{
    MIntArray    ids;
    unsigned int count = 0;
    if (!mesh.getUvShellsIds(ids, count))
        return {};
    std::vector<int> shellOfUv;
    for (unsigned int i = 0; i < ids.length(); ++i)
        shellOfUv.push_back(ids[i]);
    return shells::ofUvs(faces, shellOfUv, count);
}

/// A mesh in the scene that shows what drives a plug, while it lives.
class SceneMesh
{
public:
    explicit SceneMesh(const MPlug& source) : name_(tessellation::createNode("mesh"))
    {
        MGlobal::executeCommand("listRelatives -pa -p " + name_, parents_, false, false);
        tessellation::connect(path(source), name_ + ".inMesh");
    }
    ~SceneMesh()
    {
        if (parents_.length() > 0)
            tessellation::deleteNodes(parents_[0]);
        else if (name_.length() > 0)
            tessellation::deleteNodes(name_);
    }
    SceneMesh(const SceneMesh&) = delete;
    SceneMesh& operator=(const SceneMesh&) = delete;

    /// The faces connected to one; none if the host cannot tell.
    std::vector<int> pieceOf(int face) const
    {
        MString command("polySelect -ns -ets ");
        command += face;
        MIntArray        faces;
        std::vector<int> piece;
        if (MGlobal::executeCommand(command + " " + name_, faces, false, false))
            for (unsigned int i = 0; i < faces.length(); ++i)
                piece.push_back(faces[i]);
        return piece;
    }

private:
    /// As commands find it, be there several objects of its name.
    static MString path(const MPlug& plug)
    {
        MDagPath dag;
        if (!plug.node().hasFn(MFn::kDagNode) || !MDagPath::getAPathTo(plug.node(), dag))
            return plug.name();
        return dag.partialPathName() + "." + plug.partialName(false, true, true, false, true, true);
    }

    MString      name_;
    MStringArray parents_;
};

/// As the host tells what is connected, which asks for a mesh in the scene.
shells::Shells connectedPieces(const MPlug& destination, const shells::Faces& faces)
{
    MPlugArray     sources;
    shells::Shells found;
    if (faces.count() > 0 && destination.connectedTo(sources, true, false) && sources.length() > 0) {
        const SceneMesh mesh(sources[0]);
        shells::ofPieces(faces, [&](int face) { return mesh.pieceOf(face); }, found);
    }
    return found;
}

// ---- values -----------------------------------------------------------------------------------------------------------

/// One entry a shell, or what a shell has that the array does not reach.
struct ShellValues
{
    ArrayView array;
    unsigned  stride;

    bool          has(std::size_t shell) const { return (shell + 1) * stride <= array.valueCount(); }
    const double* at(std::size_t shell) const { return array.doubles + shell * stride; }
};

ShellValues vectorsOf(MDataBlock& block, const MObject& attribute)
{
    return {viewArray(block, attribute, {MFn::kVectorArrayData}), 3};
}

ShellValues doublesOf(MDataBlock& block, const MObject& attribute, unsigned stride)
{
    return {viewArray(block, attribute, {MFn::kDoubleArrayData}), stride};
}

std::vector<shells::Move> movesOf(MDataBlock& block, const std::vector<shells::Box>& boxes)
{
    const ShellValues positions = vectorsOf(block, shell::aInPosPP), rotations = vectorsOf(block, shell::aInRotationPP),
                      scales = vectorsOf(block, shell::aInScalePP);
    std::vector<shells::Move> moves(boxes.size());
    for (std::size_t s = 0; s < boxes.size(); ++s) {
        MTransformationMatrix transform;
        if (rotations.has(s)) {
            const double* degrees = rotations.at(s);
            const double  radians[3] = {degrees[0] * kRadians, degrees[1] * kRadians, degrees[2] * kRadians};
            transform.setRotation(radians, MTransformationMatrix::kXYZ);
        }
        if (scales.has(s))
            transform.setScale(scales.at(s), MSpace::kTransform);
        const MMatrix matrix = transform.asMatrix();
        for (int r = 0; r < 3; ++r)
            std::copy_n(matrix.matrix[r], 3, moves[s].matrix[r]);
        std::copy_n(positions.has(s) ? positions.at(s) : boxes[s].center, 3, moves[s].target);
    }
    return moves;
}

template <class Vectors>
void addVectors(const Vectors& vectors, std::vector<double>& xyz)
{
    for (unsigned int i = 0; i < vectors.length(); ++i)
        for (unsigned int k = 0; k < 3; ++k)
            xyz.push_back(static_cast<double>(vectors[i][k]));
}

std::vector<double> positionsOf(const MFnMesh& mesh)
{
    MPointArray         points;
    std::vector<double> xyz;
    mesh.getPoints(points);
    addVectors(points, xyz);
    return xyz;
}

/// The mean direction of the tangents of a vertex's faces.
std::vector<double> vertexTangents(const MFnMesh& mesh, const shells::Faces& faces)
{
    MFloatVectorArray   corners;
    std::vector<double> xyz(3 * faces.vertexCount, 0.0);
    mesh.getTangents(corners);
    for (unsigned int c = 0; c < std::min<std::size_t>(corners.length(), faces.vertices.size()); ++c)
        for (unsigned int k = 0; k < 3; ++k)
            xyz[3 * static_cast<std::size_t>(faces.vertices[c]) + k] += static_cast<double>(corners[c][k]);
    for (std::size_t v = 0; v < faces.vertexCount; ++v) {
        MVector tangent(&xyz[3 * v]);
        if (tangent * tangent > 1e-20)
            tangent.normalize();
        tangent.get(*reinterpret_cast<double(*)[3]>(&xyz[3 * v]));
    }
    return xyz;
}

/// Colours are those of the mesh's table by their place in it, whatever vertex has them: scenes rely on it.
std::vector<double> tableColors(const MFnMesh& mesh)
{
    MColorArray         colors;
    std::vector<double> rgba;
    mesh.getColors(colors);
    for (int v = 0; v < mesh.numVertices(); ++v) {
        const MColor c = v < static_cast<int>(colors.length()) ? colors[static_cast<unsigned int>(v)] : MColor(0, 0, 0, 1);
        rgba.insert(rgba.end(), {double(c.r), double(c.g), double(c.b), double(c.a)});
    }
    return rgba;
}

/// The value of its shell for each vertex of the shells, in their order. A shell past the array has what its vertices have
/// in `own`, or `otherwise` without that.
std::vector<double> spread(const shells::Shells& found, const ShellValues& values, const std::vector<double>* own,
                           double otherwise = 0.0)
{
    std::vector<double> result;
    const std::size_t   stride = values.stride;
    result.reserve(stride * found.vertices.size());
    for (std::size_t s = 0; s < found.count(); ++s) {
        for (const int* v = found.begin(s); v != found.end(s); ++v) {
            if (!values.has(s) && !own) {
                result.insert(result.end(), stride, otherwise);
                continue;
            }
            const double* from = values.has(s) ? values.at(s) : &(*own)[stride * static_cast<std::size_t>(*v)];
            result.insert(result.end(), from, from + stride);
        }
    }
    return result;
}

/// The same for each vertex of the mesh; of several shells that share one the last counts.
void spreadOver(const shells::Shells& found, const ShellValues& values, std::vector<double>& own)
{
    for (std::size_t s = 0; s < found.count() && values.has(s); ++s)
        for (const int* v = found.begin(s); v != found.end(s); ++v)
            std::copy_n(values.at(s), values.stride, &own[values.stride * static_cast<std::size_t>(*v)]);
}

/// What the vertices of the shells get, in the order of the shells; empty for what is off.
struct Spread
{
    std::vector<double> positions, weights, rgba, normals, tangents, radii;
};

void transformShells(MDataBlock& block, MFnMesh& mesh, const shells::Shells& found, std::vector<shells::Box>& boxes,
                     std::vector<double>& xyz, Spread& out)
{
    shells::moveShells(found, movesOf(block, boxes), boxes, xyz, out.positions);
    MPointArray points;
    for (std::size_t v = 0; v < xyz.size(); v += 3)
        points.append(MPoint(xyz[v], xyz[v + 1], xyz[v + 2]));
    mesh.setPoints(points);
}

void setNormals(MDataBlock& block, MFnMesh& mesh, const shells::Shells& found, std::vector<double> own, Spread& out)
{
    const ShellValues given = vectorsOf(block, shell::aInNormalPP);
    out.normals = spread(found, given, &own);
    spreadOver(found, given, own);
    MVectorArray normals;
    MIntArray    ids;
    for (std::size_t v = 0; 3 * v < own.size(); ++v) {
        normals.append(MVector(&own[3 * v]));
        ids.append(static_cast<int>(v));
    }
    mesh.setVertexNormals(normals, ids);
}

void setColors(MDataBlock& block, MFnMesh& mesh, const shells::Shells& found, Spread& out)
{
    const ShellValues   given = doublesOf(block, shell::aInRgbaPP, 4);
    std::vector<double> own = tableColors(mesh);
    out.rgba = spread(found, given, &own);
    spreadOver(found, given, own);
    MColorArray colors;
    MIntArray   ids;
    for (std::size_t v = 0; 4 * v < own.size(); ++v) {
        const double* c = &own[4 * v];
        colors.append(MColor(float(c[0]), float(c[1]), float(c[2]), float(c[3])));
        ids.append(static_cast<int>(v));
    }
    mesh.setVertexColors(colors, ids);
}

/// Moves, colours and turns the normals of the mesh as the switches have it; boxes become those of moved shells.
Spread apply(MDataBlock& block, MFnMesh& mesh, const shells::Faces& faces, const shells::Shells& found,
             std::vector<shells::Box>& boxes, std::vector<double>& xyz)
{
    const auto          on = [&](const MObject& attribute) { return block.inputValue(attribute).asBool(); };
    Spread              out;
    std::vector<double> normals, tangents;   // of the mesh as it came, before it moves
    if (on(shell::aNormal)) {
        MFloatVectorArray vectors;
        mesh.getVertexNormals(false, vectors);
        addVectors(vectors, normals);
    }
    if (on(shell::aTangent)) {
        tangents = vertexTangents(mesh, faces);
        out.tangents = spread(found, vectorsOf(block, shell::aInTangentPP), &tangents);
    }
    if (on(shell::aTransform))
        transformShells(block, mesh, found, boxes, xyz, out);
    else
        out.positions = spread(found, {ArrayView(), 3}, &xyz);
    if (on(shell::aWeight))
        out.weights = spread(found, doublesOf(block, shell::aInWeightPP, 1), nullptr, 1.0);
    if (on(shell::aRadius))
        out.radii = spread(found, doublesOf(block, shell::aInRadiusPP, 1), nullptr, 1.0);
    if (on(shell::aNormal))
        setNormals(block, mesh, found, std::move(normals), out);
    if (on(shell::aRgba))
        setColors(block, mesh, found, out);
    return out;
}

// ---- writing ----------------------------------------------------------------------------------------------------------

MObject componentsOf(const int* begin, const int* end)
{
    MFnSingleIndexedComponent fn;
    MObject                   component = fn.create(MFn::kMeshVertComponent);
    if (begin != end)
        fn.addElements(MIntArray(begin, static_cast<unsigned int>(end - begin)));
    MFnComponentListData list;
    MObject              data = list.create();
    list.add(component);
    return data;
}

/// The part of a spread array that belongs to one shell.
MObject arrayOf(OutArray::Kind kind, const std::vector<double>& values, std::size_t stride, std::size_t first, std::size_t count)
{
    OutArray out(kind);
    if (!values.empty()) {
        const std::size_t each = kind == OutArray::kVectors ? 1 : stride;
        double*           to = out.resize(static_cast<unsigned int>(count * each));
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first * stride), count * stride, to);
    }
    return out.data();
}

void writeVectors(MDataBlock& block, const MObject& attribute, const std::vector<shells::Box>& boxes,
                  double (shells::Box::*part)[3])
{
    OutArray out(OutArray::kVectors);
    double*  to = out.resize(static_cast<unsigned int>(boxes.size()));
    for (const shells::Box& box : boxes)
        to = std::copy_n(box.*part, 3, to);
    out.publish(block, attribute);
}

void writeShells(MDataBlock& block, const shells::Shells& found, const std::vector<shells::Box>& boxes, const Spread& spread)
{
    MArrayDataHandle  list = block.outputArrayValue(shell::aOutShellData);
    MArrayDataBuilder builder = list.builder();   // elements that stay are those that others may be connected to
    for (unsigned int i = list.elementCount(); i-- > 0 && list.jumpToArrayElement(i);)
        if (list.elementIndex() >= found.count())
            builder.removeElement(list.elementIndex());
    for (std::size_t s = 0; s < found.count(); ++s) {
        MDataHandle       element = builder.addElement(static_cast<unsigned int>(s));
        const std::size_t first = found.first[s], count = found.size(s);
        const auto        put = [&](const MObject& attribute, OutArray::Kind kind, const std::vector<double>& all, std::size_t stride) {
            element.child(attribute).set(arrayOf(kind, all, stride, first, count));
        };
        element.child(shell::aOutComp).set(componentsOf(found.begin(s), found.end(s)));
        element.child(shell::aOutBoxCenter).set3Double(boxes[s].center[0], boxes[s].center[1], boxes[s].center[2]);
        element.child(shell::aOutBoxScale).set3Double(boxes[s].size[0], boxes[s].size[1], boxes[s].size[2]);
        put(shell::aOutPosPP, OutArray::kVectors, spread.positions, 3);
        put(shell::aOutWeightPP, OutArray::kDoubles, spread.weights, 1);
        put(shell::aOutRgbaPP, OutArray::kDoubles, spread.rgba, 4);
        put(shell::aOutNormalPP, OutArray::kVectors, spread.normals, 3);
        put(shell::aOutTangentPP, OutArray::kVectors, spread.tangents, 3);
        put(shell::aOutRadiusPP, OutArray::kDoubles, spread.radii, 1);
    }
    list.set(builder);
    list.setAllClean();
    writeVectors(block, shell::aOutCenters, boxes, &shells::Box::center);
    writeVectors(block, shell::aOutScales, boxes, &shells::Box::size);
    OutArray uvCounts(OutArray::kDoubles);
    std::copy(found.uvCounts.begin(), found.uvCounts.end(), uvCounts.resize(static_cast<unsigned int>(found.uvCounts.size())));
    uvCounts.publish(block, shell::aOutUvCounts);
    block.outputValue(shell::aOutCount).set(static_cast<int>(found.count()));
}

} // namespace

MStatus shell::initialize()
{
    const auto vectors = MFnData::kVectorArray, doubles = MFnData::kDoubleArray;
    const auto in = [](MObject& attribute, const char* longName, const char* shortName, MFnData::Type type) {
        return attr::typed(attribute, longName, shortName, type, attr::kInput);
    };
    const auto out = [](MObject& attribute, const char* longName, const char* shortName, MFnData::Type type) {
        return attr::typed(attribute, longName, shortName, type, attr::kOutput);
    };
    const auto flag = [](MObject& attribute, const char* longName, const char* shortName) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kBoolean, 0.0, attr::kControl);
    };
    const auto triple = [](MObject& attribute, MObject (&xyz)[3], const char* longName, const char* shortName) {
        const auto part = [&](int axis, const char* upper, const char* lower) {
            return attr::numeric(xyz[axis], (MString(longName) + upper).asChar(), (MString(shortName) + lower).asChar(),
                                 MFnNumericData::kDouble, 0.0, attr::kOutput);
        };
        return attr::tuple(attribute, longName, shortName, {part(0, "X", "x"), part(1, "Y", "y"), part(2, "Z", "z")},
                           attr::kOutput);
    };
    const attr::Row parts[] = {
        out(aOutComp, "outComponentList", "ocl", MFnData::kComponentList),
        triple(aOutBoxCenter, aOutBoxCenterXyz, "outBoundingBoxCenter", "obbc"),
        triple(aOutBoxScale, aOutBoxScaleXyz, "outBoundingBoxScale", "obbs"),
        out(aOutPosPP, "outPositionPP", "oppp", vectors),
        out(aOutWeightPP, "outWeightPP", "owpp", doubles),
        out(aOutRgbaPP, "outRgbaPP", "ocpp", doubles),
        out(aOutNormalPP, "outNormalPP", "onpp", vectors),
        out(aOutTangentPP, "outTangentPP", "otpp", vectors),
        out(aOutRadiusPP, "outRadiusPP", "orpp", doubles),
    };
    const attr::Row rows[] = {
        attr::generic(aInMesh, "inMesh", "im", {MFnData::kMesh}, attr::kInput),
        out(aOutMesh, "outMesh", "om", MFnData::kMesh),
        in(aInPosPP, "inPositionPP", "ippp", vectors),
        in(aInRotationPP, "inRotationPP", "irtpp", vectors),
        in(aInScalePP, "inScalePP", "ispp", vectors),
        in(aInWeightPP, "inWeightPP", "iwpp", doubles),
        in(aInRadiusPP, "inRadiusPP", "irdpp", doubles),
        in(aInRgbaPP, "inRgbaPP", "icpp", doubles),
        in(aInNormalPP, "inNormalPP", "inpp", vectors),
        in(aInTangentPP, "inTangentPP", "itpp", vectors),
        attr::enumeration(aMode, "mode", "mode", {{"uv shells", kUvShells}, {"polygon shells", kPolygonShells}}, kUvShells,
                          attr::kControl),
        flag(aTransform, "transform", "xform"),
        flag(aWeight, "weight", "wgt"),
        flag(aRgba, "rgba", "rgba"),
        flag(aNormal, "normal", "nml"),
        flag(aTangent, "tangent", "tgt"),
        flag(aRadius, "radius", "rad"),
        attr::multi(attr::compound(aOutShellData, "outShellData", "osd",
                                   {parts[0], parts[1], parts[2], parts[3], parts[4], parts[5], parts[6], parts[7], parts[8]},
                                   attr::kOutput)),
        out(aOutCenters, "outCenters", "oc", vectors),
        out(aOutScales, "outScales", "os", vectors),
        out(aOutUvCounts, "outUvCounts", "ouvc", doubles),
        attr::numeric(aOutCount, "outCount", "ocnt", MFnNumericData::kInt, 0.0, attr::kOutput),
    };
    MStatus status = attr::declare(rows);
    for (const attr::Row& row : rows) {   // each part of a shell is asked for by itself
        for (const attr::Row& part : parts)
            if (status && row.role != attr::kOutput)
                status = attributeAffects(*row.attribute, *part.attribute);
    }
    return status;
}

MStatus shell::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    const MPlug asked = plug.isChild() && !plug.parent().isElement() ? plug.parent() : plug;   // x, y or z of a box
    if (!isAnyOf(asked, {&aOutMesh, &aOutShellData, &aOutComp, &aOutBoxCenter, &aOutBoxScale, &aOutPosPP, &aOutWeightPP,
                         &aOutRgbaPP, &aOutNormalPP, &aOutTangentPP, &aOutRadiusPP, &aOutCenters, &aOutScales,
                         &aOutUvCounts, &aOutCount}))                    // plug test: one run fills all
        return MS::kUnknownParameter;

    MDataHandle inMesh = block.inputValue(aInMesh), outMesh = block.outputValue(aOutMesh);
    const MPlug source(thisMObject(), aInMesh);
    if (state == kHasNoEffect || !source.isConnected() || inMesh.type() != MFnData::kMesh) {
        outMesh.copy(inMesh);                                            // copy through, connection test
        writeShells(block, {}, {}, {});
        return MS::kSuccess;
    }

    MFnMeshData data;                                                    // work
    MObject     owner = data.create();
    MFnMesh     mesh;
    mesh.copy(inMesh.asMeshTransformed(), owner);
    mesh.setObject(owner);
    const shells::Faces      faces = facesOf(mesh);
    const bool               byUvs = block.inputValue(aMode).asShort() == kUvShells;
    const shells::Shells     found = byUvs ? uvShells(mesh, faces) : connectedPieces(source, faces);
    std::vector<double>      xyz = positionsOf(mesh);
    std::vector<shells::Box> boxes = shells::boxesOf(found, xyz);
    const Spread             spread = apply(block, mesh, faces, found, boxes, xyz);

    writeShells(block, found, boxes, spread);                            // write
    return outMesh.set(owner);
}
