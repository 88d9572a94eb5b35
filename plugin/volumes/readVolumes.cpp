#include "volumes/readVolumes.h"

#include <maya/MArrayDataHandle.h>

#include <algorithm>

namespace {

Falloffs readFalloffs(const MPlug& element, const FalloffWishes& wishes)
{
    Falloffs   out;
    const auto read = [&](bool wanted, const char* name) { return wanted ? Ramp(rampAcross(element, name)) : Ramp(); };
    out.position = read(wishes.position, "positionFalloff");
    out.weight = read(wishes.weight, "weightFalloff");
    out.color = read(wishes.color, "colorFalloff");
    out.alpha = read(wishes.color, "alphaFalloff");
    out.normal = read(wishes.normal, "normalFalloff");
    out.radius = read(wishes.radius, "radiusFalloff");
    return out;
}

} // namespace

void readVolumes(MDataBlock& block, const MPlug& multi, const BoundAttributes& at, CloudUse use,
                 const FalloffWishes& wishes, TransferVolumes& out)
{
    MArrayDataHandle   elements = block.inputArrayValue(at.elements);
    const unsigned int count = elements.elementCount();
    for (unsigned int i = 0; i < count; ++i) {
        BoundElement element = readBound(elements, i, multi, at);
        const bool   on = element.volume.envelope > 0.0;
        if (on && element.volume.kind == volume::Kind::kCloud)
            appendCloud(element, at, use, out.cloud);
        out.volumes.push_back(element.volume);
        out.falloffs.push_back(on ? readFalloffs(element.plug, wishes) : Falloffs());
    }
}

bool hasCloud(const std::vector<volume::Volume>& volumes)
{
    return std::any_of(volumes.begin(), volumes.end(), [](const volume::Volume& v) {
        return v.envelope > 0.0 && v.kind == volume::Kind::kCloud;
    });
}
