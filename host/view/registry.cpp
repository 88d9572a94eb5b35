#include "view/registry.h"

#include <algorithm>
#include <vector>

#include <maya/MDrawRegistry.h>

namespace mirk::view {

namespace {

struct Entry
{
    std::string         classification, registrantId;
    DrawOverrideCreator creator;
};

std::vector<Entry>& entries()
{
    static std::vector<Entry> all;
    return all;
}

auto findEntry(const MString& classification, const MString& registrantId)
{
    return std::find_if(entries().begin(), entries().end(), [&](const Entry& e) {
        return e.classification == classification.asChar() && e.registrantId == registrantId.asChar();
    });
}

bool serves(std::string_view registered, std::string_view asked)
{
    return asked.starts_with(registered) && (asked.size() == registered.size() || asked[registered.size()] == '/');
}

const Entry* entryFor(std::string_view classification)
{
    const Entry* best = nullptr;
    while (!classification.empty()) {
        const size_t colon = std::min(classification.find(':'), classification.size());
        for (const Entry& e : entries())
            if (serves(e.classification, classification.substr(0, colon)) &&
                (!best || e.classification.size() > best->classification.size()))
                best = &e;
        classification.remove_prefix(std::min(colon + 1, classification.size()));
    }
    return best;
}

}  // namespace

DrawOverrideCreator findDrawOverride(std::string_view classification)
{
    const Entry* entry = entryFor(classification);
    return entry ? entry->creator : nullptr;
}

std::string drawRegistrant(std::string_view classification)
{
    const Entry* entry = entryFor(classification);
    return entry ? entry->registrantId : std::string();
}

}  // namespace mirk::view

namespace MHWRender {

MStatus MDrawRegistry::registerDrawOverrideCreator(const MString& drawClassification, const MString& registrantId,
                                                   DrawOverrideCreator creator)
{
    using namespace mirk::view;
    if (!creator || drawClassification.length() == 0)
        return MStatus::kInvalidParameter;
    const auto found = findEntry(drawClassification, registrantId);
    if (found != entries().end())
        found->creator = creator;
    else
        entries().push_back({drawClassification.asChar(), registrantId.asChar(), creator});
    return MStatus::kSuccess;
}

MStatus MDrawRegistry::deregisterDrawOverrideCreator(const MString& drawClassification, const MString& registrantId)
{
    using namespace mirk::view;
    const auto found = findEntry(drawClassification, registrantId);
    if (found == entries().end())
        return MStatus::kFailure;
    entries().erase(found);
    return MStatus::kSuccess;
}

}  // namespace MHWRender
