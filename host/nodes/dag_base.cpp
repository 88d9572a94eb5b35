// dagNode, the abstract shapes, transform and joint: matrices and boxes, and dirt that goes down or up the DAG.
#include <algorithm>
#include <cstring>

#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTransformationMatrix.h>

#include "dag/dag.h"
#include "data/mobject.h"
#include "dynamics/instancer.h"
#include "graph/evaluate.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/dag_attrs.h"
#include "nodes/shape_box.h"
#include "nodes/transform_limits.h"

namespace mirk::nodes {
namespace {

DagAttrs g;

// ---- attributes --------------------------------------------------------------------------------------------------

MObject boxCorner(const char* name, const char* shortName, const char* x, const char* y, const char* z)
{
    const std::string n = name;
    return tuple(name, shortName,
                    {unit((n + "X").c_str(), x, Unit::kDistance, 0, kOut), unit((n + "Y").c_str(), y, Unit::kDistance, 0, kOut),
                     unit((n + "Z").c_str(), z, Unit::kDistance, 0, kOut)},
                    kOut);
}

MObject drawOverrides()
{
    return compound("drawOverride", "do",
                    {choice("overrideDisplayType", "ovdt", 0, {"Normal", "Template", "Reference"}),
                     choice("overrideLevelOfDetail", "ovlod", 0, {"Full", "Bounding Box"}),
                     number("overrideShading", "ovs", Number::kBoolean, 1), number("overrideTexturing", "ovt", Number::kBoolean, 1),
                     number("overridePlayback", "ovp", Number::kBoolean, 1), number("overrideEnabled", "ove", Number::kBoolean, 0),
                     number("overrideVisibility", "ovv", Number::kBoolean, 1), number("overrideColor", "ovc", Number::kByte, 0, 0, 31),
                     number("overrideRGBColors", "ovrgbf", Number::kBoolean, 0),
                     tuple("overrideColorRGB", "ovrgb",
                           {number("overrideColorR", "ovcr", Number::kFloat), number("overrideColorG", "ovcg", Number::kFloat),
                            number("overrideColorB", "ovcb", Number::kFloat)},
                           kColor)});
}

MStatus initDagNode()
{
    MObject mn = boxCorner("boundingBoxMin", "bbmn", "bbnx", "bbny", "bbnz");
    MObject mx = boxCorner("boundingBoxMax", "bbmx", "bbxx", "bbxy", "bbxz");
    MObject size = boxCorner("boundingBoxSize", "bbsi", "bbsx", "bbsy", "bbsz");
    MObject box = compound("boundingBox", "bb", {mn, mx, size}, kOut);
    MObject centerX = unit("boundingBoxCenterX", "bcx", Unit::kDistance, 0, kOut),
            centerY = unit("boundingBoxCenterY", "bcy", Unit::kDistance, 0, kOut),
            centerZ = unit("boundingBoxCenterZ", "bcz", Unit::kDistance, 0, kOut);
    MObject center = tuple("center", "c", {centerX, centerY, centerZ}, kOut);
    MObject local = matrix("matrix", "m", kOut), localInverse = matrix("inverseMatrix", "im", kOut);
    MObject world = matrix("worldMatrix", "wm", kOut | kWorld), worldInverse = matrix("worldInverseMatrix", "wim", kOut | kWorld);
    MObject parent = matrix("parentMatrix", "pm", kOut | kWorld), parentInverse = matrix("parentInverseMatrix", "pim", kOut | kWorld);
    MObject visibility = number("visibility", "v", Number::kBoolean, 1, kKey);
    MObject intermediate = number("intermediateObject", "io", Number::kBoolean, 0);
    MObject groups = compound("objectGroups", "og",
                              {typed("objectGrpCompList", "gcl", MFnData::kComponentList), number("objectGroupId", "gid", Number::kInt, 0),
                               number("objectGrpColor", "gco", Number::kShort, 0)},
                              kMulti);
    MObject instGroups = compound("instObjGroups", "iog", {groups}, kMulti | kWorld);
    add({box, center, local, localInverse, world, worldInverse, parent, parentInverse, visibility, intermediate,
         number("template", "tmp", Number::kBoolean, 0), number("ghosting", "gh", Number::kBoolean, 0), instGroups,
         number("useObjectColor", "uoc", Number::kByte, 0), number("objectColor", "oc", Number::kShort, 0, 0, 7), drawOverrides(),
         number("lodVisibility", "lodv", Number::kBoolean, 1), message("selectionChildHighlighting", "selch", kHide)});
    affects({local}, {localInverse, world, worldInverse, box});
    affects({world}, {worldInverse});
    affects({parent}, {parentInverse, world, worldInverse});
    affects({box}, {center});

    MPxLocatorNode::nodeBoundingBox = box;
    MObject* corners[] = {&MPxLocatorNode::nodeBoundingBoxMin,  &MPxLocatorNode::nodeBoundingBoxMinX,  &MPxLocatorNode::nodeBoundingBoxMinY,
                          &MPxLocatorNode::nodeBoundingBoxMinZ, &MPxLocatorNode::nodeBoundingBoxMax,   &MPxLocatorNode::nodeBoundingBoxMaxX,
                          &MPxLocatorNode::nodeBoundingBoxMaxY, &MPxLocatorNode::nodeBoundingBoxMaxZ,  &MPxLocatorNode::nodeBoundingBoxSize,
                          &MPxLocatorNode::nodeBoundingBoxSizeX, &MPxLocatorNode::nodeBoundingBoxSizeY, &MPxLocatorNode::nodeBoundingBoxSizeZ};
    for (unsigned i = 0; i < 3; ++i) {
        *corners[4 * i] = childOf(box, i);
        for (unsigned k = 0; k < 3; ++k)
            *corners[4 * i + 1 + k] = childOf(childOf(box, i), k);
    }
    MPxLocatorNode::center = center;
    MPxLocatorNode::boundingBoxCenterX = centerX;
    MPxLocatorNode::boundingBoxCenterY = centerY;
    MPxLocatorNode::boundingBoxCenterZ = centerZ;
    MPxLocatorNode::matrix = local;
    MPxLocatorNode::inverseMatrix = localInverse;
    MPxLocatorNode::worldMatrix = world;
    MPxLocatorNode::worldInverseMatrix = worldInverse;
    MPxLocatorNode::parentMatrix = parent;
    MPxLocatorNode::parentInverseMatrix = parentInverse;
    MPxLocatorNode::visibility = visibility;
    MPxLocatorNode::intermediateObject = intermediate;
    MPxLocatorNode::instObjGroups = instGroups;
    return MS::kSuccess;
}

MObject dagAttribute(const Attribute* a) { return wrap(const_cast<Attribute*>(a)); }

MStatus initTransform()
{
    MObject t = triple("translate", "t", Unit::kDistance, 0, kKey), r = triple("rotate", "r", Unit::kAngle, 0, kKey);
    MObject s = triple("scale", "s", Number::kDouble, 1, kKey);
    for (const MObject& whole : {t, r, s})   // keys are set on the channels alone
        objectAs<Attribute>(whole)->set(Attribute::kKeyable, false);
    MObject order = choice("rotateOrder", "ro", 0, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"});
    MObject sh = tuple("shear", "sh",
                       {number("shearXY", "shxy", Number::kDouble), number("shearXZ", "shxz", Number::kDouble),
                        number("shearYZ", "shyz", Number::kDouble)});
    MObject rp = triple("rotatePivot", "rp", Unit::kDistance), rpt = triple("rotatePivotTranslate", "rpt", Unit::kDistance);
    MObject sp = triple("scalePivot", "sp", Unit::kDistance), spt = triple("scalePivotTranslate", "spt", Unit::kDistance);
    MObject ra = triple("rotateAxis", "ra", Unit::kAngle);
    MObject inherits = number("inheritsTransform", "it", Number::kBoolean, 1), xform = matrix("xformMatrix", "xm", kOut);
    add({t, r, order, s, sh, rp, rpt, sp, spt, ra, inherits, xform, number("displayHandle", "dh", Number::kBoolean),
         number("displayLocalAxis", "dla", Number::kBoolean), number("displayRotatePivot", "drp", Number::kBoolean),
         number("displayScalePivot", "dsp", Number::kBoolean), triple("selectHandle", "hdl", Unit::kDistance),
         number("showManipDefault", "smd", Number::kByte), number("specifiedManipLocation", "sml", Number::kBoolean),
         triple("transMinusRotatePivot", "tmrp", Unit::kDistance, 0, kHide | kNoStore)});
    const MObject local = dagAttribute(g.matrix), world = dagAttribute(g.worldMatrix);
    affects({t, r, order, s, sh, rp, rpt, sp, spt, ra},
            {local, xform, dagAttribute(g.inverseMatrix), world, dagAttribute(g.worldInverseMatrix), dagAttribute(g.boundingBox), dagAttribute(g.center)});
    affects({inherits}, {world, dagAttribute(g.worldInverseMatrix)});
    addLimitAttributes({local, xform, dagAttribute(g.inverseMatrix), world, dagAttribute(g.worldInverseMatrix), dagAttribute(g.boundingBox), dagAttribute(g.center)});
    add({tuple("rotateQuaternion", "rq",
               {number("rotateQuatX", "rqx", Number::kDouble), number("rotateQuatY", "rqy", Number::kDouble),
                number("rotateQuatZ", "rqz", Number::kDouble), number("rotateQuatW", "rqw", Number::kDouble, 1)},
               kHide)});
    return MS::kSuccess;
}

MStatus initJoint()
{
    MObject jo = triple("jointOrient", "jo", Unit::kAngle), ssc = number("segmentScaleCompensate", "ssc", Number::kBoolean, 1);
    MObject inverse = triple("inverseScale", "is", Number::kDouble, 1);
    add({number("jointTypeX", "jtx", Number::kBoolean, 1), number("jointTypeY", "jty", Number::kBoolean, 1), number("jointTypeZ", "jtz", Number::kBoolean, 1)});
    add({jo, ssc, inverse, unit("radius", "radi", Unit::kDistance, 1, kChannel), number("drawStyle", "ds", Number::kShort),
         choice("type", "typ", 0, {"None", "Root", "Hip", "Knee", "Foot"}), choice("side", "sd", 3, {"Center", "Left", "Right", "None"}),
         matrix("bindPose", "bps"), number("lockInfluenceWeights", "liw", Number::kBoolean),
         triple("preferredAngle", "pa", Unit::kAngle), triple("stiffness", "st", Number::kDouble)});
    affects({jo, ssc, inverse},
            {dagAttribute(g.matrix), dagAttribute(g.xformMatrix), dagAttribute(g.inverseMatrix), dagAttribute(g.worldMatrix),
             dagAttribute(g.worldInverseMatrix), dagAttribute(g.boundingBox), dagAttribute(g.center)});
    return MS::kSuccess;
}

// ---- matrices ----------------------------------------------------------------------------------------------------

MVector pulledVector(Node& node, const Attribute* a)
{
    double v[3];
    pulledTriple(node, a, v);
    return {v[0], v[1], v[2]};
}

MTransformationMatrix pieces(Node& node)
{
    MTransformationMatrix m;
    double                v[3];
    pulledTriple(node, g.scale, v);
    limit(node, Limited::scale, v);
    m.setScale(v, MSpace::kTransform);
    pulledTriple(node, g.shear, v);
    m.setShear(v, MSpace::kTransform);
    pulledTriple(node, g.rotate, v);
    limit(node, Limited::rotate, v);
    const int order = std::clamp(int(pulledNumber(node, g.rotateOrder)), 0, 5);
    m.setRotation(v, MTransformationMatrix::RotationOrder(order + 1));
    pulledTriple(node, g.rotateAxis, v);
    m.setRotationOrientation(MEulerRotation(v[0], v[1], v[2]).asQuaternion());
    pulledTriple(node, g.translate, v);
    limit(node, Limited::translate, v);
    m.setTranslation(MVector(v[0], v[1], v[2]), MSpace::kTransform);
    m.setRotatePivot(pulledVector(node, g.rotatePivot), MSpace::kTransform, false);
    m.setRotatePivotTranslation(pulledVector(node, g.rotatePivotTranslate), MSpace::kTransform);
    m.setScalePivot(pulledVector(node, g.scalePivot), MSpace::kTransform, false);
    m.setScalePivotTranslation(pulledVector(node, g.scalePivotTranslate), MSpace::kTransform);
    return m;
}

MMatrix diagonal(double x, double y, double z)
{
    MMatrix m;
    m[0][0] = x;
    m[1][1] = y;
    m[2][2] = z;
    return m;
}

/// Scale, axis, rotation, orientation, the parent's scale taken back, translation.
MMatrix jointMatrix(Node& node)
{
    MTransformationMatrix m = pieces(node);
    const MVector         translate = m.getTranslation(MSpace::kTransform);
    m.setTranslation(MVector(), MSpace::kTransform);
    double v[3];
    pulledTriple(node, g.jointOrient, v);
    MMatrix matrix = m.asMatrix() * MEulerRotation(v[0], v[1], v[2]).asMatrix();
    if (pulledNumber(node, g.segmentScaleCompensate) != 0) {
        pulledTriple(node, g.inverseScale, v);
        const auto inverted = [](double s) { return s != 0 ? 1 / s : 1; };
        matrix *= diagonal(inverted(v[0]), inverted(v[1]), inverted(v[2]));
    }
    MMatrix shift;
    for (unsigned i = 0; i < 3; ++i)
        shift[3][i] = translate[i];
    return matrix * shift;
}

MMatrix localMatrix(Node& node)
{
    if (!node.type->dag || !node.hasFn(MFn::kTransform))
        return MMatrix();
    if (node.hasFn(MFn::kJoint))
        return jointMatrix(node);
    return pieces(node).asMatrix();
}

MMatrix pulledMatrix(Cell& cell)
{
    eval::pull(cell);
    MMatrix m;
    std::memcpy(m.matrix, cell.own.matrix, sizeof m.matrix);
    return m;
}

MMatrix parentWorld(Node& node, int instance)
{
    Node*  parent = node.dag && !node.dag->parents.empty() ? node.dag->parents.front() : nullptr;
    size_t parentInstance = 0;
    if (node.dag && dag::isInstanced(node)) {
        std::vector<Path> paths = dag::allPaths(node);
        if (size_t(instance) >= paths.size())
            return MMatrix();
        paths[instance].nodes.pop_back();
        parent = paths[instance].node();
        parentInstance = dag::instanceNumber(paths[instance]);
    }
    if (!parent || parent == &dag::world())
        return MMatrix();
    return pulledMatrix(*parent->cell(g.worldMatrix)->element(int(parentInstance)));
}

MMatrix worldOf(Node& node, int instance)
{
    const MMatrix local = pulledMatrix(*node.cell(g.matrix));
    if (node.hasFn(MFn::kTransform) && node.type->find("inheritsTransform") && pulledNumber(node, g.inheritsTransform) == 0)
        return local;
    return local * pulledMatrix(*node.cell(g.parentMatrix)->element(instance));
}

void store(Cell& cell, const MMatrix& m) { std::memcpy(cell.own.matrix, m.matrix, sizeof m.matrix); }

// ---- boxes -------------------------------------------------------------------------------------------------------

void storeBox(Node& node)
{
    double box[6];
    if (!nodeBox(node, box))
        std::fill(box, box + 6, 0.0);
    Cell*            top = node.cell(g.boundingBox);
    const Attribute* corners[] = {g.boxMin, g.boxMax, g.boxSize};
    for (int c = 0; c < 3; ++c)
        for (int k = 0; k < 3; ++k)
            node.cell(corners[c])->child(size_t(k))->setNumber(c == 0 ? box[k] : c == 1 ? box[3 + k] : box[3 + k] - box[k]);
    eval::clean(*top);
}

void storeCenter(Node& node)
{
    eval::pull(*node.cell(g.boxMin));
    Cell* top = node.cell(g.center);
    for (size_t k = 0; k < 3; ++k)
        top->child(k)->setNumber(0.5 * (node.cell(g.boxMin)->child(k)->number() + node.cell(g.boxMax)->child(k)->number()));
    eval::clean(*top);
}

bool below(const Attribute* a, const Attribute* top)
{
    while (a && a != top)
        a = a->parent;
    return a != nullptr;
}

}  // namespace

bool computeDag(Node& node, Cell& cell)
{
    const Attribute* a = cell.attr;
    const int        instance = std::max(cell.index, 0);
    if (a == g.matrix)
        store(cell, localMatrix(node));
    else if (a == g.inverseMatrix)
        store(cell, pulledMatrix(*node.cell(g.matrix)).inverse());
    else if (a == g.worldMatrix && cell.isElement())
        store(cell, worldOf(node, instance));
    else if (a == g.worldInverseMatrix && cell.isElement())
        store(cell, pulledMatrix(*node.cell(g.worldMatrix)->element(instance)).inverse());
    else if (a == g.parentMatrix && cell.isElement())
        store(cell, parentWorld(node, instance));
    else if (a == g.parentInverseMatrix && cell.isElement())
        store(cell, pulledMatrix(*node.cell(g.parentMatrix)->element(instance)).inverse());
    else if (below(a, g.boundingBox))
        storeBox(node);
    else if (below(a, g.center))
        storeCenter(node);
    else if (a == g.worldMatrix || a == g.worldInverseMatrix || a == g.parentMatrix || a == g.parentInverseMatrix)
        return true;   // the multi as a whole has nothing to compute
    else
        return false;
    return true;
}

namespace {

bool computeTransform(Node& node, Cell& cell)
{
    if (cell.attr != g.xformMatrix)
        return computeDag(node, cell);
    store(cell, pulledMatrix(*node.cell(g.matrix)));
    return true;
}

// ---- dirt --------------------------------------------------------------------------------------------------------

/// World matrices make those of the children dirty, boxes those of the parents. The evaluator goes on from there.
void dirtyAcross(Node& node, const Attribute& a, std::vector<Cell*>& also)
{
    if (!node.dag)
        return;
    if (&a == g.worldMatrix) {
        for (Node* child : node.dag->children)
            for (const Attribute* w : {g.parentMatrix, g.worldMatrix})
                also.push_back(child->cellIfAny(w));
    } else if (&a == g.boundingBox || &a == g.intermediate) {
        for (Node* parent : node.dag->parents)
            if (parent != &dag::world())
                also.push_back(parent->cellIfAny(g.boundingBox));
        dynamics::instancerBoxes(node, also);
    } else if (node.type->shape && !node.type->plugin.empty() && !node.isComputed(&a) && a.is(Attribute::kWritable)) {
        also.push_back(node.cellIfAny(g.boundingBox));   // only its own code knows what its box depends on
    }
}

void nodeMoved(Node& node)
{
    for (const Attribute* a : {g.parentMatrix, g.worldMatrix, g.parentInverseMatrix, g.worldInverseMatrix})
        if (Cell* c = node.cellIfAny(a))
            eval::dirty(*c);
    for (Node* parent : node.dag->parents)
        if (Cell* c = parent == &dag::world() ? nullptr : parent->cellIfAny(g.boundingBox))
            eval::dirty(*c);
    // the numbers of instances below shift, on every level
    for (Node* child : node.dag->children)
        nodeMoved(*child);
}

class DagUser : public MPxNode
{
public:
    static void* creator() { return new DagUser; }
};

void dagHooks(NodeType& type)
{
    type.onDirty = dirtyAcross;
    type.computeBase = computeDag;
}

void transformHooks(NodeType& type) { type.computeBase = computeTransform; }

void findDagAttrs(const NodeType& t)
{
    g.boundingBox = t.find("boundingBox");
    g.boxMin = t.find("boundingBoxMin");
    g.boxMax = t.find("boundingBoxMax");
    g.boxSize = t.find("boundingBoxSize");
    g.center = t.find("center");
    g.matrix = t.find("matrix");
    g.inverseMatrix = t.find("inverseMatrix");
    g.worldMatrix = t.find("worldMatrix");
    g.worldInverseMatrix = t.find("worldInverseMatrix");
    g.parentMatrix = t.find("parentMatrix");
    g.parentInverseMatrix = t.find("parentInverseMatrix");
    g.visibility = t.find("visibility");
    g.lodVisibility = t.find("lodVisibility");
    g.intermediate = t.find("intermediateObject");
    g.isTemplate = t.find("template");
    g.instObjGroups = t.find("instObjGroups");
    g.overrideEnabled = t.find("overrideEnabled");
    g.overrideVisibility = t.find("overrideVisibility");
}

void findTransformAttrs(const NodeType& t)
{
    g.translate = t.find("translate");
    g.rotate = t.find("rotate");
    g.scale = t.find("scale");
    g.shear = t.find("shear");
    g.rotateOrder = t.find("rotateOrder");
    g.rotatePivot = t.find("rotatePivot");
    g.rotatePivotTranslate = t.find("rotatePivotTranslate");
    g.scalePivot = t.find("scalePivot");
    g.scalePivotTranslate = t.find("scalePivotTranslate");
    g.rotateAxis = t.find("rotateAxis");
    g.inheritsTransform = t.find("inheritsTransform");
    g.xformMatrix = t.find("xformMatrix");
    findLimitAttributes(t);
}

}  // namespace

const DagAttrs& dagAttrs() { return g; }

void pulledTriple(Node& node, const Attribute* attribute, double out[3])
{
    Cell* cell = node.cell(attribute);
    if (cell->attr->isTuple()) {
        eval::pull(*cell);
        for (int i = 0; i < 3; ++i)
            out[i] = cell->number(i);
        return;
    }
    for (size_t i = 0; i < 3; ++i) {
        eval::pull(*cell->child(i));
        out[i] = cell->child(i)->number();
    }
}

double pulledNumber(Node& node, const Attribute* attribute)
{
    Cell* cell = node.cell(attribute);
    eval::pull(*cell);
    return cell->number();
}

void growBox(double box[6], bool& empty, const double other[6], const double m[4][4])
{
    for (int corner = 0; corner < 8; ++corner) {
        const double p[3] = {other[corner & 1 ? 3 : 0], other[corner & 2 ? 4 : 1], other[corner & 4 ? 5 : 2]};
        for (int k = 0; k < 3; ++k) {
            const double v = p[0] * m[0][k] + p[1] * m[1][k] + p[2] * m[2][k] + m[3][k];
            box[k] = empty ? v : std::min(box[k], v);
            box[3 + k] = empty ? v : std::max(box[3 + k], v);
        }
        empty = false;
    }
}

bool nodeBox(Node& node, double box[6])
{
    if (node.type->shape)
        return shapeBox(node, box);
    double        inner[6];
    bool          innerEmpty = true;
    const MMatrix identity;
    for (Node* child : node.dag ? node.dag->children : std::vector<Node*>()) {
        if (child->type->shape && pulledNumber(*child, g.intermediate) != 0)
            continue;
        Cell* corners[] = {child->cell(g.boxMin), child->cell(g.boxMax)};
        eval::pull(*corners[0]);
        double own[6];
        for (int k = 0; k < 6; ++k)
            own[k] = corners[k / 3]->number(k % 3);
        if (std::any_of(own, own + 6, [](double v) { return v != 0; }))   // all zero: nothing below
            growBox(inner, innerEmpty, own, identity.matrix);
    }
    if (double own[6]; dynamics::isInstancer(node) && dynamics::instancesBox(node, own))
        growBox(inner, innerEmpty, own, identity.matrix);
    if (innerEmpty)
        return false;
    bool empty = true;
    growBox(box, empty, inner, node.hasFn(MFn::kTransform) ? pulledMatrix(*node.cell(g.matrix)).matrix : identity.matrix);
    return true;
}

void registerDagTypes()
{
    dag::onMoved = nodeMoved;
    findDagAttrs(*registerRow({"dagNode", "node", 0, MFn::kDagNode, nullptr, initDagNode}, Role::dag, dagHooks));
    findTransformAttrs(*registerRow({"transform", "dagNode", 0x5846524D, MFn::kTransform, DagUser::creator, initTransform}, Role::dag, transformHooks));
    NodeType* joint = registerRow({"joint", "transform", 0x4A4F494E, MFn::kJoint, DagUser::creator, initJoint}, Role::dag);
    g.jointOrient = joint->find("jointOrient");
    g.segmentScaleCompensate = joint->find("segmentScaleCompensate");
    g.inverseScale = joint->find("inverseScale");
    registerRow({"shape", "dagNode", 0, MFn::kShape, nullptr, nullptr}, Role::shape);
    registerRow({"geometryShape", "shape", 0, MFn::kShape, nullptr, nullptr}, Role::shape);
}

}  // namespace mirk::nodes
