#pragma once
#include <maya/MObject.h>
#include <maya/MStatus.h>

class MArrayDataHandle;
class MDGContext;
class MDataHandle;
class MPlug;

namespace mirk { class Node; struct HandleAccess; }

/// The values of a node during compute.
class MDataBlock
{
public:
    MDataHandle      inputValue(const MObject& attribute, MStatus* ReturnStatus = nullptr);
    MDataHandle      inputValue(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    MDataHandle      outputValue(const MObject& attribute, MStatus* ReturnStatus = nullptr);
    MDataHandle      outputValue(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle inputArrayValue(const MObject& attribute, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle inputArrayValue(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle outputArrayValue(const MObject& attribute, MStatus* ReturnStatus = nullptr);
    MArrayDataHandle outputArrayValue(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    MStatus          setClean(const MObject& attribute);
    MStatus          setClean(const MPlug& plug);
    bool             isClean(const MObject& attribute, MStatus* ReturnStatus = nullptr);
    bool             isClean(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    MDGContext       context(MStatus* ReturnStatus = nullptr) const;
    /// Inputs that are asked for from now on are read in `context`; the handles show copies, which live to the end of
    /// the outermost compute. What is written through the block then is dropped.
    MStatus          setContext(const MDGContext& context);

private:
    friend struct mirk::HandleAccess;
    friend class MPlug;
    mirk::Node* node_ = nullptr;
    double      seconds_ = 0;
    enum : char { kAmbient, kNormal, kElsewhere } mode_ = kAmbient;
};
