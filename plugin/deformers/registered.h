// Deformers, tension measures and skinning: the node types that are registered and await their work.
#pragma once
#include <maya/MPxDeformerNode.h>
#include <maya/MPxLocatorNode.h>

#include "core/registered.h"

class peak : public Registered<peak, MPxDeformerNode, 0x115746> {};
class tensionMap : public Registered<tensionMap, MPxNode, 0x115741> {};
class rayProject : public Registered<rayProject, MPxNode, 0x115769> {};
class smooth : public Registered<smooth, MPxDeformerNode, 0x115770> {};
class retarget : public Registered<retarget, MPxNode, 0x11576A> {};

class tensionMapSimple : public Registered<tensionMapSimple, MPxLocatorNode, 0x11578D>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/tensionMapSimple"};
    static inline MString drawRegistrantId{"TensionMapSimpleNodePlugin"};
};
using TensionMapSimpleDrawOverride = RegisteredOverride<tensionMapSimple>;

class tensionBlendShape : public Registered<tensionBlendShape, MPxDeformerNode, 0x11579A> {};
class uvTension : public Registered<uvTension, MPxNode, 0x11579B> {};
class morphAssembly : public Registered<morphAssembly, MPxDeformerNode, 0x11579E> {};
class morph : public Registered<morph, MPxDeformerNode, 0x11579F> {};
class smoothSimple : public Registered<smoothSimple, MPxDeformerNode, 0x1157AD> {};
class collide : public Registered<collide, MPxDeformerNode, 0x1157B8> {};
class mate : public Registered<mate, MPxDeformerNode, 0x1157C9> {};

class deltas : public RegisteredCommand<deltas>
{
public:
    static constexpr const char* name = "deltas";
};

class ssdr : public RegisteredCommand<ssdr>
{
public:
    static constexpr const char* name = "ssdr";
};
