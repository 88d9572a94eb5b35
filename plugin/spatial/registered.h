// Spatial queries: the node types that are registered and await their work.
#pragma once
#include "core/registered.h"

class kdTree : public Registered<kdTree, MPxNode, 0x1157B9> {};
class shortestPath : public Registered<shortestPath, MPxNode, 0x1157BD> {};
class resolvePointCollisions : public Registered<resolvePointCollisions, MPxNode, 0x1157BE> {};
