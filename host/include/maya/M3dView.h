#pragma once
#include <maya/MColor.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

class MDagPath;
class MString;

/// A 3D view. Without windows there is one: the viewport that is being drawn or was drawn last. Pixels count from the
/// lower left corner.
class M3dView
{
public:
    enum DisplayStyle { kBoundingBox, kFlatShaded, kGouraudShaded, kWireFrame, kPoints };

    enum DisplayStatus
    {
        kActive, kLive, kDormant, kInvisible, kHilite, kTemplate, kActiveTemplate, kActiveComponent, kLead,
        kIntermediateObject, kActiveAffected, kNoStatus
    };

    enum TextPosition { kLeft, kCenter, kRight };

    static M3dView      active3dView(MStatus* ReturnStatus = nullptr);
    static unsigned int numberOf3dViews();

    int     portWidth(MStatus* ReturnStatus = nullptr) const;
    int     portHeight(MStatus* ReturnStatus = nullptr) const;
    MStatus getCamera(MDagPath& camera) const;
    MStatus modelViewMatrix(MMatrix& modelViewMatrix) const;
    MStatus projectionMatrix(MMatrix& projectionMatrix) const;
    DisplayStyle displayStyle(MStatus* ReturnStatus = nullptr) const;

    /// False if the point is outside the view; the pixel is told all the same if it is in front of the eye.
    bool    worldToView(const MPoint& worldPoint, short& xPosition, short& yPosition, MStatus* ReturnStatus = nullptr) const;
    MStatus viewToWorld(short xPosition, short yPosition, MPoint& nearClipPoint, MPoint& farClipPoint) const;
    /// A ray: the point on the near plane, and the unit direction.
    MStatus viewToWorld(short xPosition, short yPosition, MPoint& worldPoint, MVector& worldVector) const;
    MStatus viewToObjectSpace(short xPosition, short yPosition, const MMatrix& localMatrixInverse, MPoint& point,
                              MVector& vector) const;

    /// Success while an object is being drawn with OpenGL, which is when its calls have an effect.
    MStatus beginGL();
    MStatus endGL();
    /// These two draw only between beginGL and endGL.
    MStatus setDrawColor(const MColor& color);
    MStatus drawText(const MString& text, const MPoint& position, TextPosition textPosition = kLeft);
};
