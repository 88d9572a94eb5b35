#include "generators/copier.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MComputation.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "core/attr.h"
#include "core/node.h"
#include "core/parallel.h"
#include "generators/copying.h"

static_assert(sizeof(MVector) == 3 * sizeof(double));

namespace {

attr::Row timeRow(MObject& attribute, const char* longName, const char* shortName)
{
    MFnUnitAttribute fn;
    attribute = fn.create(longName, shortName, MFnUnitAttribute::kTime, 0.0);
    fn.setKeyable(true);
    return {&attribute, attr::kControl};
}

int toInt(double value)
{
    return std::isnan(value) ? 0 : int(std::clamp(value, double(INT_MIN), double(INT_MAX)));
}

/// By position in the data block. Plugs of their own count those elements first that were evaluated before.
std::vector<MPlug> elementsOf(MArrayDataHandle& handle, const MPlug& multi)
{
    std::vector<MPlug> elements;
    for (unsigned int e = 0; e < handle.elementCount(); ++e) {
        handle.jumpToArrayElement(e);
        elements.push_back(multi.elementByLogicalIndex(handle.elementIndex()));
    }
    return elements;
}

} // namespace

MStatus copier::initialize()
{
    const auto doublesOrVectors = {MFnData::kDoubleArray, MFnData::kVectorArray};
    using attr::kInput, attr::kOutput;
    const attr::Row rows[] = {
        attr::numeric(aCount, "count", "cnt", MFnNumericData::kInt, 0.0, kOutput),
        attr::typed(aInstancerData, "instancerData", "ins", MFnData::kDynArrayAttrs, kOutput),
        attr::typed(aOutMesh, "outputMesh", "out", MFnData::kMesh, kOutput),
        attr::typed(aComponentList, "componentList", "cl", MFnData::kComponentList, kOutput),
        attr::numeric(aEnvelope, "envelope", "env", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::multi(attr::typed(aInMesh, "inputMesh", "in", MFnData::kMesh, kInput)),
        attr::typed(aIndexArray, "indexArray", "idx", MFnData::kDoubleArray, kInput),
        attr::typed(aPosArray, "posArray", "pos", MFnData::kVectorArray, kInput),
        attr::enumeration(aOrient, "orient", "ori", {{"orient by Aim & Up", 0}, {"orient by Rot", 1}}, 0, attr::kControl),
        attr::typed(aAimArray, "aimArray", "aim", MFnData::kVectorArray, kInput),
        attr::typed(aUpArray, "upArray", "up", MFnData::kVectorArray, kInput),
        attr::typed(aRotArray, "rotArray", "rot", MFnData::kVectorArray, kInput),
        attr::enumeration(aRotOrder, "rotOrder", "ro",
                          {{"XYZ", 0}, {"YZX", 1}, {"ZXY", 2}, {"XZY", 3}, {"YXZ", 4}, {"ZYX", 5}}, 0, attr::kControl),
        attr::enumeration(aRotUnits, "rotUnits", "ru", {{"degrees", 0}, {"radians", 1}}, 0, attr::kControl),
        attr::typed(aUvArray, "uvArray", "uvs", MFnData::kDoubleArray, kInput),
        attr::typed(aScaleArray, "scaleArray", "scl", MFnData::kVectorArray, kInput),
        attr::typed(aUniformScaleArray, "uniformScaleArray", "uScl", MFnData::kDoubleArray, kInput),
        timeRow(aTime, "time", "t"),
        attr::numeric(aToggleTimeShift, "toggleTimeShift", "tts", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::typed(aTimeShift, "timeShift", "ts", MFnData::kDoubleArray, kInput),
        attr::numeric(aOriginalVertexColor, "originalVertexColor", "ovc", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aInheritVertexColor, "inheritVertexColor", "ivc", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::generic(aRgbArray, "rgbArray", "rgb", doublesOrVectors, kInput),
        attr::multi(attr::generic(aInDataPP, "inDataPP", "idpp", doublesOrVectors, kInput)),
        attr::multi(attr::typed(aOutDataPP, "outDataPP", "odpp", MFnData::kDoubleArray, kOutput)),
        attr::numeric(aToggleUV, "toggleUV", "tuv", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::numeric(aToggleSoftHard, "toggleSoftHard", "tsh", MFnNumericData::kBoolean, 0.0, attr::kControl),
        attr::multi(attr::message(aOverride, "override", "overide", kInput)),   // scenes have the short name like that
        attr::numeric(aSeed, "seed", "seed", MFnNumericData::kInt, 12345.0, attr::kControl),
        attr::numeric(aMinimum, "minimum", "min", MFnNumericData::kDouble, 0.0, attr::kControl),
        attr::numeric(aMaximum, "maximum", "max", MFnNumericData::kDouble, 1.0, attr::kControl),
        attr::numeric(aSkipElementsWithZeroSurfaceArea, "skipElementsWithZeroSurfaceArea", "sewzsa",
                      MFnNumericData::kBoolean, 1.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus copier::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking)                                   // node state
        return MS::kUnknownParameter;
    if (plug == aInstancerData)                                          // plug test: the mesh and what goes with it
        return writeInstancer(block);                                    // are filled in one run
    if (plug == aComponentList)                                          // there for connections of old scenes
        return MS::kSuccess;
    if (!isAnyOf(plug, {&aOutMesh, &aCount, &aOutDataPP}))
        return MS::kUnknownParameter;

    if (!block.inputValue(aEnvelope).asBool() || block.inputArrayValue(aInMesh).elementCount() == 0)   // switch
        return createEmptyMesh(block);
    const ArrayView positions = connectedArray(block, aPosArray, {MFn::kVectorArrayData});
    MMatrixArray    matrices;                                            // work
    if (positions.length == 0 || !lengthFits(plug, positions.length, 16) || !placeCopies(block, positions, matrices))
        return createEmptyMesh(block);

    const copying::Look look = readLook(block, positions.length);
    const DataOfCopies  data = readData(block, positions.length);
    copying::Gathered   gathered;
    MComputation        computation;
    computation.beginComputation(false, true);
    if (!gather(plug, block, matrices, look, computation, gathered))
        return createEmptyMesh(block);
    const MObject mesh = copying::merge(gathered, look, matrices, computation);
    computation.endComputation();
    if (mesh.isNull()) {
        warn(plug, ": There is no memory for the copies.");
        return createEmptyMesh(block);
    }

    block.outputValue(aOutMesh).set(mesh);                               // write
    block.outputValue(aCount).set(int(positions.length));
    writeData(data, gathered);
    return MS::kSuccess;
}

/// The array of an attribute that has a connection; none without one.
ArrayView copier::connectedArray(MDataBlock& block, const MObject& attribute, std::initializer_list<MFn::Type> kinds) const
{
    return MPlug(thisMObject(), attribute).isConnected() ? viewArray(block, attribute, kinds) : ArrayView();
}

/// An array made to fit: cut, or padded with zero vectors.
MVectorArray copier::vectorsOfCopies(MDataBlock& block, const MObject& attribute, unsigned int count) const
{
    const ArrayView    view = connectedArray(block, attribute, {MFn::kVectorArrayData});
    const std::size_t  given = std::min(view.length, count);
    MVectorArray       vectors(count);
    if (given > 0)
        std::copy_n(view.doubles, 3 * given, &vectors[0].x);
    return vectors;
}

MDoubleArray copier::doublesOfCopies(MDataBlock& block, const MObject& attribute, unsigned int count) const
{
    const ArrayView   view = connectedArray(block, attribute, {MFn::kDoubleArrayData});
    const std::size_t given = std::min(view.length, count);
    MDoubleArray      values(count);
    if (given > 0)
        std::copy_n(view.doubles, given, &values[0]);
    return values;
}

void copier::randomTimeShift(MDoubleArray& shifts, MDataBlock& block) const
{
    const std::vector<double> drawn =
        copies::randomShifts(block.inputValue(aSeed).asInt(), block.inputValue(aMinimum).asDouble(),
                             block.inputValue(aMaximum).asDouble(), shifts.length());
    for (unsigned int i = 0; i < shifts.length(); ++i)
        shifts[i] = drawn[i];
}

MStatus copier::createEmptyMesh(MDataBlock& block)
{
    block.outputValue(aOutMesh).set(meshFrom({}));
    block.outputValue(aCount).set(0);
    block.setClean(aOutMesh);
    block.setClean(aCount);
    writeData({}, {});
    return MS::kSuccess;
}

MStatus copier::writeInstancer(MDataBlock& block)
{
    MFnArrayAttrsData  arrays;
    const MObject      data = arrays.create();
    const unsigned int count = connectedArray(block, aPosArray, {MFn::kVectorArrayData}).length;
    const auto         put = [&](const char* name, const MVectorArray& vectors) { arrays.vectorArray(name).copy(vectors); };

    put("position", vectorsOfCopies(block, aPosArray, count));
    if (block.inputValue(aOrient).asShort() == 0) {
        put("aimDirection", vectorsOfCopies(block, aAimArray, count));
        put("aimWorldUp", vectorsOfCopies(block, aUpArray, count));
    } else {
        put("rotation", vectorsOfCopies(block, aRotArray, count));
    }
    MVectorArray scales(count, MVector(1.0, 1.0, 1.0));
    if (MPlug(thisMObject(), aScaleArray).isConnected())
        scales = vectorsOfCopies(block, aScaleArray, count);
    if (MPlug(thisMObject(), aUniformScaleArray).isConnected()) {
        const MDoubleArray factors = doublesOfCopies(block, aUniformScaleArray, count);
        for (unsigned int i = 0; i < count; ++i)
            scales[i] *= factors[i];
    }
    put("scale", scales);

    const MDoubleArray indices = doublesOfCopies(block, aIndexArray, count);
    MIntArray          objects(count);
    for (unsigned int i = 0; i < count; ++i)
        objects[i] = toInt(indices[i]);
    arrays.intArray("objectIndex").copy(objects);

    block.outputValue(aInstancerData).set(data);
    return block.setClean(aInstancerData);
}

copying::Look copier::readLook(MDataBlock& block, unsigned int count) const
{
    copying::Look look;
    look.wanted.colors = block.inputValue(aOriginalVertexColor).asBool();
    look.wanted.smooth = block.inputValue(aToggleSoftHard).asBool();
    look.wanted.uvs = block.inputValue(aToggleUV).asBool();
    if (block.inputValue(aInheritVertexColor).asBool() && MPlug(thisMObject(), aRgbArray).isConnected()) {
        const ArrayView rgb = viewArray(block, aRgbArray, {MFn::kDoubleArrayData, MFn::kVectorArrayData});
        look.colors = copies::colorsOfCopies(rgb.doubles, rgb.valueCount(), rgb.kind == MFn::kVectorArrayData, count);
    }
    if (MPlug(thisMObject(), aUvArray).isConnected()) {
        const ArrayView uvs = viewArray(block, aUvArray, {MFn::kDoubleArrayData});
        look.uvs.assign(2 * std::size_t(count), 0.0);
        if (uvs.length > 0)
            std::copy_n(uvs.doubles, std::min<std::size_t>(uvs.length, look.uvs.size()), look.uvs.begin());
    }
    return look;
}

copier::DataOfCopies copier::readData(MDataBlock& block, unsigned int count) const
{
    DataOfCopies     data;
    const MPlug      elements(thisMObject(), aInDataPP);
    MArrayDataHandle handle = block.inputArrayValue(aInDataPP);
    for (unsigned int e = 0; e < handle.elementCount(); ++e) {
        handle.jumpToArrayElement(e);
        const unsigned int logical = handle.elementIndex();
        if (!elements.elementByLogicalIndex(logical).isConnected())
            continue;
        const ArrayView array = viewArray(handle.inputValue().data());
        if (array.isOneOf({MFn::kDoubleArrayData, MFn::kVectorArrayData}))
            data[logical] = copies::dataOfCopies(array.doubles, array.valueCount(), array.kind == MFn::kVectorArrayData, count);
    }
    return data;
}

/// Of the extractors in `override` the attribute that tells them the copy.
MPlugArray copier::extractorIndices() const
{
    MPlugArray  indices;
    const MPlug elements(thisMObject(), aOverride);
    for (unsigned int e = 0; e < elements.numConnectedElements(); ++e) {
        MPlugArray sources;
        if (!elements.connectionByPhysicalIndex(e).connectedTo(sources, true, false))
            continue;
        const MFnDependencyNode node(sources[0].node());
        if (node.typeName() == "extractor")
            indices.append(node.findPlug("index", false));
    }
    return indices;
}

/// The copies that go into the result, with their sources read: each once, or with time shift for every copy at a time
/// of its own. False, with a warning, if the result would be too large.
bool copier::gather(const MPlug& plug, MDataBlock& block, const MMatrixArray& matrices, const copying::Look& look,
                    MComputation& computation, copying::Gathered& gathered) const
{
    const unsigned int count = matrices.length();
    const MDoubleArray indices = doublesOfCopies(block, aIndexArray, count);
    const bool         shifted = block.inputValue(aToggleTimeShift).asBool();
    const bool         skip = block.inputValue(aSkipElementsWithZeroSurfaceArea).asBool();
    const MTime        time = block.inputValue(aTime).asTime();
    MDoubleArray       shifts(shifted ? count : 0);
    if (shifted && MPlug(thisMObject(), aTimeShift).isConnected())
        shifts = doublesOfCopies(block, aTimeShift, count);
    else
        randomTimeShift(shifts, block);
    MPlugArray extractors = extractorIndices();

    MArrayDataHandle                    inputs = block.inputArrayValue(aInMesh);
    const std::vector<MPlug>            elements = elementsOf(inputs, MPlug(thisMObject(), aInMesh));
    std::vector<const copying::Source*> read(elements.size(), nullptr);
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int e = 0; e < extractors.length(); ++e)
            extractors[e].setInt(int(i));
        const int source = copies::sourceOf(indices[i], read.size());
        if (source == copies::kNoSource || (skip && copies::lacksSurface(matrices[i].matrix)))
            continue;
        const MPlug& element = elements[source];
        if (!element.isConnected())
            continue;
        if (shifted) {
            const double     shift = std::isfinite(shifts[i]) ? shifts[i] : 0.0;
            const MDGContext context(time + MTime(shift, MTime::kSeconds));
            MDataHandle      handle = element.asMDataHandle(context);
            read[source] = &gathered.sources.emplace_back(readParts(handle.asMesh(), look.wanted));
            element.destructHandle(handle);
        } else if (!read[source]) {
            inputs.jumpToElement(element.logicalIndex());
            read[source] = &gathered.sources.emplace_back(readParts(inputs.inputValue().asMesh(), look.wanted));
        }
        gathered.add(*read[source], i, look);
        if (!lengthFits(plug, gathered.longest(), 1))
            return false;
        gathered.interrupted = computation.isInterruptRequested();
        if (gathered.interrupted)
            break;
    }
    return true;
}

/// The data of each copy on all of its points. Elements without data become empty.
void copier::writeData(const DataOfCopies& data, const copying::Gathered& gathered) const
{
    const MPlug elements(thisMObject(), aOutDataPP);
    for (unsigned int e = 0; e < elements.numElements(); ++e) {
        MPlug element = elements.elementByPhysicalIndex(e);
        if (!data.count(element.logicalIndex()))
            element.setMObject(OutArray(OutArray::kDoubles).data());
    }
    for (const auto& [logical, values] : data) {
        OutArray out(OutArray::kDoubles);
        double*  next = out.resize(static_cast<unsigned int>(4 * gathered.total.points));
        for (const copying::Placed& placed : gathered.placed) {
            copies::repeat(&values[4 * std::size_t(placed.copy)], placed.source->pointCount, next);
            next += 4 * placed.source->pointCount;
        }
        elements.elementByLogicalIndex(logical).setMObject(out.data());
    }
}
