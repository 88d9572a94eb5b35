// Commands: one undoable with every kind of flag, one that walks the graph.
#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MDGModifier.h>
#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MEulerRotation.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MFnTransform.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MItSelectionList.h>
#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include <list>
#include <map>
#include <string>

const char *placeShort = "-p", *placeLong = "-place";
const char *tagShort = "-t", *tagLong = "-tag";
const char *nameShort = "-n", *nameLong = "-name";
const char *quietShort = "-q1", *quietLong = "-quietly";
const char *turnShort = "-tu", *turnLong = "-turn";

// rack [-place x y z] [-tag name value]... [-turn angle] [-name text] [objects]: a group at a place over the objects,
// with a dynamic attribute for each tag and the count of the objects. -edit and -query work on racks.
class rackCmd : public MPxCommand
{
public:
    rackCmd() : mPlace(0, 0, 0), mTurn(0), mName("rack") {}
    ~rackCmd() override {}
    static void*   creator() { return new rackCmd; }
    static MSyntax newSyntax();

    MStatus doIt(const MArgList& args) override;
    MStatus redoIt() override;
    MStatus undoIt() override;
    bool    isUndoable() const override { return !mQuery; }

private:
    MStatus parseArgs(const MArgList& args);
    MStatus query(const MArgDatabase& db);
    MStatus build();
    MStatus addTags(const MObject& node);

    bool           mQuery = false, mEdit = false, mPlaced = false;
    MVector        mPlace;
    MAngle         mTurn;
    MString        mName;
    MStringArray   mTags;
    MIntArray      mValues;
    MSelectionList mObjects, mPrevious;
    MDagModifier   mDag;
    MDGModifier    mDg;
    MObject        mRack;
    MVector        mOldPlace;
};

MSyntax rackCmd::newSyntax()
{
    MSyntax syntax;
    syntax.addFlag(placeShort, placeLong, MSyntax::kDistance, MSyntax::kDistance, MSyntax::kDistance);
    syntax.addFlag(tagShort, tagLong, MSyntax::kString, MSyntax::kLong);
    syntax.makeFlagMultiUse(tagShort);
    syntax.addFlag(nameShort, nameLong, MSyntax::kString);
    syntax.addFlag(quietShort, quietLong);
    syntax.addFlag(turnShort, turnLong, MSyntax::kAngle);
    syntax.setObjectType(MSyntax::kSelectionList, 0, 10);
    syntax.useSelectionAsDefault(true);
    syntax.enableEdit(true);
    syntax.enableQuery(true);
    return syntax;
}

MStatus rackCmd::parseArgs(const MArgList& args)
{
    MStatus status;
    MArgDatabase argData(syntax(), args, &status);
    if (!status)
        return status;
    mQuery = argData.isQuery();
    mEdit = argData.isEdit();
    if (!(status = argData.getObjects(mObjects)))
        return status;
    if (mQuery)
        return query(argData);

    if (argData.isFlagSet(placeShort)) {
        mPlaced = true;
        for (unsigned i = 0; i < 3; ++i) {
            MDistance d;
            CHECK_MSTATUS_AND_RETURN_IT(argData.getFlagArgument(placeShort, i, d));
            mPlace[i] = d.asCentimeters();
        }
    }
    if (argData.isFlagSet(turnLong))
        argData.getFlagArgument(turnLong, 0, mTurn);
    if (argData.isFlagSet(nameShort))
        argData.getFlagArgument(nameShort, 0, mName);
    const unsigned uses = argData.numberOfFlagUses(tagShort);
    for (unsigned i = 0; i < uses; ++i) {
        MArgList list;
        CHECK_MSTATUS_AND_RETURN_IT(argData.getFlagArgumentList(tagShort, i, list));
        mTags.append(list.asString(0));
        mValues.append(list.asInt(1));
    }
    return MS::kSuccess;
}

MStatus rackCmd::query(const MArgDatabase& argData)
{
    MDagPath path;
    if (mObjects.length() != 1 || !mObjects.getDagPath(0, path)) {
        displayError("rack: query needs one rack");
        return MS::kInvalidParameter;
    }
    MFnTransform fn(path);
    if (argData.isFlagSet(placeShort)) {
        MVector t = fn.getTranslation(MSpace::kTransform);
        MDoubleArray result;
        for (unsigned i = 0; i < 3; ++i)
            result.append(t[i]);
        setResult(result);
    } else if (argData.isFlagSet(nameShort)) {
        setResult(fn.name());
    } else if (argData.isFlagSet(tagShort)) {
        MStringArray names;
        for (unsigned i = 0; i < fn.attributeCount(); ++i) {
            MPlug plug(path.node(), fn.attribute(i));
            if (plug.isDynamic())
                names.append(plug.partialName(false, false, false, false, false, true));
        }
        clearResult();
        setResult(names);
    } else {
        setResult(int(fn.childCount()));
    }
    return MS::kSuccess;
}

MStatus rackCmd::doIt(const MArgList& args)
{
    MStatus status = parseArgs(args);
    if (!status || mQuery)
        return status;
    MGlobal::getActiveSelectionList(mPrevious);
    if (mEdit) {
        MDagPath path;
        if (mObjects.isEmpty() || !mObjects.getDagPath(0, path)) {
            MGlobal::displayError("rack: nothing to edit");
            return MS::kFailure;
        }
        mRack = path.node();
        mOldPlace = MFnTransform(path).getTranslation(MSpace::kTransform);
        addTags(mRack);
    } else {
        status = build();
        CHECK_MSTATUS_AND_RETURN_IT(status);
    }
    return redoIt();
}

MStatus rackCmd::build()
{
    MStatus status;
    mRack = mDag.createNode("transform", MObject::kNullObj, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    mDag.renameNode(mRack, mName);
    CHECK_MSTATUS_AND_RETURN_IT(mDag.doIt());
    MItSelectionList iter(mObjects, MFn::kDagNode);
    int count = 0;
    for (; !iter.isDone(); iter.next(), ++count) {
        MDagPath path;
        MObject  component;
        iter.getDagPath(path, component);
        if (!component.isNull())
            continue;
        if (path.apiType() != MFn::kTransform)
            path.pop();
        mDag.reparentNode(path.node(), mRack);
    }
    mTags.append("count");
    mValues.append(count);
    addTags(mRack);
    MFnDependencyNode rack(mRack);
    mDg.newPlugValueDouble(rack.findPlug("rotateZ", false), mTurn.asRadians());
    return MS::kSuccess;
}

MStatus rackCmd::addTags(const MObject& node)
{
    for (unsigned i = 0; i < mTags.length(); ++i) {
        MFnNumericAttribute fnAttr;
        MObject attr = fnAttr.create(mTags[i], mTags[i], MFnNumericData::kInt, mValues[i]);
        fnAttr.setKeyable(true);
        fnAttr.setStorable(true);
        CHECK_MSTATUS(mDg.addAttribute(node, attr));
    }
    return MS::kSuccess;
}

MStatus rackCmd::redoIt()
{
    MStatus status = mDag.doIt();
    CHECK_MSTATUS_AND_RETURN_IT(status);
    status = mDg.doIt();
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MFnTransform fn(mRack, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    if (mPlaced || !mEdit)
        fn.setTranslation(mPlace, MSpace::kTransform);
    MGlobal::select(mRack, MGlobal::kReplaceList);
    setResult(fn.partialPathName());
    return status;
}

MStatus rackCmd::undoIt()
{
    if (mEdit && mPlaced)
        MFnTransform(mRack).setTranslation(mOldPlace, MSpace::kTransform);
    CHECK_MSTATUS_AND_RETURN_IT(mDg.undoIt());
    CHECK_MSTATUS_AND_RETURN_IT(mDag.undoIt());
    return MGlobal::setActiveSelectionList(mPrevious);
}

// tally what [node]: counts, in the old style, straight from the argument list
class tallyCmd : public MPxCommand
{
public:
    static void* creator() { return new tallyCmd; }
    MStatus doIt(const MArgList& args) override;

private:
    MStatus shapes();
    MStatus graph(const MString& start, MItDependencyGraph::Direction direction);
    MStatus nodes();
    MStatus components();
};

MStatus tallyCmd::doIt(const MArgList& args)
{
    if (args.length() < 1) {
        displayError("tally: say what");
        return MS::kFailure;
    }
    MString what = args.asString(0);
    if (what == "shapes")
        return shapes();
    if (what == "nodes")
        return nodes();
    if (what == "components")
        return components();
    if (what == "upstream" || what == "downstream")
        return graph(args.asString(1), what == "upstream" ? MItDependencyGraph::kUpstream : MItDependencyGraph::kDownstream);
    unsigned at = args.flagIndex("s", "sum");
    if (at != MArgList::kInvalidArgIndex) {
        double sum = 0;
        for (unsigned i = at + 1; i < args.length(); ++i)
            sum += args.asDouble(i);
        setResult(sum);
        return MS::kSuccess;
    }
    displayError("tally: cannot count " + what);
    return MS::kInvalidParameter;
}

// path names of all mesh shapes with their vertex counts, depth first
MStatus tallyCmd::shapes()
{
    MStatus status;
    MStringArray found;
    MItDag dagIt(MItDag::kDepthFirst, MFn::kMesh, &status);
    for (; !dagIt.isDone(); dagIt.next()) {
        MDagPath path;
        dagIt.getPath(path);
        MFnDagNode dagNode(path);
        if (dagNode.isIntermediateObject())
            continue;
        MFnMesh mesh(path);
        MString line = path.fullPathName();
        line += MString(" ") + mesh.numVertices();
        found.append(line);
    }
    setResult(found);
    return status;
}

MStatus tallyCmd::graph(const MString& start, MItDependencyGraph::Direction direction)
{
    MSelectionList list;
    if (list.add(start) != MS::kSuccess) {
        displayError("tally: no " + start);
        return MS::kNotFound;
    }
    MObject node;
    list.getDependNode(0, node);
    MStatus status;
    MItDependencyGraph it(node, MFn::kInvalid, direction, MItDependencyGraph::kBreadthFirst,
                          MItDependencyGraph::kNodeLevel, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    it.disablePruningOnFilter();
    clearResult();
    for (; !it.isDone(); it.next()) {
        MObject thisNode = it.currentItem();
        MFnDependencyNode fn(thisNode);
        appendToResult(fn.name());
    }
    return MS::kSuccess;
}

// how many nodes of foreign types there are, by type
MStatus tallyCmd::nodes()
{
    std::map<std::string, int> byType;
    for (MItDependencyNodes it(MFn::kPluginDependNode); !it.isDone(); it.next()) {
        MFnDependencyNode fn(it.thisNode());
        ++byType[fn.typeName().asChar()];
    }
    MStringArray result;
    for (const auto& entry : byType)
        result.append(MString(entry.first.c_str()) + " " + entry.second);
    setResult(result);
    return MS::kSuccess;
}

// numbers of the selected vertices
MStatus tallyCmd::components()
{
    MSelectionList active;
    MGlobal::getActiveSelectionList(active);
    MIntArray all;
    for (MItSelectionList it(active, MFn::kMeshVertComponent); !it.isDone(); it.next()) {
        MDagPath path;
        MObject component;
        if (!it.getDagPath(path, component) || component.isNull())
            continue;
        MFnSingleIndexedComponent fn(component);
        MIntArray elements;
        fn.getElements(elements);
        for (unsigned i = 0; i < elements.length(); i++)
            all.append(elements[i]);
    }
    setResult(all);
    return MS::kSuccess;
}

MStatus initializePlugin(MObject obj)
{
    MFnPlugin plugin(obj, "Somebody", "1.0", "Any");
    MStatus   status = plugin.registerCommand("rack", rackCmd::creator, rackCmd::newSyntax);
    if (!status) {
        status.perror("registerCommand");
        return status;
    }
    return plugin.registerCommand("tally", tallyCmd::creator);
}

MStatus uninitializePlugin(MObject obj)
{
    MFnPlugin plugin(obj);
    plugin.deregisterCommand("tally");
    return plugin.deregisterCommand("rack");
}
