#pragma once
#include <maya/MPlugArray.h>
#include <maya/MStatus.h>

namespace mirk { struct EvaluationNodeAccess; }

/// What is dirty on a node while an evaluation is prepared.
class MEvaluationNode
{
public:
    bool    dirtyPlugExists(const MObject& attribute, MStatus* ReturnStatus = nullptr) const;
    MPlug   dirtyPlug(const MObject& attribute, MStatus* ReturnStatus = nullptr) const;
    MObject dependencyNode(MStatus* ReturnStatus = nullptr) const;

private:
    friend struct mirk::EvaluationNodeAccess;
    MObject    node_;
    MPlugArray dirty_;
};
