#include <maya/MDoubleArray.h>
#include <maya/MDynamicsUtil.h>
#include <maya/MObject.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "data/mobject.h"
#include "graph/node.h"
#include "texture/evaluate.h"

using namespace mirk;

bool MDynamicsUtil::hasValidDynamics2dTexture(const MObject& node, const MObject& texAttr)
{
    Node*            n = objectAs<Node>(node);
    const Attribute* a = objectAs<Attribute>(texAttr);
    return n && a && n->inScene && texture::hasTexture(*n, *a);
}

MStatus MDynamicsUtil::evalDynamics2dTexture(const MObject& node, const MObject& texAttr, MDoubleArray& uCoords,
                                             MDoubleArray& vCoords, MVectorArray* resultColors, MDoubleArray* resultAlphas)
{
    Node*            n = objectAs<Node>(node);
    const Attribute* a = objectAs<Attribute>(texAttr);
    const unsigned   count = uCoords.length();
    if (!n || !a || !n->inScene || count != vCoords.length())
        return MS::kInvalidParameter;
    MVectorArray colors;
    MDoubleArray alphas;
    if ((resultColors && !colors.setLength(count)) || (resultAlphas && !alphas.setLength(count)))
        return MS::kInsufficientMemory;
    if (!texture::evaluate(*n, *a, count ? &uCoords[0] : nullptr, count ? &vCoords[0] : nullptr, count,
                           resultColors && count ? &colors[0] : nullptr, resultAlphas && count ? &alphas[0] : nullptr))
        return MS::kFailure;
    if (resultColors)
        *resultColors = std::move(colors);
    if (resultAlphas)
        *resultAlphas = std::move(alphas);
    return MS::kSuccess;
}

bool    MDynamicsUtil::inRunup() { return false; }
MStatus MDynamicsUtil::runupIfRequired() { return MS::kSuccess; }
