#include "generators/scatterTextures.h"

#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MFnMesh.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MVectorArray.h>

#include "generators/scatter.h"

namespace scatter_ {

namespace {

/// Whether the switch is on and a texture drives the colour.
bool works(MDataBlock& block, const MObject& node, const ScatterTextureAttributes& at)
{
    return block.inputValue(at.active).asBool() && MDynamicsUtil::hasValidDynamics2dTexture(node, at.color);
}

bool readProjector(MDataBlock& block, const MObject& node, const ScatterTextureAttributes& at, Projector& to)
{
    if (!works(block, node, at))
        return false;
    const MMatrix matrix = block.inputValue(at.matrix).asMatrix();
    to.color = at.color;
    to.contained = block.inputValue(at.contained).asBool();
    to.sees = !matrix.isSingular();
    if (to.sees)
        matrix.inverse().get(to.worldToProjector.m);
    return true;
}

/// Points that a texture is asked about, all in one evaluation.
class Samples
{
public:
    explicit Samples(std::size_t pointCount) : sampleOf_(pointCount, -1) {}

    void add(std::size_t point, double u, double v)
    {
        sampleOf_[point] = static_cast<int>(u_.length());
        u_.append(u);
        v_.append(v);
    }
    bool has(std::size_t point) const { return sampleOf_[point] >= 0; }

    /// False, and nothing is drawn, if the texture cannot be evaluated.
    bool evaluate(const MObject& node, const MObject& color)
    {
        return u_.length() == 0 || (MDynamicsUtil::evalDynamics2dTexture(node, color, u_, v_, &colors_, nullptr) &&
                                    colors_.length() == u_.length());
    }
    bool keeps(std::size_t point, Draws& draws) const
    {
        const MVectorArray& colors = colors_;
        const MVector&      rgb = colors[static_cast<unsigned int>(sampleOf_[point])];
        return keptByColor({rgb.x, rgb.y, rgb.z}, draws);
    }

private:
    std::vector<int> sampleOf_;   ///< -1: not asked about
    MDoubleArray     u_, v_;
    MVectorArray     colors_;
};

void filterByUv(const MString& uvSet, const MObject& node, const MFnMesh& mesh, Cloud& cloud, Draws& draws)
{
    const MString* set = uvSet.length() ? &uvSet : nullptr;
    Samples        samples(cloud.points.size());
    for (std::size_t i = 0; i < cloud.points.size(); ++i) {
        MPoint at(cloud.hits[i].x, cloud.hits[i].y, cloud.hits[i].z);
        float2 uv = {0.0f, 0.0f};
        int    face = cloud.faces[i];
        if (mesh.getUVAtPoint(at, uv, MSpace::kWorld, set, &face))
            samples.add(i, uv[0], uv[1]);
    }
    const bool evaluated = samples.evaluate(node, scatter::aTexture.color);
    cloud.filter([&](std::size_t i) { return samples.has(i) && (!evaluated || samples.keeps(i, draws)); });
}

void filterByProjector(const Projector& projector, const MObject& node, Cloud& cloud, Draws& draws)
{
    Samples samples(cloud.points.size());
    for (std::size_t i = 0; projector.sees && i < cloud.points.size(); ++i) {
        const ProjectedUv at = project(cloud.points[i], projector.worldToProjector);
        if (at.inside)
            samples.add(i, at.u, at.v);
    }
    const bool evaluated = samples.evaluate(node, projector.color);
    cloud.filter([&](std::size_t i) {
        return samples.has(i) ? !evaluated || samples.keeps(i, draws) : !projector.contained;
    });
}

} // namespace

Textures readTextures(MDataBlock& block, const MObject& node)
{
    Textures textures;
    textures.byUv = works(block, node, scatter::aTexture);
    textures.uvSet = block.inputValue(scatter::aUVSet).asString();
    for (const int number : kProjectorOrder) {
        Projector projector;
        if (readProjector(block, node, scatter::aProjector[number - 1], projector))
            textures.projectors.push_back(projector);
    }
    return textures;
}

void filterByTextures(const Textures& textures, const MObject& node, const MFnMesh& mesh, Cloud& cloud, Draws& draws)
{
    if (textures.byUv)
        filterByUv(textures.uvSet, node, mesh, cloud, draws);
    for (const Projector& projector : textures.projectors)
        filterByProjector(projector, node, cloud, draws);
}

} // namespace scatter_
