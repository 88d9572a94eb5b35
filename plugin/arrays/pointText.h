// The MEL text that `point` has the host's interpreter run: one global procedure a block, with a loop over the points
// around the artist's text. Nothing here knows the host.
#pragma once
#include <string>

namespace pointText {

/// In the order in which they run.
enum Block { kPositions, kWeights, kColors, kNormals, kRadii, kMap, kBlockCount };

/// A number as text, in the host's conversion.
using Number = std::string;

struct Box
{
    Number size[3], center[3];
};

/// What a text is made of. A plug is given by its full name.
struct Source
{
    std::string node;
    Number      pointCount, pointCount2;
    Number      count;               ///< turns of the loop: points of the subset; UV ids in the map block
    Number      outputSize;          ///< outputFactor() times the count
    Number      time;
    Box         box, subsetBox;
    std::string ids, mapIds;         ///< mapIds counts in the map block only
    std::string positions, positions2, colors, colors2, weights, weights2, normals, normals2, radii, radii2, map, map2;
    std::string startBlock, body, endBlock;
};

/// Values a turn for which room is reserved in the result. It is not what the result has to have: see resultFactor.
int outputFactor(Block block);
/// Values a turn that the result has if the text did what it should.
int resultFactor(Block block);

/// "position_POINT" and so on. All nodes share these names.
std::string procedure(Block block);
/// The definition of the procedure.
std::string definition(Block block, const Source& source);

/// The texts of a new node.
std::string defaultStartBlock();
std::string defaultBody(Block block);
std::string defaultEndBlock();

} // namespace pointText
