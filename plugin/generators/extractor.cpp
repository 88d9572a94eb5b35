#include "generators/extractor.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnMesh.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <set>
#include <utility>

#include "core/attr.h"
#include "core/node.h"

namespace {

/// Positions, among the items in use, of all items; -1 for the rest.
class Renumbered
{
public:
    explicit Renumbered(unsigned int count) : numbers_(count, -1) {}
    void use(int item) { numbers_[item] = 0; }
    /// Numbers the items in use in their order and gives them.
    std::vector<unsigned int> finish()
    {
        std::vector<unsigned int> used;
        for (unsigned int i = 0; i < numbers_.size(); ++i)
            if (numbers_[i] == 0) {
                numbers_[i] = int(used.size());
                used.push_back(i);
            }
        return used;
    }
    int operator[](int item) const { return numbers_[item]; }

private:
    std::vector<int> numbers_;
};

/// First entry of each face in arrays that hold entries face after face.
std::vector<int> offsets(const MIntArray& counts)
{
    std::vector<int> first(1, 0);
    for (unsigned int f = 0; f < counts.length(); ++f)
        first.push_back(first.back() + counts[f]);
    return first;
}

/// These faces of a mesh with their points, colours and UVs. `points` gets the new number of each point.
MeshParts facesOf(const MeshParts& mesh, const int* begin, const int* end, Renumbered& points)
{
    MeshParts              piece;
    const std::vector<int> first = offsets(mesh.counts), firstUV = offsets(mesh.uvCounts);
    const bool             hasUVs = mesh.u.length() > 0, hasColors = mesh.colors.length() > 0;
    Renumbered             uvs(mesh.u.length());
    for (const int* f = begin; f != end; ++f) {
        for (int c = first[*f]; c < first[*f + 1]; ++c)
            points.use(mesh.connects[c]);
        for (int c = hasUVs ? firstUV[*f] : 0; hasUVs && c < firstUV[*f + 1]; ++c)
            uvs.use(mesh.uvIds[c]);
    }
    for (const unsigned int p : points.finish())
        piece.points.append(mesh.points[p]);
    for (const unsigned int uv : uvs.finish()) {
        piece.u.append(mesh.u[uv]);
        piece.v.append(mesh.v[uv]);
    }
    for (const int* f = begin; f != end; ++f) {
        piece.counts.append(mesh.counts[*f]);
        for (int c = first[*f]; c < first[*f + 1]; ++c) {
            piece.connects.append(points[mesh.connects[c]]);
            if (hasColors)
                piece.colors.append(mesh.colors[c]);
        }
        if (!hasUVs)
            continue;
        piece.uvCounts.append(mesh.uvCounts[*f]);
        for (int c = firstUV[*f]; c < firstUV[*f + 1]; ++c)
            piece.uvIds.append(uvs[mesh.uvIds[c]]);
    }
    return piece;
}

/// The edges of the piece that are hard in the mesh.
void copyHardEdges(const MObject& mesh, const MIntArray& smooth, const Renumbered& points, const MObject& piece)
{
    const MFnMesh                 from(mesh);
    MFnMesh                       to(piece);
    std::set<std::pair<int, int>> hard;
    int2                          ends;
    for (unsigned int e = 0; e < smooth.length(); ++e)
        if (!smooth[e] && from.getEdgeVertices(int(e), ends))
            hard.insert(std::minmax(points[ends[0]], points[ends[1]]));
    for (int e = 0; e < to.numEdges() && !hard.empty(); ++e)
        if (to.getEdgeVertices(e, ends))
            to.setEdgeSmoothing(e, hard.count(std::minmax(ends[0], ends[1])) == 0);
    to.cleanupEdgeSmoothing();
}

void copyColors(const MObject& mesh, const MColorArray& colors, const MObject& piece)
{
    MFnMesh   fn(piece);
    MString   name = MFnMesh(mesh).currentColorSetName();
    MIntArray ids(colors.length());
    for (unsigned int c = 0; c < ids.length(); ++c)
        ids[c] = int(c);
    fn.createColorSetDataMesh(name);
    fn.setColors(colors, &name);
    fn.assignColors(ids, &name);
}

MObject pieceOf(const MObject& mesh, const MeshParts& parts, const int* begin, const int* end)
{
    Renumbered      points(parts.points.length());
    const MeshParts piece = facesOf(parts, begin, end, points);
    const MObject   result = meshFrom(piece);
    if (result.isNull())
        return meshFrom({});
    copyHardEdges(mesh, parts.smooth, points, result);
    if (piece.colors.length() > 0)
        copyColors(mesh, piece.colors, result);
    return result;
}

} // namespace

MStatus extractor::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::numeric(aIndex, "index", "idx", MFnNumericData::kInt, 0.0, attr::kControl),
        attr::enumeration(aMode, "mode", "m", {{"Mesh", kMesh}, {"Shell", kShell}, {"Face", kFace}}, kMesh, attr::kControl),
        attr::enumeration(aOutOfRange, "outOfRange", "oor",
                          {{"Clamp", pieces::kClamp}, {"Wrap", pieces::kWrap}, {"Empty", pieces::kEmpty}}, pieces::kClamp,
                          attr::kControl),
        attr::multi(attr::typed(aInMesh, "inMesh", "im", MFnData::kMesh, attr::kInput)),
        attr::typed(aOutMesh, "outMesh", "om", MFnData::kMesh, attr::kOutput),
        attr::numeric(aOutCount, "outCount", "ocnt", MFnNumericData::kInt, 0.0, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus extractor::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking)
        return MS::kUnknownParameter;
    if (!isAnyOf(plug, {&aOutMesh, &aOutCount}))                         // plug test: one run fills both
        return MS::kUnknownParameter;

    const std::vector<unsigned int> elements = connectedElements(); // connection test
    MDataHandle                     outMesh = block.outputValue(aOutMesh), outCount = block.outputValue(aOutCount);
    if (elements.empty()) {
        outCount.set(0);
        return outMesh.set(meshFrom({}));
    }
    MArrayDataHandle inputs = block.inputArrayValue(aInMesh);
    inputs.jumpToElement(elements[0]);
    const bool  through = state == kHasNoEffect || !block.inputValue(aEnvelope).asBool();
    const short mode = through ? short(kMesh) : block.inputValue(aMode).asShort();   // switch: the first mesh
    const int   index = through ? 0 : block.inputValue(aIndex).asInt();
    const int   outOfRange = block.inputValue(aOutOfRange).asShort();

    if (mode != kShell && mode != kFace) {                               // work, write
        const int item = pieces::chosen(index, int(elements.size()), outOfRange);
        outCount.set(int(elements.size()));
        if (item < 0)
            return outMesh.set(meshFrom({}));
        inputs.jumpToElement(elements[item]);
        return outMesh.copy(inputs.inputValue());
    }
    const MObject         mesh = inputs.inputValue().asMesh();
    const MeshParts       parts = readParts(mesh, {true, true, true});
    const pieces::Shells* shells = mode == kShell ? &shellsOf(parts) : nullptr;
    const int             count = shells ? shells->count() : int(parts.counts.length());
    const int             item = pieces::chosen(index, count, outOfRange);
    outCount.set(count);
    if (item < 0)
        return outMesh.set(meshFrom({}));
    const int* const begin = shells ? &shells->faces[shells->first[item]] : &item;
    const int* const end = begin + (shells ? shells->first[item + 1] - shells->first[item] : 1);
    return outMesh.set(pieceOf(mesh, parts, begin, end));
}

std::vector<unsigned int> extractor::connectedElements() const
{
    std::vector<unsigned int> elements;
    const MPlug               inMesh(thisMObject(), aInMesh);
    for (unsigned int e = 0; e < inMesh.numConnectedElements(); ++e)
        elements.push_back(inMesh.connectionByPhysicalIndex(e).logicalIndex());
    std::sort(elements.begin(), elements.end());
    return elements;
}

const pieces::Shells& extractor::shellsOf(const MeshParts& mesh)
{
    const unsigned int faces = mesh.counts.length(), corners = mesh.connects.length();
    const int*         counts = faces > 0 ? &mesh.counts[0] : nullptr;
    const int*         connects = corners > 0 ? &mesh.connects[0] : nullptr;
    if (pointCount_ == mesh.points.length() && std::equal(counts_.begin(), counts_.end(), counts, counts + faces)
        && std::equal(connects_.begin(), connects_.end(), connects, connects + corners))
        return shells_;
    counts_.assign(counts, counts + faces);
    connects_.assign(connects, connects + corners);
    pointCount_ = mesh.points.length();
    shells_ = pieces::shellsOf(counts, faces, connects, pointCount_);
    return shells_;
}
