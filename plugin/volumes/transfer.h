// Values of points blended from the volumes that reach them: positions, weights, colours, radii and normals, in one walk
// over blocks of points. Arrays in, arrays out; no plugs.
#pragma once
#include <cstddef>
#include <vector>

#include "core/ramp.h"
#include "volumes/influence.h"
#include "volumes/volume.h"

/// The falloffs of one volume: strengths over the distance.
struct Falloffs
{
    Ramp position, weight, color, alpha, normal, radius;
};

struct TransferSettings
{
    bool position = false, weight = false, color = false, normal = false, radius = false;
    bool merge = true;           ///< off: values are cleared first
    bool blend = true;           ///< off: the new value replaces the old one
    bool alphaModulate = true;
    bool solidAlpha = false;
    bool particles = false;      ///< normals are velocities and keep their length; points have no w
    bool process = true;         ///< off: no point is looked at, values are only cleared or copied
    int  maxInfluences = 5;
};

/// n points and their values before. A null array of values stands for zeros.
struct TransferInput
{
    std::size_t    count = 0;
    const float*   local = nullptr;      ///< x, y, z in object space; or
    const double*  points = nullptr;     ///< world space, `pointStride` doubles each: x, y, z or x, y, z, w
    unsigned int   pointStride = 3;
    volume::Matrix toWorld, toLocal;     ///< of `local`
    const double*  weights = nullptr;
    std::size_t    weightCount = 0;      ///< a shorter array reads as zeros past its end
    const double*  radii = nullptr;
    const double*  normals = nullptr;    ///< 3 each
    const double*  rgba = nullptr;       ///< 4 each; or
    const float*   colors = nullptr;     ///< 4 each; all four -1: none

    volume::Vec at(std::size_t i) const;
    /// True if `local` is world space as it stands.
    bool stored() const;
};

/// Where results go. Null: not wanted. None of them overlaps an array of the input.
struct TransferOutput
{
    double* points = nullptr;     ///< x, y, z, w in world space; a point that nothing reaches keeps its w
    double* vectors = nullptr;    ///< x, y, z in world space
    float*  local = nullptr;      ///< x, y, z, w in object space
    double* weights = nullptr;
    double* radii = nullptr;
    double* normals = nullptr;    ///< 3 each
    double* rgba = nullptr;       ///< 4 each
    float*  colors = nullptr;     ///< 4 each
};

/// The volumes with their falloffs, and how the influences of a point weigh against each other.
struct TransferVolumes
{
    std::vector<volume::Volume> volumes;
    std::vector<Falloffs>       falloffs;   ///< one a volume
    volume::Cloud               cloud;
    Ramp                        kernel;
};

/// `pointsBox` is around the points that clouds are held against.
void transfer(const TransferVolumes& volumes, const volume::Box& pointsBox, const TransferSettings& settings,
              const TransferInput& in, const TransferOutput& out);

/// Reads points `from` on, up to a full block, at most `most`, and sets its box.
void loadBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block);
/// The same without the coordinates where the boxes can be had from stored points alone; true if it read them as well.
bool boundBlock(const TransferInput& in, std::size_t from, int most, volume::PointBlock& block);

/// Slots a point needs: no more than maxInfluences, nor than there are things that can reach it.
int slotsNeeded(int maxInfluences, const std::vector<volume::Volume>& volumes);
/// Points a block may have so that a table of that many slots stays small.
int blockSize(int slots);

/// Values of a ramp at `count` distances.
void evaluate(const Ramp& ramp, const float* at, std::size_t count, float* values);
