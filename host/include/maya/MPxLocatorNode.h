#pragma once
#include <maya/M3dView.h>
#include <maya/MPxNode.h>

class MBoundingBox;
class MDagPath;

/// Base of user-defined locators: shapes that draw themselves.
class MPxLocatorNode : public MPxNode
{
public:
    MPxLocatorNode();
    ~MPxLocatorNode() override;
    Type type() const override;

    virtual void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status);
    virtual bool isBounded() const;
    virtual MBoundingBox boundingBox() const;
    /// Whether a view that shows no locators leaves this one out. Default: true.
    virtual bool excludeAsLocator() const;
    /// True: `draw` comes after what is transparent. Default: false.
    virtual bool isTransparent() const;
    /// True: of those again it comes last. Default: false.
    virtual bool drawLast() const;

    static MObject nodeBoundingBox, nodeBoundingBoxMin, nodeBoundingBoxMinX, nodeBoundingBoxMinY, nodeBoundingBoxMinZ,
        nodeBoundingBoxMax, nodeBoundingBoxMaxX, nodeBoundingBoxMaxY, nodeBoundingBoxMaxZ, nodeBoundingBoxSize,
        nodeBoundingBoxSizeX, nodeBoundingBoxSizeY, nodeBoundingBoxSizeZ;
    static MObject center, boundingBoxCenterX, boundingBoxCenterY, boundingBoxCenterZ;
    static MObject matrix, inverseMatrix, worldMatrix, worldInverseMatrix, parentMatrix, parentInverseMatrix;
    static MObject visibility, intermediateObject, instObjGroups;
    static MObject localPosition, localPositionX, localPositionY, localPositionZ;
    static MObject worldPosition, worldPositionX, worldPositionY, worldPositionZ;
    static MObject localScale, localScaleX, localScaleY, localScaleZ;
};
