#pragma once
#include <maya/MPxGeometryFilter.h>

/// Base of user-defined deformers with a weight a point.
class MPxDeformerNode : public MPxGeometryFilter
{
public:
    MPxDeformerNode();
    ~MPxDeformerNode() override;
    Type type() const override;

    /// The weight of a point, by logical indices; 1 where none is set.
    float weightValue(MDataBlock& block, unsigned multiIndex, unsigned wtIndex);

    static MObject weightList, weights;
};
