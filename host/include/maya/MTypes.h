#pragma once
#include <cstddef>

#include <maya/MApiNamespace.h>
#include <maya/MApiVersion.h>

typedef unsigned int uint;

typedef long long          MInt64;
typedef unsigned long long MUint64;

typedef short short2[2];
typedef short short3[3];
typedef int   int2[2];
typedef int   int3[3];
typedef int   int4[4];
typedef long  long2[2];
typedef long  long3[3];

typedef unsigned int uint2[2];
typedef unsigned int uint3[3];
typedef unsigned int uint4[4];

typedef float  float2[2];
typedef float  float3[3];
typedef float  float4[4];
typedef double double2[2];
typedef double double3[3];
typedef double double4[4];
