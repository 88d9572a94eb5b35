// A dependency node with an attribute of every kind, written the way plug-in authors usually do.
#include <maya/MAngle.h>
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MFloatVector.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MIOStream.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MVector.h>

#include <math.h>

#define McheckAdd(attr) CHECK_MSTATUS_AND_RETURN_IT(addAttribute(attr))

class dial : public MPxNode
{
public:
    dial() {}
    virtual ~dial() {}

    virtual void    postConstructor() { setMPSafe(true); }
    virtual MStatus compute(const MPlug& plug, MDataBlock& data);
    virtual bool    getInternalValue(const MPlug& plug, MDataHandle& handle);
    virtual bool    setInternalValue(const MPlug& plug, const MDataHandle& handle);
    virtual void    copyInternalData(MPxNode* node) { mKnob = static_cast<dial*>(node)->mKnob; }
    virtual MStatus legalDisconnection(const MPlug& plug, const MPlug& other, bool asSrc, bool& isLegal) const;
    virtual SchedulingType schedulingType() const { return SchedulingType::kParallel; }

    static void*   creator();
    static MStatus initialize();

    static MTypeId id;

    static MObject position, positionX, positionY, positionZ;
    static MObject angle, time, mode, space, label, any, tint, flags, when, size;
    static MObject keys, keyValue, keyName, keyAt;
    static MObject link, knob;
    static MObject outPosition, outPositionX, outPositionY, outPositionZ;
    static MObject outText, outSeconds, outArray, outWeights, outColor, outAny;

private:
    int mKnob = 1;
    MStatus computePosition(MDataBlock& data);
    MStatus computeText(MDataBlock& data);
    MStatus computeArray(MDataBlock& data);
    MStatus computeWeights(MDataBlock& data);
    MStatus computeAny(MDataBlock& data);
};

MTypeId dial::id(0x00070f01);
MObject dial::position;
MObject dial::positionX;
MObject dial::positionY;
MObject dial::positionZ;
MObject dial::angle;
MObject dial::time;
MObject dial::mode;
MObject dial::space;
MObject dial::label;
MObject dial::any;
MObject dial::tint;
MObject dial::flags;
MObject dial::when;
MObject dial::size;
MObject dial::keys;
MObject dial::keyValue;
MObject dial::keyName;
MObject dial::keyAt;
MObject dial::link;
MObject dial::knob;
MObject dial::outPosition;
MObject dial::outPositionX;
MObject dial::outPositionY;
MObject dial::outPositionZ;
MObject dial::outText;
MObject dial::outSeconds;
MObject dial::outArray;
MObject dial::outWeights;
MObject dial::outColor;
MObject dial::outAny;

void* dial::creator()
{
    return new dial;
}

bool dial::getInternalValue(const MPlug& plug, MDataHandle& handle)
{
    if (plug != knob)
        return MPxNode::getInternalValue(plug, handle);
    handle.set(mKnob);
    return true;
}

// the knob turns from 0 to 10
bool dial::setInternalValue(const MPlug& plug, const MDataHandle& handle)
{
    if (plug != knob)
        return MPxNode::setInternalValue(plug, handle);
    mKnob = handle.asInt() > 10 ? 10 : handle.asInt() < 0 ? 0 : handle.asInt();
    return true;
}

// a link stays while the knob is at 10
MStatus dial::legalDisconnection(const MPlug& plug, const MPlug& other, bool asSrc, bool& isLegal) const
{
    if (plug != link)
        return MPxNode::legalDisconnection(plug, other, asSrc, isLegal);
    isLegal = mKnob < 10;
    return MS::kSuccess;
}

MStatus dial::compute(const MPlug& plug, MDataBlock& data)
{
    MStatus stat;
    MDataHandle stateHandle = data.inputValue(state, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    if (stateHandle.asShort() == 1)
        return MS::kUnknownParameter;

    if (plug == outPosition || plug == outPositionX || plug == outPositionY || plug == outPositionZ)
        return computePosition(data);
    if (plug == outText)
        return computeText(data);
    if (plug == outSeconds) {
        MTime t = data.inputValue(time, &stat).asTime();
        McheckErr(stat, "no time");
        data.outputValue(outSeconds).set(t.as(MTime::kSeconds));
        data.setClean(plug);
        return MS::kSuccess;
    }
    if (plug == outArray)
        return computeArray(data);
    if (plug == outWeights || (plug.isElement() && plug.array() == outWeights))
        return computeWeights(data);
    if (plug == outColor || (plug.isChild() && plug.parent() == outColor)) {
        MFloatVector c = data.inputValue(tint).asFloatVector();
        MDataHandle  out = data.outputValue(outColor);
        MFloatVector& rgb = out.asFloatVector();
        rgb = MFloatVector(1.0f - c.x, 1.0f - c.y, 1.0f - c.z);
        out.setClean();
        return MS::kSuccess;
    }
    if (plug == outAny)
        return computeAny(data);
    return MS::kUnknownParameter;
}

// the position turned about z and taken through the matrix
MStatus dial::computePosition(MDataBlock& data)
{
    MStatus  stat;
    double3& in = data.inputValue(position, &stat).asDouble3();
    CHECK_MSTATUS_AND_RETURN(stat, stat);
    const double turn = data.inputValue(angle, &stat).asAngle().asRadians();
    CHECK_MSTATUS(stat);
    const MMatrix& m = data.inputValue(space, &stat).asMatrix();
    CHECK_MSTATUS(stat);
    MPoint p(in[0] * cos(turn) - in[1] * sin(turn), in[0] * sin(turn) + in[1] * cos(turn), in[2]);
    p *= m;
    MDataHandle out = data.outputValue(outPosition, &stat);
    CHECK_MSTATUS(stat);
    out.set(p.x, p.y, p.z);
    out.setClean();
    return stat;
}

MStatus dial::computeText(MDataBlock& data)
{
    MString text = data.inputValue(label).asString();
    switch (data.inputValue(mode).asShort()) {
        case 0: text += " off"; break;
        case 1: text += " on"; break;
        default: text += MString(" ") + data.inputValue(size).asDistance().asMeters() + " m"; break;
    }
    data.outputValue(outText).set(text);
    data.setClean(outText);
    return MS::kSuccess;
}

// the values of the keys in order of position; at[0] is added to each
MStatus dial::computeArray(MDataBlock& data)
{
    MStatus          stat;
    MArrayDataHandle array = data.inputArrayValue(keys, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    MDoubleArray values;
    unsigned     count = array.elementCount();
    for (unsigned i = 0; i < count; i++, array.next()) {
        MDataHandle element = array.inputValue(&stat);
        CHECK_MSTATUS_AND_RETURN_IT(stat);
        const float2& at = element.child(keyAt).asFloat2();
        values.append(element.child(keyValue).asDouble() + at[0]);
    }
    MFnDoubleArrayData fn;
    MObject            object = fn.create(values, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    data.outputValue(outArray).set(object);
    return data.setClean(outArray);
}

// one weight for each key, at the key's logical index: its share of the sum
MStatus dial::computeWeights(MDataBlock& data)
{
    MStatus          stat;
    MArrayDataHandle in = data.inputArrayValue(keys, &stat);
    MArrayDataHandle out = data.outputArrayValue(outWeights, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    MArrayDataBuilder builder(&data, outWeights, in.elementCount(), &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    double sum = 0;
    for (unsigned i = 0; i < in.elementCount(); i++) {
        in.jumpToArrayElement(i);
        sum += in.inputValue().child(keyValue).asDouble();
    }
    for (unsigned i = 0; i < in.elementCount(); i++) {
        in.jumpToArrayElement(i);
        MDataHandle h = builder.addElement(in.elementIndex(), &stat);
        CHECK_MSTATUS_AND_RETURN_IT(stat);
        h.set(float(sum != 0 ? in.inputValue().child(keyValue).asDouble() / sum : 0));
    }
    CHECK_MSTATUS(out.set(builder));
    return out.setAllClean();
}

// generic in, generic out: numbers are doubled, text is repeated
MStatus dial::computeAny(MDataBlock& data)
{
    MDataHandle in = data.inputValue(any);
    MDataHandle out = data.outputValue(outAny);
    bool isNumber = false, isNull = false;
    if (in.isGeneric(isNumber, isNull) && isNumber)
        out.setGenericDouble(in.asGenericDouble() * 2, true);
    else if (!isNull && in.type() == MFnData::kString)
        out.set(in.asString() + in.asString());
    out.setClean();
    return MS::kSuccess;
}

MStatus dial::initialize()
{
    MStatus              stat;
    MFnNumericAttribute  nAttr;
    MFnUnitAttribute     uAttr;
    MFnEnumAttribute     eAttr;
    MFnMatrixAttribute   mAttr;
    MFnTypedAttribute    tAttr;
    MFnGenericAttribute  gAttr;
    MFnCompoundAttribute cAttr;
    MFnMessageAttribute  msgAttr;
    MFnStringData        stringFn;

    positionX = nAttr.create("positionX", "px", MFnNumericData::kDouble, 0.0, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    positionY = nAttr.create("positionY", "py", MFnNumericData::kDouble, 0.0, &stat);
    positionZ = nAttr.create("positionZ", "pz", MFnNumericData::kDouble, 0.0, &stat);
    position = nAttr.create("position", "p", positionX, positionY, positionZ, &stat);
    CHECK_MSTATUS(nAttr.setDefault(1.0, 0.0, 0.0));
    CHECK_MSTATUS(nAttr.setKeyable(true));
    CHECK_MSTATUS(nAttr.setStorable(true));
    CHECK_MSTATUS(nAttr.setReadable(true));
    CHECK_MSTATUS(nAttr.setWritable(true));
    CHECK_MSTATUS(nAttr.setAffectsAppearance(true));
    McheckAdd(position);

    angle = uAttr.create("angle", "an", MFnUnitAttribute::kAngle, 0.0, &stat);
    CHECK_MSTATUS(uAttr.setMin(-2 * M_PI));
    CHECK_MSTATUS(uAttr.setMax(2 * M_PI));
    CHECK_MSTATUS(uAttr.setKeyable(true));
    CHECK_MSTATUS(uAttr.setChannelBox(true));
    McheckAdd(angle);
    time = uAttr.create("time", "tm", MFnUnitAttribute::kTime, 0.0, &stat);
    CHECK_MSTATUS(uAttr.setSoftMin(0));
    McheckAdd(time);
    when = uAttr.create("when", "wh", MTime(2.0, MTime::kSeconds), &stat);
    McheckAdd(when);
    size = uAttr.create("size", "sz", MDistance(2.0, MDistance::kMeters), &stat);
    McheckAdd(size);

    mode = eAttr.create("mode", "mo", 0, &stat);
    CHECK_MSTATUS(eAttr.addField("Off", 0));
    CHECK_MSTATUS(eAttr.addField("On", 1));
    CHECK_MSTATUS(eAttr.addField("Measured", 5));
    CHECK_MSTATUS(eAttr.setDefault(short(1)));
    CHECK_MSTATUS(eAttr.setKeyable(true));
    McheckAdd(mode);

    space = mAttr.create("space", "sp", MFnMatrixAttribute::kDouble, &stat);
    CHECK_MSTATUS(mAttr.setConnectable(true));
    McheckAdd(space);

    label = tAttr.create("label", "lb", MFnData::kString, stringFn.create("dial"), &stat);
    CHECK_MSTATUS(tAttr.setUsedAsFilename(true));
    CHECK_MSTATUS(tAttr.setNiceNameOverride("The Label"));
    McheckAdd(label);

    any = gAttr.create("any", "ay", &stat);
    CHECK_MSTATUS(gAttr.addDataAccept(MFnData::kString));
    CHECK_MSTATUS(gAttr.addNumericDataAccept(MFnNumericData::kDouble));
    CHECK_MSTATUS(gAttr.addNumericDataAccept(MFnNumericData::kInt));
    CHECK_MSTATUS(gAttr.setCached(true));
    CHECK_MSTATUS(gAttr.setDisconnectBehavior(MFnAttribute::kReset));
    McheckAdd(any);

    tint = nAttr.createColor("tint", "ti", &stat);
    CHECK_MSTATUS(nAttr.setDefault(0.25f, 0.5f, 1.0f));
    CHECK_MSTATUS(nAttr.setUsedAsColor(true));
    McheckAdd(tint);

    flags = nAttr.create("flags", "fl", MFnNumericData::kBoolean, true, &stat);
    CHECK_MSTATUS(nAttr.setArray(true));
    CHECK_MSTATUS(nAttr.setIndexMatters(false));
    CHECK_MSTATUS(nAttr.setHidden(true));
    CHECK_MSTATUS(nAttr.setInternal(false));
    CHECK_MSTATUS(nAttr.setIndeterminant(false));
    McheckAdd(flags);

    keyValue = nAttr.create("keyValue", "kv", MFnNumericData::kDouble, 1.0, &stat);
    CHECK_MSTATUS(nAttr.setMin(0.0));
    CHECK_MSTATUS(nAttr.setSoftMax(10.0));
    keyAt = nAttr.create("keyAt", "ka", MFnNumericData::k2Float, 0.0, &stat);
    keyName = tAttr.create("keyName", "kn", MFnData::kString, MObject::kNullObj, &stat);
    keys = cAttr.create("keys", "ks", &stat);
    CHECK_MSTATUS(cAttr.addChild(keyValue));
    CHECK_MSTATUS(cAttr.addChild(keyAt));
    CHECK_MSTATUS(cAttr.addChild(keyName));
    CHECK_MSTATUS(cAttr.setArray(true));
    CHECK_MSTATUS(cAttr.setUsesArrayDataBuilder(true));
    CHECK_MSTATUS(cAttr.setDisconnectBehavior(MFnAttribute::kDelete));
    McheckAdd(keys);

    link = msgAttr.create("link", "lk", &stat);
    CHECK_MSTATUS(msgAttr.addToCategory("plumbing"));
    McheckAdd(link);

    knob = nAttr.create("knob", "kb", MFnNumericData::kInt, 0);
    CHECK_MSTATUS(nAttr.setInternal(true));
    McheckAdd(knob);

    outPositionX = nAttr.create("outPositionX", "opx", MFnNumericData::kDouble);
    outPositionY = nAttr.create("outPositionY", "opy", MFnNumericData::kDouble);
    outPositionZ = nAttr.create("outPositionZ", "opz", MFnNumericData::kDouble);
    outPosition = nAttr.create("outPosition", "op", outPositionX, outPositionY, outPositionZ);
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    McheckAdd(outPosition);
    outText = tAttr.create("outText", "ot", MFnData::kString);
    tAttr.setWritable(false);
    tAttr.setStorable(false);
    McheckAdd(outText);
    outSeconds = nAttr.create("outSeconds", "os", MFnNumericData::kDouble);
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    McheckAdd(outSeconds);
    outArray = tAttr.create("outArray", "oa", MFnData::kDoubleArray);
    tAttr.setWritable(false);
    tAttr.setStorable(false);
    McheckAdd(outArray);
    outWeights = nAttr.create("outWeights", "ow", MFnNumericData::kFloat);
    nAttr.setArray(true);
    nAttr.setUsesArrayDataBuilder(true);
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    McheckAdd(outWeights);
    outColor = nAttr.createColor("outColor", "oc");
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    McheckAdd(outColor);
    outAny = gAttr.create("outAny", "oay");
    gAttr.addDataAccept(MFnData::kAny);
    gAttr.addDataAccept(MFnData::kString);
    gAttr.addNumericDataAccept(MFnNumericData::kDouble);
    gAttr.setWritable(false);
    gAttr.setStorable(false);
    McheckAdd(outAny);

    MObject in[] = {position, angle, space};
    for (int i = 0; i < 3; i++)
        CHECK_MSTATUS_AND_RETURN_IT(attributeAffects(in[i], outPosition));
    CHECK_MSTATUS(attributeAffects(label, outText));
    CHECK_MSTATUS(attributeAffects(mode, outText));
    CHECK_MSTATUS(attributeAffects(size, outText));
    CHECK_MSTATUS(attributeAffects(time, outSeconds));
    CHECK_MSTATUS(attributeAffects(keys, outArray));
    CHECK_MSTATUS(attributeAffects(keyValue, outWeights));
    CHECK_MSTATUS(attributeAffects(tint, outColor));
    CHECK_MSTATUS(attributeAffects(any, outAny));
    return MS::kSuccess;
}

MStatus initializePlugin(MObject obj)
{
    MStatus   status;
    MFnPlugin plugin(obj, "Somebody", "1.0", "Any");
    status = plugin.registerNode("dial", dial::id, dial::creator, dial::initialize);
    if (!status) {
        status.perror("registerNode");
        return status;
    }
    return status;
}

MStatus uninitializePlugin(MObject obj)
{
    MStatus   status;
    MFnPlugin plugin(obj);
    status = plugin.deregisterNode(dial::id);
    if (!status) {
        status.perror("deregisterNode");
        return status;
    }
    return status;
}
