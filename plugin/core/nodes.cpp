#include "core/nodes.h"

#include "arrays/arrayBlend.h"
#include "arrays/arrayDataContainer.h"
#include "arrays/arrayExpression.h"
#include "arrays/arrayToArray.h"
#include "arrays/arrayToDynArrays.h"
#include "arrays/arrayToMulti.h"
#include "arrays/arrayToPointAttribute.h"
#include "arrays/arrayToPointColor.h"
#include "arrays/colorAndAlphaToRgba.h"
#include "arrays/combineArrays.h"
#include "arrays/createArray.h"
#include "arrays/decimateArray.h"
#include "arrays/faceCenters.h"
#include "arrays/mergeArrays.h"
#include "arrays/mergeVectorArrays.h"
#include "arrays/multiToArray.h"
#include "arrays/point.h"
#include "arrays/pointAttributeToArray.h"
#include "arrays/randomizeArray.h"
#include "arrays/registered.h"
#include "arrays/remapArray.h"
#include "arrays/resizeArray.h"
#include "arrays/rgbaToColorAndAlpha.h"
#include "arrays/splitRgba.h"
#include "arrays/transformsToArrays.h"
#include "arrays/uvsToPointsOnMesh.h"
#include "caching/registered.h"
#include "deformers/registered.h"
#include "display/registered.h"
#include "dynamics/registered.h"
#include "generators/cocoon.h"
#include "generators/copier.h"
#include "generators/extractor.h"
#include "generators/registered.h"
#include "generators/scatter.h"
#include "generators/shatter.h"
#include "generators/shell.h"
#include "spatial/kdTree.h"
#include "spatial/resolvePointCollisions.h"
#include "spatial/shortestPath.h"
#include "volumes/attributeTransfer.h"
#include "volumes/boundingObject.h"
#include "volumes/compListToObjGrp.h"
#include "volumes/componentToComponent.h"
#include "volumes/group.h"
#include "volumes/multiAttributeTransfer.h"
#include "volumes/objGrpToCompList.h"

namespace {

template <class Node>
RegistryRow node(const char* name, MPxNode::Type kind, const MString* classification)
{
    return {name,    &Node::id, Node::creator, Node::initialize, nullptr, kind, classification,
            nullptr, nullptr,   Unload::kOverrideThenNode};
}

/// A node with a draw override: the host finds the override by the node's classification.
template <class Node, class Override>
RegistryRow drawn(const char* name, MPxNode::Type kind, Unload unload = Unload::kOverrideThenNode)
{
    return {name, &Node::id, Node::creator, Node::initialize, nullptr, kind, &Node::drawDbClassification,
            &Node::drawRegistrantId, Override::Creator, unload};
}

template <class Command>
RegistryRow command(const char* name)
{
    return {name,    nullptr, Command::creator, nullptr, Command::newSyntax, MPxNode::kDependNode, nullptr,
            nullptr, nullptr, Unload::kOverrideThenNode};
}

} // namespace

const std::vector<RegistryRow>& registry()
{
    // the families; display and textures have no node: drawn nodes and textures go by the host's own classifications
    static const MString kGenerators("Mirk/generators"), kModifiers("Mirk/modifiers"), kConverters("Mirk/converters"),
        kDeformers("Mirk/deformers"), kEmitters("Mirk/emitters"), kFields("Mirk/fields"), kHelpers("Mirk/helpers"),
        kConstraints("Mirk/constraints"), kDisplay("Mirk/display"), kTextures("Mirk/textures"),
        kTexture2d("texture/2d"), kTexture3d("texture/3d");

    // name, kind, classification; `drawn` names the draw override and has its draw-database string for classification
    static const std::vector<RegistryRow> rows = {
        node<arrayToArray>("arrayToArray", MPxNode::kDependNode, &kConverters),
        node<arrayToMulti>("arrayToMulti", MPxNode::kDependNode, &kConverters),
        node<arrayToPointColor>("arrayToPointColor", MPxNode::kDependNode, &kConverters),
        node<attributeTransfer>("attributeTransfer", MPxNode::kDependNode, &kGenerators),
        node<bound>("bound", MPxNode::kDependNode, &kGenerators),
        drawn<boundingObject, BoundingObjectDrawOverride>("boundingObject", MPxNode::kLocatorNode),
        node<boundingObjectManip>("boundingObjectManip", MPxNode::kManipContainer, nullptr),
        node<compListToObjGrp>("compListToObjGrp", MPxNode::kDependNode, &kConverters),
        node<computeVelocity>("computeVelocity", MPxNode::kDependNode, &kGenerators),
        drawn<displayAttributes, DisplayAttributesDrawOverride>("displayAttributes", MPxNode::kLocatorNode),
        drawn<displayComponents, DisplayComponentsDrawOverride>("displayComponents", MPxNode::kLocatorNode),
        drawn<displayDriver, DisplayDriverDrawOverride>("displayDriver", MPxNode::kLocatorNode),
        node<fluidAttributeToArray>("fluidAttributeToArray", MPxNode::kDependNode, &kConverters),
        node<group>("componentGroup", MPxNode::kDependNode, &kGenerators),
        drawn<mirrorPlane, MirrorPlaneDrawOverride>("mirrorPlane", MPxNode::kLocatorNode),
        node<multiAttributeTransfer>("multiAttributeTransfer", MPxNode::kDependNode, &kGenerators),
        node<multiToArray>("multiToArray", MPxNode::kDependNode, &kConverters),
        node<objGrpToCompList>("objGrpToCompList", MPxNode::kDependNode, &kConverters),
        node<peak>("peak", MPxNode::kDeformerNode, &kDeformers),
        node<point>("point", MPxNode::kDependNode, &kModifiers),
        node<pointCloudToCurve>("pointCloudToCurve", MPxNode::kDependNode, &kGenerators),
        node<pointAttributeToArray>("pointAttributeToArray", MPxNode::kDependNode, &kConverters),
        node<pointCloudField>("pointCloudField", MPxNode::kFieldNode, &kFields),
        node<pointCloudFluidEmitter>("pointCloudFluidEmitter", MPxNode::kFluidEmitterNode, &kEmitters),
        node<remapArray>("remapArray", MPxNode::kDependNode, &kConverters),
        node<tensionMap>("tensionMap", MPxNode::kDependNode, &kGenerators),
        node<textureToArray>("textureToArray", MPxNode::kDependNode, &kConverters),
        node<timeOffset>("timeOffset", MPxNode::kDependNode, &kModifiers),
        node<trajectory>("trajectory", MPxNode::kLocatorNode, &kHelpers),
        node<vertexConstraint>("vertexConstraint", MPxNode::kDependNode, &kConstraints),
        node<arrayDataContainer>("arrayDataContainer", MPxNode::kDependNode, &kConstraints),
        drawn<scatter, ScatterDrawOverride>("scatter", MPxNode::kLocatorNode),
        node<shatter>("shatter", MPxNode::kDependNode, &kGenerators),
        node<arrayToDynArrays>("arrayToDynArrays", MPxNode::kDependNode, &kConverters),
        node<rgbaToColorAndAlpha>("rgbaToColorAndAlpha", MPxNode::kDependNode, &kConverters),
        node<pfxToArray>("pfxToArray", MPxNode::kDependNode, &kConverters),
        drawn<projectionPlane, ProjectionPlaneDrawOverride>("projectionPlane", MPxNode::kLocatorNode),
        node<rayProject>("rayProject", MPxNode::kDependNode, &kModifiers),
        node<smooth>("smooth", MPxNode::kDeformerNode, &kDeformers),
        node<retarget>("retarget", MPxNode::kDependNode, &kDeformers),
        node<pointsOnMeshInfo>("pointsOnMeshInfo", MPxNode::kDependNode, &kGenerators),
        node<arrayToTexture2D>("arrayToTexture2D", MPxNode::kDependNode, &kTexture2d),
        node<voronoiTexture3D>("voronoiTexture3D", MPxNode::kDependNode, &kTexture3d),
        node<cage>("cage", MPxNode::kDependNode, &kModifiers),
        node<mapToMesh>("mapToMesh", MPxNode::kDependNode, &kGenerators),
        node<meshToMap>("meshToMap", MPxNode::kDependNode, &kModifiers),
        node<pointCloudToMultiCurve>("pointCloudToMultiCurve", MPxNode::kDependNode, &kGenerators),
        node<arrayBlend>("arrayBlend", MPxNode::kDependNode, &kHelpers),
        node<componentToComponent>("componentToComponent", MPxNode::kDependNode, &kConstraints),
        node<splitRgba>("splitRgba", MPxNode::kDependNode, &kConstraints),
        node<createArray>("createArray", MPxNode::kDependNode, &kGenerators),
        node<pointCloudParticleEmitter>("pointCloudParticleEmitter", MPxNode::kEmitterNode, &kEmitters),
        node<shell>("shell", MPxNode::kDependNode, &kModifiers),
        node<resizeArray>("resizeArray", MPxNode::kDependNode, &kModifiers),
        drawn<tensionMapSimple, TensionMapSimpleDrawOverride>("tensionMapSimple", MPxNode::kLocatorNode),
        node<pointCloudToMesh>("pointCloudToMesh", MPxNode::kDependNode, &kGenerators),
        node<transformsToArrays>("transformsToArrays", MPxNode::kDependNode, &kConstraints),
        drawn<cocoon, CocoonDrawOverride>("cocoon", MPxNode::kLocatorNode),
        node<tensionBlendShape>("tensionBlendShape", MPxNode::kDeformerNode, &kDeformers),
        node<uvTension>("uvTension", MPxNode::kDependNode, &kGenerators),
        node<convexHull>("convexHull", MPxNode::kDependNode, &kGenerators),
        node<morphAssembly>("morphAssembly", MPxNode::kDeformerNode, &kDeformers),
        node<morph>("morph", MPxNode::kDeformerNode, &kDeformers),
        command<deltas>("deltas"),
        node<copier>("copier", MPxNode::kDependNode, &kGenerators),
        node<mesh2arrays>("mesh2arrays", MPxNode::kDependNode, &kConstraints),
        node<combineArrays>("combineArrays", MPxNode::kDependNode, &kGenerators),
        node<stickyCurves>("stickyCurves", MPxNode::kDependNode, &kGenerators),
        node<frameCacheTracker>("frameCacheTracker", MPxNode::kDependNode, &kGenerators),
        node<frameCacher>("frameCacher", MPxNode::kDependNode, &kModifiers),
        node<multiRemapValue>("multiRemapValue", MPxNode::kDependNode, &kModifiers),
        node<arrayExpression>("arrayExpression", MPxNode::kDependNode, &kModifiers),
        node<blurPointAttribute>("blurPointAttribute", MPxNode::kDependNode, &kModifiers),
        node<voxelGrid>("voxelGrid", MPxNode::kDependNode, &kGenerators),
        node<extractor>("extractor", MPxNode::kDependNode, &kGenerators),
        node<colorAndAlphaToRgba>("colorAndAlphaToRgba", MPxNode::kDependNode, &kModifiers),
        node<uvsToPointsOnMesh>("uvsToPointsOnMesh", MPxNode::kDependNode, &kModifiers),
        node<mergeArrays>("mergeArrays", MPxNode::kDependNode, &kGenerators),
        node<mergeVectorArrays>("mergeVectorArrays", MPxNode::kDependNode, &kGenerators),
        node<attrFrameCacher>("attrFrameCacher", MPxNode::kDependNode, &kModifiers),
        node<smoothSimple>("smoothSimple", MPxNode::kDeformerNode, &kDeformers),
        drawn<speedometer, SpeedometerDrawOverride>("speedometer", MPxNode::kLocatorNode),
        drawn<gpuCacher, GpuCacherDrawOverride>("gpuCacher", MPxNode::kLocatorNode),
        node<curvesToPointCloud>("curvesToPointCloud", MPxNode::kDependNode, &kGenerators),
        node<blendCurves>("blendCurves", MPxNode::kDependNode, &kModifiers),
        drawn<curlNoiseField, CurlNoiseFieldDrawOverride>("curlNoiseField", MPxNode::kFieldNode,
                                                          Unload::kNodeThenOverride),
        node<randomizeArray>("randomizeArray", MPxNode::kDependNode, &kModifiers),
        node<faceCenters>("faceCenters", MPxNode::kDependNode, &kModifiers),
        node<collide>("collide", MPxNode::kDeformerNode, &kDeformers),
        node<kdTree>("kdTree", MPxNode::kDependNode, &kGenerators),
        node<shortestPath>("shortestPath", MPxNode::kDependNode, &kGenerators),
        node<resolvePointCollisions>("resolvePointCollisions", MPxNode::kDependNode, &kModifiers),
        node<resample>("resample", MPxNode::kDependNode, &kModifiers),
        drawn<solver, SolverDrawOverride>("solver", MPxNode::kLocatorNode),
        node<arrayToPointAttribute>("arrayToPointAttribute", MPxNode::kDependNode, &kModifiers),
        node<edgeAttributeToArray>("edgeAttributeToArray", MPxNode::kDependNode, &kGenerators),
        drawn<outline, OutlineDrawOverride>("outline", MPxNode::kLocatorNode, Unload::kKeep),
        node<decimateArray>("decimateArray", MPxNode::kDependNode, &kGenerators),
        node<smartFillHole>("smartFillHole", MPxNode::kDependNode, &kGenerators),
        node<nCacheInterpolator>("nCacheInterpolator", MPxNode::kDependNode, &kGenerators),
        node<mate>("mate", MPxNode::kDeformerNode, &kDeformers),
        command<ssdr>("ssdr"),
    };
    return rows;
}
