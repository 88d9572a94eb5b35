// What the benchmarks share: the host with the toolkit, a node that hands out a mesh, memory readings.
#pragma once
#include <string>

#include <maya/MObject.h>

namespace bench {

/// Starts the host once and loads the toolkit.
void start();
/// Runs MEL; ends the program with the message if it fails.
void mel(const std::string& text);
/// Makes a node `name` of type benchMeshSource whose `outMesh` gives `mesh`; setting its `tick` makes it dirty. With
/// `moving` every evaluation gives new points.
void meshSource(const std::string& name, const MObject& mesh, bool moving = false);
/// Resident memory of this process in bytes.
size_t residentBytes();
/// The peak of it since the last `resetPeak`.
size_t peakBytes();
void   resetPeak();
/// Seconds since some fixed point.
double now();

}  // namespace bench
