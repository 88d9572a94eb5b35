#include "volumes/boundElement.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPlugArray.h>
#include <maya/MString.h>

#include <algorithm>

#include "core/node.h"

using volume::Vec;

namespace {

attr::Row scale(MObject& all, MObject (&axes)[3], const char* longName, const char* shortName)
{
    const auto axis = [&](int i, const char* upper, const char* lower) {
        return attr::numeric(axes[i], (MString(longName) + upper).asChar(), (MString(shortName) + lower).asChar(),
                             MFnNumericData::kDouble, 0.0, attr::kInput);
    };
    const attr::Row x = axis(0, "X", "x"), y = axis(1, "Y", "y"), z = axis(2, "Z", "z");
    return attr::compound(all, longName, shortName, {x, y, z}, attr::kInput);
}

Vec scaleValue(MDataHandle& control, const MObject& all, const MObject& x, const MObject& y, const MObject& z)
{
    MDataHandle handle = control.child(all);
    return {handle.child(x).asDouble(), handle.child(y).asDouble(), handle.child(z).asDouble()};
}

bool hasSource(const MPlug& plug)
{
    MPlugArray sources;
    return plug.connectedTo(sources, true, false) && sources.length() > 0;
}

void readControl(MDataHandle& control, const BoundAttributes& at, volume::Volume& volume)
{
    volume.kind = static_cast<volume::Kind>(control.child(at.type).asShort());
    volume.contained = control.child(at.contained).asBool();
    volume.capsule.top = control.child(at.topOffset).asDouble();
    volume.capsule.topScale = scaleValue(control, at.topScale, at.topScaleX, at.topScaleY, at.topScaleZ);
    volume.capsule.bottom = control.child(at.bottomOffset).asDouble();
    volume.capsule.bottomScale = scaleValue(control, at.bottomScale, at.bottomScaleX, at.bottomScaleY, at.bottomScaleZ);
    volume.direction = static_cast<volume::Direction>(control.child(at.normal).asShort());
}

/// "node:attribute" of the plug, then the text.
void warnOf(const MPlug& plug, const char* array)
{
    const MString node = nodeName(plug), name = plug.name();
    const auto    from = static_cast<int>(node.length()) + 1, to = static_cast<int>(name.length()) - 1;
    const MString attribute = from <= to ? name.substring(from, to) : MString();
    MGlobal::displayWarning(node + ":" + attribute + ": the " + array + " array length does not match the point count.");
}

/// One array of a cloud beside its positions: `stride` doubles an entry, `count` entries wanted.
ArrayView readArray(MDataHandle& data, const MObject& attribute, unsigned int stride, std::size_t count,
                    const char* name, const MPlug& plug)
{
    ArrayView array = viewArray(data.child(attribute).data());
    if (!array.doubles)
        array.length = 0;
    if (std::size_t{array.length} * array.stride != count * stride)
        warnOf(plug, name);
    array.length = static_cast<unsigned int>(std::min(std::size_t{array.length} * array.stride / stride, count));
    return array;
}

void appendNumbers(const ArrayView& array, std::size_t begin, std::size_t end, std::vector<double>& to)
{
    to.resize(end);
    std::copy_n(array.doubles, array.length, to.begin() + static_cast<std::ptrdiff_t>(begin));
}

void appendVectors(const ArrayView& array, std::size_t begin, std::size_t end, std::vector<Vec>& to)
{
    to.resize(end);
    for (unsigned int i = 0; i < array.length; ++i) {
        const double* v = array.doubles + std::size_t{3} * i;
        to[begin + i] = {v[0], v[1], v[2]};
    }
}

} // namespace

attr::Row BoundAttributes::row(bool withRadius)
{
    using attr::kInput;
    const auto real = [](MObject& attribute, const char* longName, const char* shortName) {
        return attr::numeric(attribute, longName, shortName, MFnNumericData::kDouble, 0.0, kInput);
    };
    MObject         top[3], bottom[3];
    const attr::Row topRow = scale(topScale, top, "boundTopCapScale", "bts");
    const attr::Row bottomRow = scale(bottomScale, bottom, "boundBottomCapScale", "bbs");
    topScaleX = top[0], topScaleY = top[1], topScaleZ = top[2];
    bottomScaleX = bottom[0], bottomScaleY = bottom[1], bottomScaleZ = bottom[2];

    const attr::Row envelopeRow = real(envelope, "boundEnvelope", "ben");
    const attr::Row typeRow = attr::numeric(type, "boundType", "btp", MFnNumericData::kShort, 0.0, kInput);
    const attr::Row containedRow =
        attr::numeric(contained, "boundContained", "bcnt", MFnNumericData::kBoolean, 0.0, kInput);
    const attr::Row topOffsetRow = real(topOffset, "boundTopCapOffset", "btso");
    const attr::Row bottomOffsetRow = real(bottomOffset, "boundBottomCapOffset", "bbso");
    const attr::Row normalRow = attr::numeric(normal, "boundNormal", "bnml", MFnNumericData::kShort, 0.0, kInput);
    const attr::Row radiusRow = withRadius ? real(radius, "boundRadius", "br") : normalRow;
    const attr::Row matrixRow = attr::matrix(matrix, "boundParentMatrix", "bpm", kInput);
    const attr::Row controlRow =
        withRadius ? attr::compound(control, "boundControlData", "bcd",
                                    {envelopeRow, typeRow, containedRow, topOffsetRow, topRow, bottomOffsetRow,
                                     bottomRow, normalRow, radiusRow}, kInput)
                   : attr::compound(control, "boundControlData", "bcd",
                                    {envelopeRow, typeRow, containedRow, topOffsetRow, topRow, bottomOffsetRow,
                                     bottomRow, normalRow}, kInput);
    const attr::Row dataRow = attr::compound(
        data, "boundDataPP", "bdpp",
        {attr::typed(positionPP, "boundPositionPP", "bppp", MFnData::kPointArray, kInput),
         attr::typed(normalPP, "boundNormalPP", "bnpp", MFnData::kVectorArray, kInput),
         attr::typed(radiusPP, "boundRadiusPP", "brpp", MFnData::kDoubleArray, kInput),
         attr::typed(weightPP, "boundWeightPP", "bwpp", MFnData::kDoubleArray, kInput),
         attr::typed(rgbaPP, "boundRgbaPP", "brgbapp", MFnData::kDoubleArray, kInput)}, kInput);
    return attr::multi(
        attr::compound(elements, "boundingObjects", "bos", {matrixRow, controlRow, dataRow}, kInput));
}

volume::Matrix toMatrix(const MMatrix& matrix)
{
    volume::Matrix out;
    matrix.get(out.m);
    return out;
}

BoundElement readBound(MArrayDataHandle& elements, unsigned int physical, const MPlug& multi,
                       const BoundAttributes& at)
{
    BoundElement element;
    elements.jumpToArrayElement(physical);
    element.plug = multi.elementByLogicalIndex(elements.elementIndex());
    if (!hasSource(element.plug))
        return element;
    element.handle = elements.inputValue();
    const MMatrix   matrix = element.handle.child(at.matrix).asMatrix();
    MDataHandle     control = element.handle.child(at.control);
    const double    envelope = control.child(at.envelope).asDouble();
    volume::Volume& volume = element.volume;
    volume.matrix = toMatrix(matrix);
    volume.origin = volume.matrix.row(3);
    if (!(envelope > 0.0))
        return element;
    volume.envelope = envelope;
    volume.flat = matrix.isSingular();
    volume.inverse = toMatrix(matrix.inverse());
    readControl(control, at, volume);
    if (volume.kind != volume::Kind::kCloud && !volume.flat)
        setBox(volume);
    return element;
}

void appendCloud(BoundElement& element, const BoundAttributes& at, CloudUse use, volume::Cloud& cloud)
{
    MDataHandle       data = element.handle.child(at.data);
    const ArrayView   points = viewArray(data.child(at.positionPP).data());
    const std::size_t count = points.doubles ? points.length : 0;
    const std::size_t begin = cloud.positions.size(), end = begin + count;
    const auto        read = [&](const MObject& attribute, unsigned int stride, const char* name) {
        return readArray(data, attribute, stride, count, name, element.plug);
    };

    cloud.positions.resize(end);
    for (std::size_t i = 0; i < count; ++i) {
        const double* p = points.doubles + std::size_t{points.stride} * i;
        cloud.positions[begin + i] = {p[0], p[1], p[2]};
    }
    if (use == CloudUse::kAll)
        appendVectors(read(at.normalPP, 3, "normalPP"), begin, end, cloud.normals);
    appendNumbers(read(at.radiusPP, 1, "radiusPP"), begin, end, cloud.radii);
    appendNumbers(read(at.weightPP, 1, "weightPP"), begin, end, cloud.weights);
    if (use == CloudUse::kAll) {
        const ArrayView rgba = read(at.rgbaPP, 4, "rgbaPP");
        cloud.rgba.resize(end);
        for (std::size_t i = 0; i < rgba.length; ++i)
            std::copy_n(rgba.doubles + 4 * i, 4, cloud.rgba[begin + i].begin());
    }
    element.volume.cloudBegin = begin;
    element.volume.cloudEnd = end;
    element.volume.box = volume::cloudBox(cloud.positions.data() + begin, cloud.radii.data() + begin, count);
}
