#include <maya/MPxLocatorNode.h>

#include <maya/MBoundingBox.h>
#include <maya/MPoint.h>

#include "graph/access.h"
#include "nodes/dag_attrs.h"

using namespace mirk;

MObject MPxLocatorNode::nodeBoundingBox;
MObject MPxLocatorNode::nodeBoundingBoxMin;
MObject MPxLocatorNode::nodeBoundingBoxMinX;
MObject MPxLocatorNode::nodeBoundingBoxMinY;
MObject MPxLocatorNode::nodeBoundingBoxMinZ;
MObject MPxLocatorNode::nodeBoundingBoxMax;
MObject MPxLocatorNode::nodeBoundingBoxMaxX;
MObject MPxLocatorNode::nodeBoundingBoxMaxY;
MObject MPxLocatorNode::nodeBoundingBoxMaxZ;
MObject MPxLocatorNode::nodeBoundingBoxSize;
MObject MPxLocatorNode::nodeBoundingBoxSizeX;
MObject MPxLocatorNode::nodeBoundingBoxSizeY;
MObject MPxLocatorNode::nodeBoundingBoxSizeZ;
MObject MPxLocatorNode::center;
MObject MPxLocatorNode::boundingBoxCenterX;
MObject MPxLocatorNode::boundingBoxCenterY;
MObject MPxLocatorNode::boundingBoxCenterZ;
MObject MPxLocatorNode::matrix;
MObject MPxLocatorNode::inverseMatrix;
MObject MPxLocatorNode::worldMatrix;
MObject MPxLocatorNode::worldInverseMatrix;
MObject MPxLocatorNode::parentMatrix;
MObject MPxLocatorNode::parentInverseMatrix;
MObject MPxLocatorNode::visibility;
MObject MPxLocatorNode::intermediateObject;
MObject MPxLocatorNode::instObjGroups;
MObject MPxLocatorNode::localPosition;
MObject MPxLocatorNode::localPositionX;
MObject MPxLocatorNode::localPositionY;
MObject MPxLocatorNode::localPositionZ;
MObject MPxLocatorNode::worldPosition;
MObject MPxLocatorNode::worldPositionX;
MObject MPxLocatorNode::worldPositionY;
MObject MPxLocatorNode::worldPositionZ;
MObject MPxLocatorNode::localScale;
MObject MPxLocatorNode::localScaleX;
MObject MPxLocatorNode::localScaleY;
MObject MPxLocatorNode::localScaleZ;

MPxLocatorNode::MPxLocatorNode() = default;
MPxLocatorNode::~MPxLocatorNode() = default;
MPxNode::Type MPxLocatorNode::type() const { return kLocatorNode; }
void MPxLocatorNode::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {}
bool MPxLocatorNode::isBounded() const { return false; }
bool MPxLocatorNode::excludeAsLocator() const { return true; }
bool MPxLocatorNode::isTransparent() const { return false; }
bool MPxLocatorNode::drawLast() const { return false; }
MBoundingBox MPxLocatorNode::boundingBox() const { return MBoundingBox(MPoint(-1, -1, -1), MPoint(1, 1, 1)); }
