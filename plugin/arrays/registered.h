// Array data flow and expressions: the node types that are registered and await their work.
#pragma once
#include "core/registered.h"

class fluidAttributeToArray : public Registered<fluidAttributeToArray, MPxNode, 0x11575A> {};
class textureToArray : public Registered<textureToArray, MPxNode, 0x11574D> {};
class vertexConstraint : public Registered<vertexConstraint, MPxNode, 0x11575E> {};
class pfxToArray : public Registered<pfxToArray, MPxNode, 0x115767> {};
class pointsOnMeshInfo : public Registered<pointsOnMeshInfo, MPxNode, 0x11576B> {};
class arrayToTexture2D : public Registered<arrayToTexture2D, MPxNode, 0x11576E> {};
class voronoiTexture3D : public Registered<voronoiTexture3D, MPxNode, 0x11576D> {};
class mesh2arrays : public Registered<mesh2arrays, MPxNode, 0x1157A1> {};
class multiRemapValue : public Registered<multiRemapValue, MPxNode, 0x11574E> {};
class blurPointAttribute : public Registered<blurPointAttribute, MPxNode, 0x1157A3> {};
class edgeAttributeToArray : public Registered<edgeAttributeToArray, MPxNode, 0x1157C4> {};
