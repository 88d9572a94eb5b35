#include <maya/MPxNode.h>

#include <maya/MDataBlock.h>
#include <maya/MPlugArray.h>

#include "graph/access.h"

using namespace mirk;

MPxNode::MPxNode() = default;
MPxNode::~MPxNode() = default;

void    MPxNode::postConstructor() {}
MStatus MPxNode::compute(const MPlug&, MDataBlock&) { return MS::kUnknownParameter; }
MStatus MPxNode::setDependentsDirty(const MPlug&, MPlugArray&) { return MS::kSuccess; }
MStatus MPxNode::preEvaluation(const MDGContext&, const MEvaluationNode&) { return MS::kSuccess; }
MStatus MPxNode::postEvaluation(const MDGContext&, const MEvaluationNode&, PostEvaluationType) { return MS::kSuccess; }
MStatus MPxNode::configCache(const MEvaluationNode&, MCacheSchema&) const { return MS::kSuccess; }
MPxNode::SchedulingType MPxNode::schedulingType() const { return mpSafe_ ? kParallel : kDefaultScheduling; }
MStatus MPxNode::connectionMade(const MPlug&, const MPlug&, bool) { return MS::kUnknownParameter; }
MStatus MPxNode::connectionBroken(const MPlug&, const MPlug&, bool) { return MS::kUnknownParameter; }
MStatus MPxNode::legalConnection(const MPlug&, const MPlug&, bool, bool&) const { return MS::kUnknownParameter; }
MStatus MPxNode::legalDisconnection(const MPlug&, const MPlug&, bool, bool&) const { return MS::kUnknownParameter; }
MStatus MPxNode::dependsOn(const MPlug&, const MPlug&, bool&) const { return MS::kUnknownParameter; }
bool    MPxNode::getInternalValue(const MPlug&, MDataHandle&) { return false; }
bool    MPxNode::setInternalValue(const MPlug&, const MDataHandle&) { return false; }
void    MPxNode::copyInternalData(MPxNode*) {}
MPlug   MPxNode::passThroughToOne(const MPlug&) const { return MPlug(); }
bool    MPxNode::passThroughToMany(const MPlug&, MPlugArray&) const { return false; }
bool    MPxNode::isPassiveOutput(const MPlug&) const { return false; }
MPxNode::Type MPxNode::type() const { return kDependNode; }
bool    MPxNode::isAbstractClass() const { return node_ && node_->type->abstract; }

MObject MPxNode::thisMObject() const { return wrap(node_); }
MString MPxNode::name() const { return node_ ? MString(node_->name.c_str()) : MString(); }
MTypeId MPxNode::typeId() const { return node_ ? MTypeId(node_->type->id) : MTypeId(); }
MString MPxNode::typeName() const { return node_ ? MString(node_->type->name.c_str()) : MString(); }
void    MPxNode::setMPSafe(bool flag) { mpSafe_ = flag; }
void    MPxNode::setExistWithoutInConnections(bool flag) { aloneIn_ = flag; }
void    MPxNode::setExistWithoutOutConnections(bool flag) { aloneOut_ = flag; }

bool MPxNode::existWithoutInConnections(MStatus* status) const
{
    if (status) *status = MS::kSuccess;
    return aloneIn_;
}

bool MPxNode::existWithoutOutConnections(MStatus* status) const
{
    if (status) *status = MS::kSuccess;
    return aloneOut_;
}

MDataBlock MPxNode::forceCache() { return HandleAccess::block(node_); }

MStatus MPxNode::addAttribute(const MObject& attr)
{
    NodeType*  type = typeBeingBuilt();
    Attribute* a = objectAs<Attribute>(attr);
    if (!type || !a || a->slot >= 0 || a->parent)
        return MS::kFailure;
    bool clash = false;
    walkAttributes(*a, [&](Attribute& each) {
        clash = clash || type->find(each.longName) || type->find(each.shortName);
    });
    if (clash)
        return MS::kFailure;
    type->add(Ref<Attribute>(a));
    return MS::kSuccess;
}

MStatus MPxNode::inheritAttributesFrom(const MString& parentClassName)
{
    NodeType* type = typeBeingBuilt();
    NodeType* from = findNodeType(std::string(parentClassName.asChar()));
    // attributes that stand already would change their place
    if (!type || !from || type->table.size() != type->ownFirst)
        return MS::kFailure;
    type->inherit(from);
    return MS::kSuccess;
}

MStatus MPxNode::attributeAffects(const MObject& whenChanges, const MObject& isAffected)
{
    NodeType*  type = typeBeingBuilt();
    Attribute* when = objectAs<Attribute>(whenChanges);
    Attribute* what = objectAs<Attribute>(isAffected);
    if (!type || !when || !what)
        return MS::kInvalidParameter;
    return type->addAffects(*when, *what) ? MS::kSuccess : MS::kFailure;
}

MStatus MPxNode::attributeAffects(const MObject& whenChanges, const MObject& isAffected, bool)
{
    return attributeAffects(whenChanges, isAffected);
}
