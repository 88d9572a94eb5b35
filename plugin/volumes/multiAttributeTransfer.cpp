#include "volumes/multiAttributeTransfer.h"

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MPlug.h>

#include <algorithm>
#include <vector>

#include "core/attr.h"
#include "core/node.h"
#include "core/ramp.h"
#include "volumes/geometryPoints.h"
#include "volumes/multiWeights.h"
#include "volumes/readVolumes.h"

namespace {

enum Mode : short { kWeightsPerComponent = 0, kWeightPerInfluence = 1 };

/// The weight list under construction: outWeightList[row].weights[column], rows ascending. Elements that are there
/// already are kept and written again, since others may be connected to them.
class WeightList
{
public:
    explicit WeightList(MDataBlock& block)
        : block_(block), list_(block.outputArrayValue(multiAttributeTransfer::aOutWgtList)), rows_(list_.builder())
    {
        for (unsigned int i = 0; i < list_.elementCount(); ++i) {
            list_.jumpToArrayElement(i);
            before_.push_back(list_.elementIndex());
        }
    }
    void add(unsigned int row, unsigned int column, double weight)
    {
        if (written_.empty() || row != written_.back())
            openRow(row);
        weights_.addElement(column).setFloat(static_cast<float>(weight));
    }
    /// Takes out what was there and was not added again.
    void write()
    {
        closeRow();
        for (auto row = before_.rbegin(); row != before_.rend(); ++row) {   // from the end, where nothing has to move up
            if (!std::binary_search(written_.begin(), written_.end(), *row))
                rows_.removeElement(*row);
        }
        list_.set(rows_);
        list_.setAllClean();
    }

private:
    void openRow(unsigned int row)
    {
        closeRow();
        row_ = MArrayDataHandle(rows_.addElement(row).child(multiAttributeTransfer::aOutWgt));
        weights_ = MArrayDataBuilder(&block_, multiAttributeTransfer::aOutWgt, 0);   // none of those before
        written_.push_back(row);
    }
    void closeRow()
    {
        if (!written_.empty())
            row_.set(weights_);
    }

    MDataBlock&               block_;
    MArrayDataHandle          list_, row_;
    MArrayDataBuilder         rows_, weights_;
    std::vector<unsigned int> before_, written_;
};

/// A closed surface repeats CVs, so that its points are not those of its tessellation.
bool isPeriodicSurface(MDataHandle geometry)
{
    if (geometry.type() != MFnData::kNurbsSurface)
        return false;
    const MFnNurbsSurface surface(geometry.asNurbsSurface());
    return surface.formInU() == MFnNurbsSurface::kPeriodic || surface.formInV() == MFnNurbsSurface::kPeriodic;
}

} // namespace

MStatus multiAttributeTransfer::initialize()
{
    const auto boolean = MFnNumericData::kBoolean;
    const std::initializer_list<MFnData::Type> geometry = {MFnData::kMesh, MFnData::kNurbsCurve,
                                                           MFnData::kNurbsSurface, MFnData::kVectorArray};
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", boolean, 1.0, attr::kControl),
        attr::generic(aInGeo, "inGeometry", "ig", geometry, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometry, attr::kOutput),
        attr::multi(attr::compound(
            aOutWgtList, "outWeightList", "owl",
            {attr::multi(attr::numeric(aOutWgt, "weights", "w", MFnNumericData::kFloat, 0.0, attr::kOutput))},
            attr::kOutput)),
        attr::enumeration(aUseComp, "useComponents", "uc",
                          {{"None", 0}, {"Input Components List", 1}, {"Input Object Group", 2}}, 0, attr::kControl),
        attr::generic(aInComp, "inComponents", "ic", {MFnData::kComponentList, MFnData::kIntArray}, attr::kInput),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::numeric(aProcessAll, "processAllComponents", "pac", boolean, 1.0, attr::kControl),
        attr::softMax(attr::atLeast(attr::numeric(aMaxInfluences, "maxInfluences", "mi", MFnNumericData::kInt, 5.0,
                                                  attr::kControl), 1.0), 10.0),
        attr::enumeration(aMode, "mode", "m",
                          {{"Weights Per Component", kWeightsPerComponent},
                           {"Weight Per Influence Per Component", kWeightPerInfluence}}, 0, attr::kControl),
        attr::enumeration(aFreePoints, "weightFreePointsTo", "wfpt",
                          {{"None", 0}, {"First Influence", 1}, {"Closest Influence", 2}}, 0, attr::kControl),
        attr::curveRamp(aKernel, "kernel", "k", attr::kControl),
        aBounds.row(true),
    };
    MStatus status = attr::declare(rows);
    for (const attr::Row& row : rows) {   // each weight is asked for by itself
        if (status && row.role != attr::kOutput)
            status = attributeAffects(*row.attribute, aOutWgt);
    }
    return status;
}

void multiAttributeTransfer::postConstructor()
{
    fillRamp(thisMObject(), aKernel,
             {CurveKey{0.0f, 1.0f, MRampAttribute::kSmooth}, CurveKey{1.0f, 0.0f, MRampAttribute::kLinear}});
}

MStatus multiAttributeTransfer::compute(const MPlug& plug, MDataBlock& block)
{
    const short state = nodeState(block);                                // node state
    if (state == kBlocking || !isAnyOf(plug, {&aOutGeo, &aOutWgt, &aOutWgtList}))   // plug test
        return MS::kUnknownParameter;

    block.outputValue(aOutGeo).copy(block.inputValue(aInGeo));           // copy through
    if (state == kHasNoEffect)
        return MS::kSuccess;
    if (MPlug(thisMObject(), aInGeo).isConnected() && block.inputValue(aEnvelope).asBool())   // connection, switch
        run(block);                                                      // work
    else
        WeightList(block).write();
    return MS::kSuccess;
}

void multiAttributeTransfer::run(MDataBlock& block)
{
    const MPlug    inGeo(thisMObject(), aInGeo);
    const MPlug    multi(thisMObject(), aBounds.elements);
    GeometryPoints points;
    WeightList     list(block);
    readGeometry(block, inGeo, {}, points);
    if (isPeriodicSurface(block.inputValue(aInGeo))) {
        warn(inGeo, ": inGeometry is periodic nurbs surface. Rebuild using \"End Conditions\" / \"Multiple Knots\" "
                    "options.");
        points.input = {};
    }
    const std::vector<char> selected = selectedPoints(block, inGeo, points, {aUseComp, aInComp, aGroupId});

    TransferVolumes volumes;
    volumes.kernel = Ramp(thisMObject(), aKernel);
    FalloffWishes wishes;
    wishes.weight = true;
    readVolumes(block, multi, aBounds, CloudUse::kWeights, wishes, volumes);

    MultiWeightSettings settings;
    settings.perVolume = block.inputValue(aMode).asShort() == kWeightPerInfluence;
    settings.unselectedToo = block.inputValue(aProcessAll).asBool();
    settings.maxInfluences = block.inputValue(aMaxInfluences).asInt();
    settings.freePoints = static_cast<FreePoints>(block.inputValue(aFreePoints).asShort());
    const volume::Box box = hasCloud(volumes.volumes) ? boxOf(points.input, selected) : volume::Box();
    multiWeights(volumes, box, settings, points.input, selected, [&](std::size_t point, int index, double weight) {
        const auto number = static_cast<unsigned int>(point);
        if (settings.perVolume)
            list.add(number, static_cast<unsigned int>(index), weight);
        else
            list.add(0, number, weight);
    });
    list.write();
}
