#pragma once
#include <maya/MStatus.h>

class MDoubleArray;
class MObject;
class MVectorArray;

/// Static helpers of dynamics: what a texture gives at many points at once, and the run-up of simulations.
class MDynamicsUtil
{
public:
    /// True if the attribute, the colour that it is a part of or one of its own parts is driven by a network with a 2D
    /// texture in it. Of an attribute below a multi the first element that has one counts.
    static bool hasValidDynamics2dTexture(const MObject& node, const MObject& texAttr);
    /// Evaluates the network that drives the attribute at each point (u, v); the scene keeps its own values.
    ///
    /// @param resultColors  n colours: those of the attribute, of the colour that it is a part of, or grey for a single
    ///                      number; may be null
    /// @param resultAlphas  n values: the driving node's `outAlpha` if it has one, else 1; for a single number that is no
    ///                      part of a colour the number itself; may be null
    /// Errors: u and v of different lengths, no valid texture; the results are then left as they were.
    static MStatus evalDynamics2dTexture(const MObject& node, const MObject& texAttr, MDoubleArray& uCoords,
                                         MDoubleArray& vCoords, MVectorArray* resultColors, MDoubleArray* resultAlphas);

    /// Whether a simulation is being brought from its start to the current time.
    static bool    inRunup();
    /// Brings simulations up to the current time. Here each state is a function of the graph's inputs, so none lags behind.
    static MStatus runupIfRequired();
};
