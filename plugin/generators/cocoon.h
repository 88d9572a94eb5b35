#pragma once
#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

#include <vector>

namespace web {
struct Band;
struct Links;
struct Pieces;
struct Points;
struct Strands;
struct StrandStyle;
} // namespace web

/// What the last evaluation left to be drawn, in the space of the locator: segments of links (two places each, one width
/// in pixels) and triangles (three places each). x, y, z of a place; r, g, b, a of its colour.
struct DrawnWeb
{
    std::vector<float> linkPoints, linkColors, linkWidths, facePoints, faceColors;

    void clear() { *this = DrawnWeb(); }
};

/// Links points that are at distances within a band, and turns the links into lines, a mesh of thin tubes, instances, and
/// triangles between linked points.
class cocoon : public MPxLocatorNode
{
public:
    static inline MTypeId id{0x115790};
    static inline MString drawDbClassification{"drawdb/geometry/cocoon"};
    static inline MString drawRegistrantId{"CocoonNodePlugin"};
    static void*   creator() { return new cocoon; }
    static MStatus initialize();
    void           postConstructor() override;
    MStatus        compute(const MPlug& plug, MDataBlock& block) override;

    void         draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle, M3dView::DisplayStatus) override;
    bool         isBounded() const override { return true; }
    MBoundingBox boundingBox() const override;
    bool         drawLast() const override { return true; }

    /// What is to be drawn now: evaluates the node if it has to be.
    const DrawnWeb& drawn() const;

    static inline MObject aInPosPP, aInRefPosPP, aInRgbaPP, aInThicknessPP, aInPosPP2, aInRgbaPP2, aInThicknessPP2,
        aInCountPP, aInIdPP, aInShortestPathCounts;
    static inline MObject aForceEvaluate, aOutLinksMesh, aOutFacesMesh, aOutPosPP, aOutDirectionPP, aOutRgbaPP,
        aOutThicknessPP, aOutScalePP;
    static inline MObject aActive, aMinDistance, aMaxDistance, aMaxConnections, aAntialiased, aSegments, aInputColorLinks,
        aLinksColor, aLinksColorRgb[3], aLinksAlpha, aInputColorFaces, aFacesColor, aFacesColorRgb[3], aFacesAlpha,
        aUseInputThickness, aThicknessMultiplier, aUseThicknessDisplacement, aThicknessDisplacement,
        aUsePositionDisplacement[3], aPositionDisplacement[3], aMinSurfaceArea, aMaxSurfaceArea, aDensity, aSeed,
        aDrawLinks, aDrawFaces, aLinksMesh, aLinksInstances, aLinksMeshInstances, aFacesMesh, aColors, aUvs, aEdges;

private:
    web::Points      readPoints(MDataBlock& block) const;
    web::Links       findLinks(MDataBlock& block, std::size_t firstCount, const web::Points& points) const;
    web::StrandStyle strandStyle(MDataBlock& block) const;
    web::Pieces      makeFaces(MDataBlock& block, const web::Points& points, const web::Links& links) const;
    void             keepForDrawing(const web::Strands& strands, const web::Pieces& faces, bool faceToo, double multiplier);
    MStatus          writeInstances(MDataBlock& block, const web::Strands& strands) const;

    DrawnWeb drawn_;
};

/// Draws links as lines and faces as triangles with OpenGL.
class CocoonDrawOverride : public MHWRender::MPxDrawOverride
{
public:
    static MHWRender::MPxDrawOverride* Creator(const MObject& node) { return new CocoonDrawOverride(node); }
    explicit CocoonDrawOverride(const MObject& node);

    MHWRender::DrawAPI supportedDrawAPIs() const override { return MHWRender::kAllDevices; }
    bool               hasUIDrawables() const override { return true; }
    MUserData*         prepareForDraw(const MDagPath& object, const MDagPath& camera, const MHWRender::MFrameContext&,
                                      MUserData* oldData) override;
};
