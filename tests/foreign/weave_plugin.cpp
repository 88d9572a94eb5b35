// Curves and surfaces, data of an own type passed between two nodes, threads, and nodes that watch their connections.
#include <maya/MArgList.h>
#include <maya/MComputation.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MEvaluationNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnPluginData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxData.h>
#include <maya/MPxNode.h>
#include <maya/MThreadPool.h>

#include <iostream>
#include <vector>

// a list of numbers with a version
class Samples : public MPxData
{
public:
    Samples() {}
    ~Samples() override {}
    static void* creator() { return new Samples; }
    MStatus readASCII(const MArgList& args, unsigned& lastElement) override
    {
        if (args.length() < 1)
            return MS::kFailure;
        MStatus status;
        const int count = args.asInt(lastElement++, &status);
        values.clear();
        for (int i = 0; i < count && status; ++i)
            values.push_back(args.asDouble(lastElement++, &status));
        return status;
    }
    MStatus writeASCII(std::ostream& out) override
    {
        out << values.size();
        for (double v : values)
            out << " " << v;
        return out.fail() ? MS::kFailure : MS::kSuccess;
    }
    void copy(const MPxData& other) override
    {
        if (other.typeId() == Samples::id)
            values = static_cast<const Samples&>(other).values;
    }
    MTypeId typeId() const override { return id; }
    MString name() const override { return typeName; }

    std::vector<double> values;
    static const MTypeId id;
    static const MString typeName;
};

const MTypeId Samples::id(0x00070f30);
const MString Samples::typeName("samples");

// cuts a curve into samples of its height; a moved copy of the curve goes out too
class curveCutter : public MPxNode
{
public:
    static void*   creator() { return new curveCutter; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& data) override;
    MStatus connectionMade(const MPlug& plug, const MPlug& otherPlug, bool asSrc) override;
    MStatus connectionBroken(const MPlug& plug, const MPlug& otherPlug, bool asSrc) override;
    MStatus legalConnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const override;
    MStatus setDependentsDirty(const MPlug& plug, MPlugArray& affected) override;
    MStatus preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode) override;

    static MTypeId id;
    static MObject inCurve, count, offset, onSurface, outCurve, outSamples, outPoints, made, lazy, outLazy;

private:
    MStatus computeCurve(MDataBlock& data);
    int  mConnections = 0;
    bool mDirty = true;
};

MTypeId curveCutter::id(0x00070f31);
MObject curveCutter::inCurve, curveCutter::count, curveCutter::offset, curveCutter::onSurface, curveCutter::outCurve,
    curveCutter::outSamples, curveCutter::outPoints, curveCutter::made, curveCutter::lazy, curveCutter::outLazy;

MStatus curveCutter::initialize()
{
    MFnTypedAttribute t;
    MFnNumericAttribute n;
    inCurve = t.create("inCurve", "ic", MFnData::kNurbsCurve);
    t.setHidden(true);
    addAttribute(inCurve);
    onSurface = t.create("onSurface", "ons", MFnData::kNurbsSurface);
    addAttribute(onSurface);
    count = n.create("count", "c", MFnNumericData::kInt, 3);
    n.setMin(2);
    addAttribute(count);
    offset = n.createPoint("offset", "of");
    n.setKeyable(true);
    addAttribute(offset);
    lazy = n.create("lazy", "la", MFnNumericData::kDouble, 1.0);
    addAttribute(lazy);
    outCurve = t.create("outCurve", "ocv", MFnNurbsCurveData::kNurbsCurve);
    t.setWritable(false);
    addAttribute(outCurve);
    outSamples = t.create("outSamples", "osa", Samples::id);
    t.setWritable(false);
    addAttribute(outSamples);
    outPoints = t.create("outPoints", "opt", MFnData::kPointArray);
    t.setWritable(false);
    addAttribute(outPoints);
    made = n.create("made", "ma", MFnNumericData::kInt, 0);
    addAttribute(made);
    outLazy = n.create("outLazy", "ol", MFnNumericData::kDouble);
    n.setWritable(false);
    addAttribute(outLazy);
    attributeAffects(inCurve, outCurve);
    attributeAffects(offset, outCurve);
    attributeAffects(inCurve, outSamples);
    attributeAffects(count, outSamples);
    attributeAffects(count, outPoints);
    attributeAffects(onSurface, outPoints);
    return MS::kSuccess;
}

MStatus curveCutter::connectionMade(const MPlug& plug, const MPlug& otherPlug, bool asSrc)
{
    if (plug == inCurve && !asSrc) {
        ++mConnections;
        MPlug(thisMObject(), made).setInt(mConnections);
    }
    return MPxNode::connectionMade(plug, otherPlug, asSrc);
}

MStatus curveCutter::connectionBroken(const MPlug& plug, const MPlug& otherPlug, bool asSrc)
{
    if (plug == inCurve && !asSrc) {
        --mConnections;
        MPlug(thisMObject(), made).setInt(mConnections);
    }
    return MPxNode::connectionBroken(plug, otherPlug, asSrc);
}

// only counts that are whole numbers from the start are taken
MStatus curveCutter::legalConnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const
{
    if (!asSrc && plug == count) {
        MFnNumericAttribute other(otherPlug.attribute());
        isLegal = other.unitType() == MFnNumericData::kInt;
        return MS::kSuccess;
    }
    return MPxNode::legalConnection(plug, otherPlug, asSrc, isLegal);
}

// outLazy depends on lazy without attributeAffects
MStatus curveCutter::setDependentsDirty(const MPlug& plug, MPlugArray& affected)
{
    if (plug == lazy) {
        mDirty = true;
        affected.append(MPlug(thisMObject(), outLazy));
    }
    return MPxNode::setDependentsDirty(plug, affected);
}

MStatus curveCutter::preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode)
{
    MStatus status;
    if (context.isNormal() && evaluationNode.dirtyPlugExists(lazy, &status) && status)
        mDirty = true;
    return MS::kSuccess;
}

MStatus curveCutter::computeCurve(MDataBlock& data)
{
    MStatus status;
    MObject curve = data.inputValue(inCurve, &status).asNurbsCurveTransformed();
    if (curve.isNull())
        return MS::kFailure;
    const float3& by = data.inputValue(offset).asFloat3();
    MFnNurbsCurveData creator;
    MObject owner = creator.create(&status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MFnNurbsCurve source(curve, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MPointArray cvs;
    MDoubleArray knots;
    source.getCVs(cvs, MSpace::kWorld);
    source.getKnots(knots);
    MFnNurbsCurve target;
    target.create(cvs, knots, source.degree(), source.form(), false, false, owner, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    for (unsigned i = 0; i < cvs.length(); ++i)
        cvs[i] += MVector(by[0], by[1], by[2]);
    CHECK_MSTATUS(target.setCVs(cvs));
    target.updateCurve();
    data.outputValue(outCurve).set(owner);
    data.setClean(outCurve);
    return MS::kSuccess;
}

MStatus curveCutter::compute(const MPlug& plug, MDataBlock& data)
{
    MStatus status;
    if (plug == outLazy) {
        data.outputValue(outLazy).setDouble(data.inputValue(lazy).asDouble() * (mDirty ? 3 : -1));
        mDirty = false;
        data.setClean(plug);
        return MS::kSuccess;
    }
    if (plug == outCurve)
        return computeCurve(data);
    const int n = data.inputValue(count).asInt();
    if (plug == outPoints) {
        MPointArray points;
        MObject surface = data.inputValue(onSurface).asNurbsSurface();
        if (!surface.isNull()) {
            MFnNurbsSurface fn(surface);
            double u0, u1, v0, v1;
            fn.getKnotDomain(u0, u1, v0, v1);
            for (int i = 0; i < n; ++i) {
                MPoint p;
                fn.getPointAtParam(u0 + (u1 - u0) * i / (n - 1), (v0 + v1) / 2, p, MSpace::kObject);
                points.append(p);
            }
        }
        MFnPointArrayData fn;
        data.outputValue(outPoints).set(fn.create(points));
        data.setClean(plug);
        return MS::kSuccess;
    }
    if (plug != outSamples)
        return MS::kUnknownParameter;

    MFnPluginData creator;
    MObject object = creator.create(Samples::id, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    Samples* samples = static_cast<Samples*>(creator.data(&status));
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MObject curve = data.inputValue(inCurve).asNurbsCurve();
    if (!curve.isNull()) {
        MFnNurbsCurve fn(curve);
        double start, end;
        fn.getKnotDomain(start, end);
        for (int i = 0; i < n; ++i) {
            MPoint p;
            fn.getPointAtParam(start + (end - start) * i / (n - 1), p);
            samples->values.push_back(p.y);
        }
    }
    data.outputValue(outSamples).set(samples);
    data.setClean(plug);
    return MS::kSuccess;
}

// sums samples on several threads
class sampleSum : public MPxNode
{
public:
    static void*   creator() { return new sampleSum; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& data) override;
    static MTypeId id;
    static MObject in, repeat, out;
};

MTypeId sampleSum::id(0x00070f32);
MObject sampleSum::in, sampleSum::repeat, sampleSum::out;

MStatus sampleSum::initialize()
{
    MFnTypedAttribute t;
    MFnNumericAttribute n;
    in = t.create("in", "i", Samples::id);
    addAttribute(in);
    repeat = n.create("repeat", "r", MFnNumericData::kInt, 1);
    addAttribute(repeat);
    out = n.create("out", "o", MFnNumericData::kDouble);
    n.setWritable(false);
    addAttribute(out);
    attributeAffects(in, out);
    attributeAffects(repeat, out);
    return MS::kSuccess;
}

struct TaskData { const Samples* samples; int tasks, repeat; double sums[16]; };
struct ThreadData { int index; TaskData* shared; };

static MThreadRetVal sumTask(void* data)
{
    ThreadData* thread = (ThreadData*)data;
    TaskData*   shared = thread->shared;
    double      sum = 0;
    for (int r = thread->index; r < shared->repeat; r += shared->tasks)
        for (double v : shared->samples->values)
            sum += v;
    shared->sums[thread->index] = sum;
    return (MThreadRetVal)0;
}

static void decompose(void* data, MThreadRootTask* root)
{
    TaskData*  shared = (TaskData*)data;
    ThreadData threads[16];
    for (int i = 0; i < shared->tasks; ++i) {
        threads[i].index = i;
        threads[i].shared = shared;
        MThreadPool::createTask(sumTask, (void*)&threads[i], root);
    }
    MThreadPool::executeAndJoin(root);
}

MStatus sampleSum::compute(const MPlug& plug, MDataBlock& data)
{
    if (plug != out)
        return MS::kUnknownParameter;
    MStatus status;
    MDataHandle handle = data.inputValue(in, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    double total = 0;
    MFnPluginData fn(handle.data(), &status);
    const Samples* samples = status ? dynamic_cast<const Samples*>(fn.constData()) : nullptr;
    if (samples && samples == handle.asPluginData()) {
        MComputation computation;
        computation.beginComputation();
        computation.setProgressRange(0, 16);
        TaskData shared = {samples, 16, data.inputValue(repeat).asInt(), {}};
        if (!MThreadPool::init())
            return MS::kFailure;
        MThreadPool::newParallelRegion(decompose, (void*)&shared);
        MThreadPool::release();
        for (int i = 0; i < shared.tasks; ++i) {
            if (computation.isInterruptRequested())
                break;
            total += shared.sums[i];
            computation.setProgress(i + 1);
        }
        computation.endComputation();
    }
    data.outputValue(out).set(total);
    data.setClean(plug);
    return MS::kSuccess;
}

MStatus initializePlugin(MObject obj)
{
    MStatus   status;
    MFnPlugin plugin(obj, "Somebody", "1.0", "Any", &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    status = plugin.registerData(Samples::typeName, Samples::id, Samples::creator);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    status = plugin.registerNode("curveCutter", curveCutter::id, curveCutter::creator, curveCutter::initialize);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    status = plugin.registerNode("sampleSum", sampleSum::id, sampleSum::creator, sampleSum::initialize);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    return status;
}

MStatus uninitializePlugin(MObject obj)
{
    MFnPlugin plugin(obj);
    CHECK_MSTATUS(plugin.deregisterNode(sampleSum::id));
    CHECK_MSTATUS(plugin.deregisterNode(curveCutter::id));
    CHECK_MSTATUS(plugin.deregisterData(Samples::id));
    return MS::kSuccess;
}
