#pragma once
#include <maya/MFnDependencyNode.h>
#include <maya/MTime.h>

class MAngle;
class MDGModifier;
class MDoubleArray;
class MPlug;
class MTimeArray;

/// Function set on animation curves: keys over time or over a number, with tangents.
///
/// Key indices count in order of time. Values are in internal units: centimetres, radians, seconds, plain numbers.
/// An index past the end gives kInvalidParameter and changes nothing; reading there gives 0.
class MFnAnimCurve : public MFnDependencyNode
{
public:
    /// From time (T) or a plain number (U) to an angle, a length, a time or a plain number.
    enum AnimCurveType {
        kAnimCurveTA = 0, kAnimCurveTL, kAnimCurveTT, kAnimCurveTU, kAnimCurveUA, kAnimCurveUL, kAnimCurveUT, kAnimCurveUU, kAnimCurveUnknown
    };
    enum TangentType {
        kTangentGlobal = 0, kTangentFixed, kTangentLinear, kTangentFlat, kTangentSmooth, kTangentStep, kTangentSlow, kTangentFast,
        kTangentClamped, kTangentPlateau, kTangentStepNext, kTangentAuto
    };
    enum InfinityType { kConstant = 0, kLinear = 1, kCycle = 3, kCycleRelative = 4, kOscillate = 5 };

    MFnAnimCurve() = default;
    explicit MFnAnimCurve(const MObject& node, MStatus* ReturnStatus = nullptr);
    /// The curve that drives the plug.
    explicit MFnAnimCurve(const MPlug& plug, MStatus* ReturnStatus = nullptr);
    ~MFnAnimCurve() override;
    MFn::Type type() const override;

    /// A curve that drives the plug, of the kind that fits it. Fails for a plug that is driven or locked. With a modifier
    /// the curve is made at once and connected when that runs.
    MObject create(const MPlug& plug, MDGModifier* modifier = nullptr, MStatus* ReturnStatus = nullptr);
    MObject create(const MPlug& plug, AnimCurveType type, MDGModifier* modifier = nullptr, MStatus* ReturnStatus = nullptr);
    MObject create(const MObject& node, const MObject& attribute, MDGModifier* modifier = nullptr, MStatus* ReturnStatus = nullptr);
    MObject create(const MObject& node, const MObject& attribute, AnimCurveType type, MDGModifier* modifier = nullptr,
                   MStatus* ReturnStatus = nullptr);
    /// A curve that drives nothing yet.
    MObject create(AnimCurveType type, MDGModifier* modifier = nullptr, MStatus* ReturnStatus = nullptr);

    AnimCurveType animCurveType(MStatus* ReturnStatus = nullptr) const;
    AnimCurveType timedAnimCurveTypeForPlug(const MPlug& plug, MStatus* ReturnStatus = nullptr) const;
    AnimCurveType unitlessAnimCurveTypeForPlug(const MPlug& plug, MStatus* ReturnStatus = nullptr) const;
    bool          isTimeInput(MStatus* ReturnStatus = nullptr) const;
    bool          isUnitlessInput(MStatus* ReturnStatus = nullptr) const;

    double  evaluate(const MTime& atTime, MStatus* ReturnStatus = nullptr) const;
    MStatus evaluate(const MTime& atTime, double& value) const;
    MStatus evaluate(const MTime& atTime, MTime& timeValue) const;
    MStatus evaluate(double atUnitlessInput, double& value) const;
    MStatus evaluate(double atUnitlessInput, MTime& timeValue) const;
    /// True if all keys and tangents keep one value.
    bool    isStatic(MStatus* ReturnStatus = nullptr) const;

    unsigned numKeys(MStatus* ReturnStatus = nullptr) const;
    MTime    time(unsigned index, MStatus* ReturnStatus = nullptr) const;
    double   unitlessInput(unsigned index, MStatus* ReturnStatus = nullptr) const;
    double   value(unsigned index, MStatus* ReturnStatus = nullptr) const;
    bool     find(const MTime& time, unsigned& index, MStatus* ReturnStatus = nullptr) const;
    bool     find(double unitlessInput, unsigned& index, MStatus* ReturnStatus = nullptr) const;
    unsigned findClosest(const MTime& time, MStatus* ReturnStatus = nullptr) const;
    unsigned findClosest(double unitlessInput, MStatus* ReturnStatus = nullptr) const;

    /// Index of the new key; a key that is there already takes the value.
    unsigned addKey(const MTime& time, double value, TangentType tangentInType = kTangentGlobal,
                    TangentType tangentOutType = kTangentGlobal, MStatus* ReturnStatus = nullptr);
    unsigned addKey(double unitlessInput, double value, TangentType tangentInType = kTangentGlobal,
                    TangentType tangentOutType = kTangentGlobal, MStatus* ReturnStatus = nullptr);
    MStatus  addKeys(MTimeArray* times, MDoubleArray* values, TangentType tangentInType = kTangentGlobal,
                     TangentType tangentOutType = kTangentGlobal, bool keepExistingKeys = false);
    MStatus  remove(unsigned index);
    /// The key keeps its place in the order: a time at or past a neighbour's fails.
    MStatus  setTime(unsigned index, const MTime& time);
    MStatus  setUnitlessInput(unsigned index, double unitlessInput);
    MStatus  setValue(unsigned index, double value);

    TangentType inTangentType(unsigned index, MStatus* ReturnStatus = nullptr) const;
    TangentType outTangentType(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus     setInTangentType(unsigned index, TangentType tangentType);
    MStatus     setOutTangentType(unsigned index, TangentType tangentType);
    /// The vector in seconds (or plain numbers) and value: three times the Bezier handle, of length 1 without weights.
    MStatus     getTangent(unsigned index, float& x, float& y, bool inTangent) const;
    MStatus     getTangent(unsigned index, double& x, double& y, bool inTangent) const;
    /// The weight is the length of the Bezier handle, 1 without weights.
    MStatus     getTangent(unsigned index, MAngle& angle, double& weight, bool inTangent) const;
    MStatus     setTangent(unsigned index, double x, double y, bool inTangent);
    MStatus     setTangent(unsigned index, const MAngle& angle, double weight, bool inTangent);
    bool        tangentsLocked(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus     setTangentsLocked(unsigned index, bool locked);
    bool        weightsLocked(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus     setWeightsLocked(unsigned index, bool locked);
    bool        isWeighted(MStatus* ReturnStatus = nullptr) const;
    MStatus     setIsWeighted(bool isWeighted);
    bool        isBreakdown(unsigned index, MStatus* ReturnStatus = nullptr) const;
    MStatus     setIsBreakdown(unsigned index, bool isBreakdown);

    InfinityType preInfinityType(MStatus* ReturnStatus = nullptr) const;
    InfinityType postInfinityType(MStatus* ReturnStatus = nullptr) const;
    MStatus      setPreInfinityType(InfinityType infinityType);
    MStatus      setPostInfinityType(InfinityType infinityType);
};
