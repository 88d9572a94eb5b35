// A deformer, and a locator drawn by a draw override.
#include <maya/M3dView.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDrawContext.h>
#include <maya/MDrawRegistry.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MDagModifier.h>
#include <maya/MItGeometry.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MPxDeformerNode.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUserData.h>
#include <maya/MViewport2Renderer.h>

// lifts points by height * weight * envelope, as seen from the space of a handle
class lifter : public MPxDeformerNode
{
public:
    lifter() = default;
    ~lifter() override = default;
    static void*   creator() { return new lifter(); }
    static MStatus initialize();

    MStatus  deform(MDataBlock& block, MItGeometry& iter, const MMatrix& mat, unsigned int multiIndex) override;
    MObject& accessoryAttribute() const override { return handle; }
    MStatus  accessoryNodeSetup(MDagModifier& cmd) override;

    static MTypeId id;
    static MObject height;
    static MObject handle;
};

MTypeId lifter::id(0x00070f20);
MObject lifter::height;
MObject lifter::handle;

MStatus lifter::initialize()
{
    MFnNumericAttribute nAttr;
    height = nAttr.create("height", "h", MFnNumericData::kDouble, 2.0);
    nAttr.setKeyable(true);
    addAttribute(height);
    MFnMatrixAttribute mAttr;
    handle = mAttr.create("handle", "hm");
    mAttr.setStorable(false);
    mAttr.setConnectable(true);
    addAttribute(handle);
    attributeAffects(height, outputGeom);
    attributeAffects(handle, outputGeom);
    MGlobal::executeCommand("makePaintable -attrType multiFloat -sm deformer lifter weights");
    return MStatus::kSuccess;
}

MStatus lifter::deform(MDataBlock& block, MItGeometry& iter, const MMatrix& m, unsigned int multiIndex)
{
    MStatus returnStatus;
    MDataHandle envData = block.inputValue(envelope, &returnStatus);
    if (MS::kSuccess != returnStatus)
        return returnStatus;
    const float env = envData.asFloat();
    const double h = block.inputValue(height, &returnStatus).asDouble();
    if (MS::kSuccess != returnStatus)
        return returnStatus;
    MMatrix toHandle = block.inputValue(handle, &returnStatus).asMatrix();
    toHandle = m * toHandle.inverse();
    const MMatrix back = toHandle.inverse();

    for (; !iter.isDone(); iter.next()) {
        MPoint pt = iter.position();
        pt *= toHandle;
        const float weight = weightValue(block, multiIndex, iter.index());
        pt.y += h * env * weight;
        pt *= back;
        iter.setPosition(pt);
    }
    return returnStatus;
}

MStatus lifter::accessoryNodeSetup(MDagModifier& cmd)
{
    MStatus result;
    MObject locator = cmd.createNode("locator", MObject::kNullObj, &result);
    if (!result)
        return result;
    cmd.renameNode(locator, "lifterHandle");
    MFnDependencyNode fn(locator);
    MObject attrMat = fn.attribute("matrix");
    return cmd.connect(locator, attrMat, this->thisMObject(), handle);
}

class flag : public MPxLocatorNode
{
public:
    static void*   creator() { return new flag(); }
    static MStatus initialize();
    MStatus compute(const MPlug&, MDataBlock&) override { return MS::kUnknownParameter; }
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override
    {
        (void)path, (void)style;
        if (status == M3dView::kLead)
            view.setDrawColor(MColor(1.0f, 1.0f, 1.0f));
        view.beginGL();
        view.endGL();
    }
    bool         isBounded() const override { return true; }
    MBoundingBox boundingBox() const override
    {
        MPlug plug(thisMObject(), size);
        MDistance d;
        plug.getValue(d);
        const double s = d.asCentimeters();
        return MBoundingBox(MPoint(-s, -s, -s), MPoint(s, s, s));
    }

    static MTypeId id;
    static MObject size;
    static MString drawDbClassification;
    static MString drawRegistrantId;
};

MTypeId flag::id(0x00070f21);
MObject flag::size;
MString flag::drawDbClassification("drawdb/geometry/flag");
MString flag::drawRegistrantId("FlagNodePlugin");

MStatus flag::initialize()
{
    MFnUnitAttribute unitFn;
    MStatus stat;
    size = unitFn.create("size", "sz", MFnUnitAttribute::kDistance);
    unitFn.setDefault(1.0);
    unitFn.setKeyable(true);
    stat = addAttribute(size);
    if (!stat)
        stat.perror("addAttribute");
    return stat;
}

class FlagData : public MUserData
{
public:
    FlagData() : MUserData(false) {}
    ~FlagData() override {}
    MColor      fColor;
    double      fSize = 1;
    MPointArray fLines;
};

class FlagDrawOverride : public MHWRender::MPxDrawOverride
{
public:
    static MHWRender::MPxDrawOverride* Creator(const MObject& obj) { return new FlagDrawOverride(obj); }
    ~FlagDrawOverride() override {}

    MHWRender::DrawAPI supportedDrawAPIs() const override
    {
        return (MHWRender::kOpenGL | MHWRender::kDirectX11 | MHWRender::kOpenGLCoreProfile);
    }
    bool isBounded(const MDagPath&, const MDagPath&) const override { return true; }
    MBoundingBox boundingBox(const MDagPath& objPath, const MDagPath&) const override
    {
        const double s = getSize(objPath);
        return MBoundingBox(MPoint(-s, -s, -s), MPoint(s, s, s));
    }
    MUserData* prepareForDraw(const MDagPath& objPath, const MDagPath& cameraPath,
                              const MHWRender::MFrameContext& frameContext, MUserData* oldData) override
    {
        (void)cameraPath, (void)frameContext;
        FlagData* data = dynamic_cast<FlagData*>(oldData);
        if (!data)
            data = new FlagData();
        data->fSize = getSize(objPath);
        data->fLines.clear();
        data->fLines.append(MPoint(0, 0, 0));
        data->fLines.append(MPoint(0, data->fSize, 0));
        data->fColor = MHWRender::MGeometryUtilities::wireframeColor(objPath);
        switch (MHWRender::MGeometryUtilities::displayStatus(objPath)) {
            case MHWRender::kLead:
            case MHWRender::kActive: data->fColor = MColor(1.0f, 0.0f, 0.0f); break;
            default: break;
        }
        return data;
    }
    bool hasUIDrawables() const override { return true; }
    void addUIDrawables(const MDagPath& objPath, MHWRender::MUIDrawManager& drawManager,
                        const MHWRender::MFrameContext& frameContext, const MUserData* data) override
    {
        (void)objPath, (void)frameContext;
        const FlagData* flagData = (const FlagData*)data;
        if (!flagData)
            return;
        drawManager.beginDrawable();
        drawManager.setColor(flagData->fColor);
        drawManager.setDepthPriority(5);
        drawManager.setLineWidth(2.0f);
        drawManager.mesh(MHWRender::MUIDrawManager::kLines, flagData->fLines);
        drawManager.rect(MPoint(0, 0, 0), MVector::yAxis, MVector::zAxis, flagData->fSize, flagData->fSize, true);
        drawManager.sphere(MPoint(0, flagData->fSize, 0), 0.1, true);
        drawManager.text(MPoint(0.0, 0.0, 0.0), MString("flag"), MHWRender::MUIDrawManager::kCenter);
        drawManager.endDrawable();
    }

private:
    FlagDrawOverride(const MObject& obj) : MHWRender::MPxDrawOverride(obj, NULL, false) {}
    static double getSize(const MDagPath& objPath)
    {
        MStatus status;
        MObject node = objPath.node(&status);
        if (status) {
            MPlug plug(node, flag::size);
            if (!plug.isNull()) {
                MDistance s;
                if (plug.getValue(s))
                    return s.asCentimeters();
            }
        }
        return 1.0;
    }
};

MStatus initializePlugin(MObject obj)
{
    MStatus status;
    MFnPlugin plugin(obj, "Somebody", "1.0", "Any");
    status = plugin.registerNode("lifter", lifter::id, lifter::creator, lifter::initialize, MPxNode::kDeformerNode);
    if (!status) {
        status.perror("registerNode");
        return status;
    }
    status = plugin.registerNode("flag", flag::id, &flag::creator, &flag::initialize, MPxNode::kLocatorNode,
                                 &flag::drawDbClassification);
    if (!status) {
        status.perror("registerNode");
        return status;
    }
    status = MHWRender::MDrawRegistry::registerDrawOverrideCreator(flag::drawDbClassification, flag::drawRegistrantId,
                                                                   FlagDrawOverride::Creator);
    if (!status)
        status.perror("registerDrawOverrideCreator");
    return status;
}

MStatus uninitializePlugin(MObject obj)
{
    MStatus status;
    MFnPlugin plugin(obj);
    status = MHWRender::MDrawRegistry::deregisterDrawOverrideCreator(flag::drawDbClassification, flag::drawRegistrantId);
    if (!status)
        status.perror("deregisterDrawOverrideCreator");
    status = plugin.deregisterNode(flag::id);
    if (!status)
        status.perror("deregisterNode");
    status = plugin.deregisterNode(lifter::id);
    if (!status)
        status.perror("deregisterNode");
    return status;
}
