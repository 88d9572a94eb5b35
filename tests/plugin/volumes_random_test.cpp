// attributeTransfer on many random points and volumes against a plain loop that knows nothing of blocks, trees and threads.
#include "volumes_scene.h"

#include <maya/MFnMatrixData.h>
#include <maya/MMatrix.h>

#include <cmath>
#include <random>

using namespace scene;
using RandomTransfer = scene::Test;

namespace {

struct Sphere
{
    MVector center;
    double  radius, weight;
};

/// One volume as the reference sees it: analytic ones by their inverse matrix.
struct Reference
{
    int                 type = 0;
    MMatrix             inverse;
    MVector             origin;
    std::vector<Sphere> spheres;
};

struct Hit
{
    double  d, weight;   ///< weight: 1 - d, times the sphere's own
    MVector target;
};

/// Unit capsules: offsets and radii 1.
double distanceIn(const Reference& v, const MVector& point, MVector& target)
{
    const MPoint p = MPoint(point) * v.inverse;
    target = v.origin;
    if (v.type == 1)
        return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    if (v.type == 0)
        return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    const double axis = std::clamp(p.y, -1.0, 1.0), up = p.y - axis;
    target = MVector(MPoint(0, axis, 0) * v.inverse.inverse());
    return std::sqrt(p.x * p.x + up * up + p.z * p.z);
}

std::vector<Hit> hitsOf(const std::vector<Reference>& volumes, const MVector& point, std::size_t most)
{
    std::vector<Hit> hits;
    const auto offer = [&](const Hit& hit) {
        if (hits.size() < most)
            return hits.push_back(hit);
        for (Hit& old : hits) {
            if (old.d > hit.d) {
                old = hit;
                return;
            }
        }
    };
    for (const Reference& v : volumes) {
        Hit hit{0.0, 0.0, MVector()};
        if (v.type != 3) {
            hit.d = distanceIn(v, point, hit.target);
            hit.weight = 1.0 - hit.d;
            if (hit.d <= 1.0)
                offer(hit);
        }
        for (const Sphere& s : v.spheres) {
            hit = {(point - s.center).length() / s.radius, 0.0, s.center};
            hit.weight = (1.0 - hit.d) * s.weight;
            if (hit.d <= 1.0)
                offer(hit);
        }
    }
    return hits;
}

/// Linear falloffs, and the kernel a new node has: 1 - (3 d^2 - 2 d^3).
void blend(const std::vector<Hit>& hits, double& weight, MVector& point)
{
    double  kernels = 0.0, w = 0.0, pull = 0.0;
    MVector target;
    for (const Hit& h : hits) {
        const double k = hits.size() == 1 ? 1.0 : 1.0 - h.d * h.d * (3.0 - 2.0 * h.d);
        kernels += k;
        w += k * h.weight;
        pull += k * (1.0 - h.d);
        target += h.target * (k * (1.0 - h.d));
    }
    weight = kernels > 0.0 ? w / kernels : 0.0;
    if (kernels > 0.0)
        point = point * (1.0 - pull / kernels) + target * (1.0 / kernels);
}

std::string text(const MVector& v)
{
    return std::to_string(v.x) + " " + std::to_string(v.y) + " " + std::to_string(v.z);
}

} // namespace

TEST_F(RandomTransfer, ManyPointsAgainstThePlainLoop)
{
    std::mt19937                           random(11);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    const auto vector = [&](double size) { return MVector(size * real(random), size * real(random), size * real(random)); };

    constexpr unsigned kPoints = 60000;   // enough for several threads
    MVectorArray       positions(kPoints);
    for (unsigned i = 0; i < kPoints; ++i)
        positions[i] = vector(2.0);
    arraySource("v", "vectorArray", 0, "");
    ASSERT_TRUE(plug("arrays.v").setMObject(MFnVectorArrayData().create(positions)));
    run("createNode attributeTransfer -name t; connectAttr arrays.v t.inGeometry; setAttr t.weight 1; setAttr t.position 1");

    std::vector<Reference> volumes;
    for (int i = 0; i < 9; ++i) {
        const std::string name = "b" + std::to_string(i);
        Reference         r;
        r.type = i % 3;
        volume(name, i == 4 ? 3 : r.type, 0.0, "setAttr " + name + ".translate " + text(vector(1.0)) + "; setAttr " + name +
               ".rotate " + text(vector(180.0)) + "; setAttr " + name + ".scale " + text(vector(0.4) + MVector(0.7, 0.7, 0.7)));
        connectVolume(name, "t", 2 * i);
        if (i == 4) {
            r.type = 3;
            MVectorArray centers;
            MDoubleArray radii, weights;
            for (int j = 0; j < 800; ++j) {
                r.spheres.push_back({vector(1.5), 0.02 + 0.2 * std::fabs(real(random)), real(random)});
                centers.append(r.spheres.back().center);
                radii.append(j % 2 ? r.spheres.back().radius : -r.spheres.back().radius);
                weights.append(r.spheres.back().weight);
            }
            run("createNode network -name c; addAttr -longName v -dataType vectorArray c; connectAttr c.v b4Shape.inParticlePositionPP");
            plug("c.v").setMObject(MFnVectorArrayData().create(centers));
            plug("b4Shape.inParticleRadiusPP").setMObject(MFnDoubleArrayData().create(radii));
            plug("b4Shape.inParticleWeightPP").setMObject(MFnDoubleArrayData().create(weights));
        } else {
            MObject matrix = plug(name + "Shape.outParentMatrix").asMObject();
            r.inverse = MFnMatrixData(matrix).matrix().inverse();
            r.origin = MVector(MPoint() * r.inverse.inverse());
        }
        volumes.push_back(r);
    }

    for (const int most : {1, 3, 12}) {
        run("setAttr t.maxInfluences " + std::to_string(most));
        const std::vector<double>  weights = doubles("t.outWeightPP");
        const std::vector<MVector> moved = vectors("t.outGeometry");
        ASSERT_EQ(weights.size(), kPoints);
        ASSERT_EQ(moved.size(), kPoints);
        int wrong = 0, reached = 0;
        for (unsigned i = 0; i < kPoints; ++i) {
            double     weight = 0.0;
            MVector    at = positions[i];
            const auto hits = hitsOf(volumes, at, std::size_t(most));
            blend(hits, weight, at);
            reached += !hits.empty();
            // ramps and kernel are single precision: where all kernels are next to 0 their shares are rough
            wrong += std::fabs(weights[i] - weight) > 2e-5 || !moved[i].isEquivalent(at, 2e-5);
        }
        EXPECT_EQ(wrong, 0) << most;
        EXPECT_GT(reached, int(kPoints) / 20);
        EXPECT_LT(reached, int(kPoints));
    }
}

/// Large arrays are written another way than small ones, and a block with one volume near it is filled another way than
/// one with several, or with normals: the numbers are the same.
TEST_F(RandomTransfer, LargeArraysAsTheirPieces)
{
    constexpr unsigned kPoints = 140001, kPiece = 9973;
    MVectorArray       positions(kPoints);
    for (unsigned i = 0; i < kPoints; ++i)   // winding up the y axis: neighbours stay together
        positions[i] = MVector(0.4 * std::cos(0.001 * i), 20.0 * i / kPoints - 10.0, 0.4 * std::sin(0.001 * i));
    arraySource("v", "vectorArray", 0, "");
    run("createNode attributeTransfer -name t; connectAttr arrays.v t.inGeometry; setAttr t.weight 1; setAttr t.position 1;"
        "setAttr t.color 1");
    for (int i = 0; i < 5; ++i) {   // the fourth and the fifth overlap
        const std::string name = "b" + std::to_string(i);
        volume(name, i % 3, 0.0, "setAttr " + name + ".translate 0.1 " + std::to_string(std::min(4.0 * i - 8.0, 5.0)) + " 0");
        connectVolume(name, "t", i);
    }
    struct Result
    {
        std::vector<double>  weights, rgba;
        std::vector<MVector> moved;
    };
    const auto evaluate = [&](unsigned first, unsigned last) {
        MVectorArray piece(last - first);
        for (unsigned i = first; i < last; ++i)
            piece[i - first] = positions[i];
        plug("arrays.v").setMObject(MFnVectorArrayData().create(piece));
        return Result{doubles("t.outWeightPP"), doubles("t.outRgbaPP"), vectors("t.outGeometry")};
    };
    const Result all = evaluate(0, kPoints);
    EXPECT_GT(std::count_if(all.weights.begin(), all.weights.end(), [](double w) { return w > 0.0; }), int(kPoints) / 4);
    for (const char* normal : {"0", "1"}) {
        run(std::string("setAttr t.normal ") + normal);
        Result pieces;
        for (unsigned first = 0; first < kPoints; first += kPiece) {
            const Result piece = evaluate(first, std::min(kPoints, first + kPiece));
            pieces.weights.insert(pieces.weights.end(), piece.weights.begin(), piece.weights.end());
            pieces.rgba.insert(pieces.rgba.end(), piece.rgba.begin(), piece.rgba.end());
            pieces.moved.insert(pieces.moved.end(), piece.moved.begin(), piece.moved.end());
        }
        EXPECT_EQ(all.weights, pieces.weights) << normal;
        EXPECT_EQ(all.rgba, pieces.rgba) << normal;
        EXPECT_TRUE(all.moved == pieces.moved) << normal;
    }
}
