#include "view/material.h"

#include <algorithm>
#include <cmath>

#include <maya/MVector.h>

#include "data/component.h"
#include "graph/evaluate.h"
#include "texture/evaluate.h"

namespace mirk::view {
namespace {

constexpr int kTilePixels = 512, kMostPixels = 2048;   // of a texture's side

Cell* cellIfAny(Node& node, const char* attribute)
{
    const Attribute* a = node.findAttribute(attribute);
    return a && !a->isArray() && !a->hasArrayAncestor() ? node.cell(a) : nullptr;
}

/// The attribute whose value is the surface's colour: the shader's own, else whatever is shown as its result.
Cell* colorOf(Node& shader, Cell& result)
{
    Cell* color = texture::isTexture2d(*shader.type) ? nullptr : cellIfAny(shader, "color");
    return color && color->attr->children.size() == 3 && color->attr->isTuple() ? color : &result;
}

double numberOf(Node& node, const char* attribute, double otherwise)
{
    Cell* cell = cellIfAny(node, attribute);
    if (!cell || storeDimension(cell->store()) != 1)
        return otherwise;
    eval::pull(*cell);
    return cell->number();
}

MVector tripleOf(Cell& cell)
{
    MVector out;
    eval::pull(cell);
    for (int i = 0; i < std::min(storeDimension(cell.store()), 3); ++i)
        out[unsigned(i)] = cell.number(i);
    return out;
}

float shown(double channel) { return channel > 0 ? float(std::min(channel, 1.)) : 0.f; }

/// The network over the tiles, sampled in the middle of each pixel, a band of rows at a time.
std::shared_ptr<const Texture> painted(Cell& color, const Tiles& tiles, double factor)
{
    constexpr int kBand = 64;
    auto          out = std::make_shared<Texture>();
    const int     wide = tiles[2] - tiles[0], high = tiles[3] - tiles[1];
    out->width = std::min(kTilePixels * wide, kMostPixels);
    out->height = std::min(kTilePixels * high, kMostPixels);
    out->rgba.reserve(size_t(out->width) * size_t(out->height) * 4);
    std::vector<double>  u, v;
    std::vector<MVector> colors;
    for (int first = 0; first < out->height; first += kBand) {
        u.clear(), v.clear();
        for (int y = first; y < std::min(first + kBand, out->height); ++y)
            for (int x = 0; x < out->width; ++x) {
                u.push_back(tiles[0] + wide * (x + 0.5) / out->width);
                v.push_back(tiles[1] + high * (y + 0.5) / out->height);
            }
        colors.resize(u.size());
        if (!texture::evaluate(*color.node, *color.attr, u.data(), v.data(), u.size(), colors.data(), nullptr))
            return nullptr;
        for (const MVector& c : colors) {
            for (unsigned k = 0; k < 3; ++k)
                out->rgba.push_back(uint8_t(std::lround(shown(c[k] * factor) * 255)));
            out->rgba.push_back(255);
        }
    }
    return out;
}

void collect(Cell& from, std::vector<int>* faces, ShadingGroups& out)
{
    for (const Cell* target : from.targets ? *from.targets : std::vector<Cell*>()) {
        if (!target->node->type->isA("shadingEngine"))
            continue;
        if (faces)
            out.parts.push_back({target->node, *faces});
        else
            out.whole = target->node;
    }
}

std::vector<int> facesOf(Cell& components)
{
    std::vector<int> out;
    eval::pull(components);
    const auto* list = dynamic_cast<const ComponentListData*>(components.data());
    for (const auto& c : list ? list->list : std::vector<Ref<Component>>())
        if (c->apiType() == MFn::kMeshPolygonComponent && !c->complete)
            out.insert(out.end(), c->indices.begin(), c->indices.end());
    return out;
}

}  // namespace

ShadingGroups shadingGroups(Node& shape, unsigned instance)
{
    ShadingGroups    out;
    const Attribute* attribute = shape.findAttribute("instObjGroups");
    const Cell*      all = attribute ? shape.cellIfAny(attribute) : nullptr;
    Cell*            own = all ? all->elementIfAny(int(instance)) : nullptr;
    if (!own)
        return out;
    collect(*own, nullptr, out);
    const Cell* groups = own->childIfAny(0);
    for (Cell* group : groups && groups->elements ? groups->elements->cells : std::vector<Cell*>())
        if (group->hasTargets()) {
            std::vector<int> faces = facesOf(*group->child(0));
            collect(*group, &faces, out);
        }
    return out;
}

const Material* Materials::of(Node& group, const Tiles& tiles)
{
    auto& slot = known_[{&group, tiles}];
    if (slot)
        return slot.get();
    Cell* result = cellIfAny(group, "surfaceShader");
    if (!result || !result->source)
        return nullptr;
    Node&        shader = *result->source->node;
    Cell&        color = *colorOf(shader, *result);
    const double factor = color.node == &shader ? numberOf(shader, "diffuse", 1) : 1;
    const MVector plain = tripleOf(color) * factor;
    const Cell*   transparency = cellIfAny(shader, "transparency");
    const MVector through = transparency && transparency->attr->isTuple() ? tripleOf(*const_cast<Cell*>(transparency)) : MVector();
    slot = std::make_unique<Material>();
    slot->color = {shown(plain.x), shown(plain.y), shown(plain.z), 1 - shown((through.x + through.y + through.z) / 3)};
    if (texture::hasTexture(*color.node, *color.attr))
        slot->texture = painted(color, tiles, factor);
    slot->low = {float(tiles[0]), float(tiles[1])};
    slot->high = {float(tiles[2]), float(tiles[3])};
    return slot.get();
}

}  // namespace mirk::view
