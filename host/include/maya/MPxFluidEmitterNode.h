#pragma once
#include <maya/MPxEmitterNode.h>

/// Base of user-defined fluid emitters.
class MPxFluidEmitterNode : public MPxEmitterNode
{
public:
    MPxFluidEmitterNode();
    ~MPxFluidEmitterNode() override;
    Type type() const override;

    double fluidDensityEmission(MDataBlock& block);
    double fluidHeatEmission(MDataBlock& block);
    double fluidFuelEmission(MDataBlock& block);
    bool   fluidEmitColor(MDataBlock& block);
    double fluidDropoff(MDataBlock& block);

    static MObject mFluidDensityEmission, mFluidHeatEmission, mFluidFuelEmission, mEmitFluidColor, mFluidColor,
        mFluidDropoff, mTurbulence, mTurbulenceSpeed, mDetailTurbulence, mEmissionFunction;
};
