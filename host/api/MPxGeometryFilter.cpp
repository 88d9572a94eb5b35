#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MItGeometry.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPxDeformerNode.h>

#include "data/data.h"
#include "graph/access.h"

using namespace mirk;

MObject MPxGeometryFilter::input;
MObject MPxGeometryFilter::inputGeom;
MObject MPxGeometryFilter::groupId;
MObject MPxGeometryFilter::outputGeom;
MObject MPxGeometryFilter::envelope;
MObject MPxDeformerNode::weightList;
MObject MPxDeformerNode::weights;

MPxGeometryFilter::MPxGeometryFilter() = default;
MPxGeometryFilter::~MPxGeometryFilter() = default;
MPxNode::Type MPxGeometryFilter::type() const { return kGeometryFilter; }
MStatus       MPxGeometryFilter::deform(MDataBlock&, MItGeometry&, const MMatrix&, unsigned) { return MS::kSuccess; }
MObject&      MPxGeometryFilter::accessoryAttribute() const { return MObject::kNullObj; }
MStatus       MPxGeometryFilter::accessoryNodeSetup(MDagModifier&) { return MS::kSuccess; }

MStatus MPxGeometryFilter::setDeformationDetails(unsigned flags)
{
    if (flags & ~unsigned(kDeformsAll))
        return MS::kInvalidParameter;
    details_ = flags;
    return MS::kSuccess;
}

unsigned MPxGeometryFilter::getDeformationDetails(MStatus* s) const
{
    if (s)
        *s = MS::kSuccess;
    return details_;
}

namespace {

constexpr short kHasNoEffect = 1, kBlocking = 2;

/// The matrix that the geometry brings along.
MMatrix localToWorld(const MDataHandle& geometry)
{
    const auto* data = dynamic_cast<GeometryData*>(HandleAccess::data(geometry));
    return data ? MMatrix(data->geometry().matrix) : MMatrix();
}

}  // namespace

MStatus MPxGeometryFilter::compute(const MPlug& plug, MDataBlock& block)
{
    if (plug.attribute() != outputGeom || !plug.isElement())
        return MS::kUnknownParameter;
    const short nodeState = block.outputValue(state).asShort();
    if (nodeState == kBlocking)
        return MS::kSuccess;
    const unsigned   index = plug.logicalIndex();
    MArrayDataHandle inputs = block.inputArrayValue(input);
    if (!inputs.jumpToElement(index))
        return MS::kFailure;
    MDataHandle element = inputs.inputValue();
    MDataHandle output = block.outputValue(plug);
    output.copy(element.child(inputGeom));
    const float strength = block.inputValue(envelope).asFloat();
    MStatus     status = MS::kSuccess;
    if (nodeState != kHasNoEffect && strength != 0 && HandleAccess::data(output)) {
        const int group = element.child(groupId).asInt();
        // without a group of its own the deformer works on all points
        const auto* data = dynamic_cast<GeometryData*>(HandleAccess::data(output));
        bool        grouped = false;
        for (const auto& g : data ? data->geometry().groups : std::vector<GeometryBody::Group>())
            grouped = grouped || int(g.id) == group;
        if (grouped || group != 0) {
            MItGeometry points(output, unsigned(group), false);
            status = deform(block, points, localToWorld(output), index);
        } else {
            MItGeometry points(output, false);
            status = deform(block, points, localToWorld(output), index);
        }
    }
    block.setClean(plug);
    return status;
}

MPxDeformerNode::MPxDeformerNode() = default;
MPxDeformerNode::~MPxDeformerNode() = default;
MPxNode::Type MPxDeformerNode::type() const { return kDeformerNode; }

float MPxDeformerNode::weightValue(MDataBlock& block, unsigned multiIndex, unsigned wtIndex)
{
    MArrayDataHandle lists = block.inputArrayValue(weightList);
    if (!lists.jumpToElement(multiIndex))
        return 1;
    MArrayDataHandle values(lists.inputValue().child(weights));
    return values.jumpToElement(wtIndex) ? values.inputValue().asFloat() : 1;
}
