// Array data flow and expressions: the node types that are registered and await their work.
#pragma once
#include "core/registered.h"

class arrayToArray : public Registered<arrayToArray, MPxNode, 0x11575F> {};
class arrayToMulti : public Registered<arrayToMulti, MPxNode, 0x115748> {};
class fluidAttributeToArray : public Registered<fluidAttributeToArray, MPxNode, 0x11575A> {};
class multiToArray : public Registered<multiToArray, MPxNode, 0x115756> {};
class remapArray : public Registered<remapArray, MPxNode, 0x11574F> {};
class textureToArray : public Registered<textureToArray, MPxNode, 0x11574D> {};
class vertexConstraint : public Registered<vertexConstraint, MPxNode, 0x11575E> {};
class arrayDataContainer : public Registered<arrayDataContainer, MPxNode, 0x115761> {};
class arrayToDynArrays : public Registered<arrayToDynArrays, MPxNode, 0x115764> {};
class rgbaToColorAndAlpha : public Registered<rgbaToColorAndAlpha, MPxNode, 0x115765> {};
class pfxToArray : public Registered<pfxToArray, MPxNode, 0x115767> {};
class pointsOnMeshInfo : public Registered<pointsOnMeshInfo, MPxNode, 0x11576B> {};
class arrayToTexture2D : public Registered<arrayToTexture2D, MPxNode, 0x11576E> {};
class voronoiTexture3D : public Registered<voronoiTexture3D, MPxNode, 0x11576D> {};
class arrayBlend : public Registered<arrayBlend, MPxNode, 0x115775> {};
class splitRgba : public Registered<splitRgba, MPxNode, 0x115777> {};
class createArray : public Registered<createArray, MPxNode, 0x115779> {};
class resizeArray : public Registered<resizeArray, MPxNode, 0x11578C> {};
class transformsToArrays : public Registered<transformsToArrays, MPxNode, 0x11578F> {};
class mesh2arrays : public Registered<mesh2arrays, MPxNode, 0x1157A1> {};
class combineArrays : public Registered<combineArrays, MPxNode, 0x1157A2> {};
class multiRemapValue : public Registered<multiRemapValue, MPxNode, 0x11574E> {};
class blurPointAttribute : public Registered<blurPointAttribute, MPxNode, 0x1157A3> {};
class colorAndAlphaToRgba : public Registered<colorAndAlphaToRgba, MPxNode, 0x1157A6> {};
class uvsToPointsOnMesh : public Registered<uvsToPointsOnMesh, MPxNode, 0x1157A8> {};
class mergeArrays : public Registered<mergeArrays, MPxNode, 0x1157A9> {};
class mergeVectorArrays : public Registered<mergeVectorArrays, MPxNode, 0x1157B7> {};
class randomizeArray : public Registered<randomizeArray, MPxNode, 0x1157B5> {};
class faceCenters : public Registered<faceCenters, MPxNode, 0x1157B6> {};
class edgeAttributeToArray : public Registered<edgeAttributeToArray, MPxNode, 0x1157C4> {};
class decimateArray : public Registered<decimateArray, MPxNode, 0x1157C6> {};
