// Textures that depend on (u, v) only through their placement are evaluated as functions, a block of points at a time. If
// more of the network varies, that part runs point by point in its own cells, whose values wait aside meanwhile.
#include "texture/evaluate.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include <maya/MPlugArray.h>
#include <maya/MVector.h>

#include "graph/access.h"
#include "graph/aside.h"
#include "graph/evaluate.h"
#include "graph/source.h"
#include "texture/network.h"
#include "texture/sampler.h"

namespace mirk::texture {
namespace {

constexpr size_t kBlock = 2048;          // points: their colours stay in the cache
constexpr int    kLongestChain = 1000;   // placements one behind the other

// ---- what is asked for -------------------------------------------------------------------------------------------

/// One number of the result.
struct Channel
{
    Cell* source = nullptr;   ///< null: `constant` at every point
    int   component = 0;
    double constant = 0;
};

/// What drives an attribute: three channels of colour and one of alpha.
struct Target
{
    Channel color[3], alpha;
    bool    single = false;   ///< one number, shown as grey

    std::vector<Cell*> roots() const
    {
        std::vector<Cell*> out;
        for (const Channel* c : {&color[0], &color[1], &color[2], &alpha})
            if (c->source && std::find(out.begin(), out.end(), c->source) == out.end())
                out.push_back(c->source);
        return out;
    }
};

Channel channelOf(Cell& cell)
{
    if (Cell* source = eval::sourceOf(cell))
        return {source, 0, 0};
    return {nullptr, 0, cell.number()};
}

/// The parts of a colour, each with its own connection or the colour's.
void readColor(Cell& cell, Target& target)
{
    Cell*        whole = eval::sourceOf(cell);
    const size_t parts = std::min<size_t>(cell.attr->children.size(), 3);
    for (size_t i = 0; i < parts; ++i) {
        Cell& part = *cell.child(i);
        if (part.source || !whole || !whole->attr->isTuple())
            target.color[i] = channelOf(part);
        else if (int(i) < storeDimension(whole->attr->store))
            target.color[i] = {whole, int(i), 0};
    }
}

/// The alpha that belongs to a colour is that of the node which gives its first driven part.
void findAlpha(Target& target)
{
    target.alpha = {nullptr, 0, 1};
    for (const Channel& c : target.color)
        if (c.source) {
            Node& node = *c.source->node;
            const Attribute* a = node.findAttribute("outAlpha");
            if (a && !a->isArray() && !a->hasArrayAncestor() && storeDimension(a->store) == 1)
                target.alpha = {node.cell(a), 0, 0};
            return;
        }
}

std::optional<Target> targetOf(Cell& asked)
{
    Target target;
    Cell*  cell = &asked;
    if (cell->parent && !cell->isElement() && cell->parent->attr->isTuple() && storeDimension(cell->parent->attr->store) == 3)
        cell = cell->parent;
    if (cell->attr->isCompound()) {
        readColor(*cell, target);
        findAlpha(target);
    } else if (storeDimension(cell->store()) == 1) {
        target.single = true;
        target.alpha = channelOf(*cell);
        std::fill_n(target.color, 3, target.alpha);
    } else {
        return std::nullopt;
    }
    return target;
}

/// Every existing cell of an attribute; one that stands in no multi is made.
void cellsOf(Node& node, const Attribute& a, std::vector<Cell*>& out)
{
    const auto elements = [&](Cell& cell) {
        if (!cell.isMulti())
            out.push_back(&cell);
        else if (cell.elements)
            out.insert(out.end(), cell.elements->cells.begin(), cell.elements->cells.end());
    };
    if (!a.hasArrayAncestor()) {
        elements(*node.cell(&a));
        return;
    }
    std::vector<Cell*> above;
    cellsOf(node, *a.parent, above);
    for (Cell* p : above)
        elements(*p->child(size_t(a.childIndex)));
}

/// The attribute's first cell with a texture behind it.
std::optional<Target> findTarget(Node& node, const Attribute& attribute, std::optional<Network>& network)
{
    if (!node.owns(&attribute))
        return std::nullopt;
    std::vector<Cell*> cells;
    cellsOf(node, attribute, cells);
    for (Cell* cell : cells) {
        std::optional<Target> target = targetOf(*cell);
        if (!target || target->roots().empty())
            continue;
        network.emplace(target->roots());
        if (network->hasTexture())
            return target;
    }
    return std::nullopt;
}

// ---- textures as functions ---------------------------------------------------------------------------------------

/// A texture and the placements before it, the first one first.
struct Function
{
    std::vector<std::unique_ptr<Placement>> placements;
    std::unique_ptr<Sampler>                texture;
    Cell*                                   color = nullptr;
    Cell*                                   alpha = nullptr;
    std::vector<Texel>                      texels;   // of the running block

    void run(const UV* at, size_t count, Texel* out) const
    {
        UV places[kBlock];
        for (const auto& placement : placements) {
            placement->place(at, places, count);
            at = places;
        }
        texture->sample(at, out, count);
    }
};

const Attribute* topOf(const Cell& cell)
{
    const Attribute* a = cell.attr;
    while (a->parent)
        a = a->parent;
    return a;
}

/// The varying inputs of an output all belong to the node's uvCoord; that cell then, else null.
Cell* onlyUV(const Network& network, const Vertex& output)
{
    Node&            node = *output.cell->node;
    const Attribute* uv = uvAttribute(node);
    Cell*            cell = uv ? node.cellIfAny(uv) : nullptr;
    for (const int i : output.inputs)
        if (const Vertex& v = network.vertices()[size_t(i)]; v.varying && v.cell != cell)
            return nullptr;
    return cell;
}

/// The node's uvCoord as a chain of placements from (u, v), added to `function`; false if it is none.
bool placedByChain(const Network& network, Cell* uv, Function& function)
{
    for (int i = 0; i < kLongestChain; ++i) {
        const int at = uv ? network.find(*uv) : -1;
        if (at < 0)
            return false;
        const Vertex& vertex = network.vertices()[size_t(at)];
        if (vertex.seed) {
            std::reverse(function.placements.begin(), function.placements.end());
            return true;
        }
        const int before = uv->source && vertex.inputs.size() == 1 ? network.find(*uv->source) : -1;
        if (before < 0)
            return false;
        const Vertex& output = network.vertices()[size_t(before)];
        Node&         node = *output.cell->node;
        auto*         placing = dynamic_cast<PlacingNode*>(node.user.get());
        uv = placing && output.cell->attr == node.type->find("outUV") ? onlyUV(network, output) : nullptr;
        if (uv) {
            MDataBlock block = HandleAccess::block(&node);
            function.placements.push_back(placing->placement(block));
        }
    }
    return false;
}

std::optional<Function> functionOf(const Network& network, const Vertex& output)
{
    Node& node = *output.cell->node;
    auto* sampling = dynamic_cast<SamplingNode*>(node.user.get());
    if (!sampling || !output.varying)
        return std::nullopt;
    const Attribute *color = node.type->find("outColor"), *alpha = node.type->find("outAlpha");
    const Attribute* top = topOf(*output.cell);
    Function function;
    if ((top != color && top != alpha) || !placedByChain(network, onlyUV(network, output), function))
        return std::nullopt;
    MDataBlock block = HandleAccess::block(&node);
    function.texture = sampling->sampler(block);
    function.color = node.cell(color);
    function.alpha = node.cell(alpha);
    return function;
}

// ---- the rest of the network, point by point ---------------------------------------------------------------------

void putFloats(Cell& cell, const float* values, int count)
{
    for (int i = 0; i < count; ++i)
        cell.setNumber(double(values[i]), i);
    eval::clean(cell);
}

class Run
{
public:
    Run(const Network& network, const Target& target) : network_(network), target_(target) { plan(); }

    ~Run()
    {
        for (auto& aside : asides_)
            aside->exchange();
        for (auto& aside : asides_)
            aside->freeElements();
        for (Node* node : nodes_) {
            markNewCells(*node);
            if (node->dependsOnDirtyCall)   // the marks are as they were
                tellInputs(*node, false);
        }
    }

    void block(const UV* at, size_t count, MVector* colors, double* alphas)
    {
        for (Function& f : functions_) {
            f.texels.resize(count);
            f.run(at, count, f.texels.data());
        }
        if (!varying_)
            constants();
        for (size_t i = 0; i < count; ++i) {
            if (varying_)
                point(at[i], i);
            if (colors)
                for (int c = 0; c < 3; ++c)
                    colors[i][unsigned(c)] = value(target_.color[c]);
            if (alphas)
                alphas[i] = value(target_.alpha);
        }
    }

private:
    /// Walks from the result to the seeds; textures that are functions are not looked behind.
    void plan()
    {
        std::vector<Cell*>      queue = target_.roots();
        std::unordered_set<int> been;
        while (!queue.empty()) {
            const int i = network_.find(*queue.back());
            queue.pop_back();
            if (i < 0 || !been.insert(i).second)
                continue;
            const Vertex& v = network_.vertices()[size_t(i)];
            if (!v.varying)
                continue;
            varying_ = true;
            note(*v.cell);
            if (v.seed) {
                seeds_.push_back(v.cell);
            } else if (!isFunction(v)) {
                markLater(*v.cell);
                for (const int input : v.inputs)
                    queue.push_back(network_.vertices()[size_t(input)].cell);
            }
        }
        for (Node* node : nodes_)
            for (Cell* top : node->cells)
                if (top && !top->parent)
                    walkCells(*top, [&](Cell& c) {
                        asides_.push_back(std::make_unique<eval::Aside>(c));
                        known_.insert(&c);
                    });
        for (auto& aside : asides_)
            aside->detach();
    }

    void note(Cell& cell)
    {
        if (std::find(nodes_.begin(), nodes_.end(), cell.node) == nodes_.end())
            nodes_.push_back(cell.node);
    }

    bool isFunction(const Vertex& v)
    {
        const Attribute* top = topOf(*v.cell);
        for (const Function& f : functions_)
            if (f.color->node == v.cell->node && (top == f.color->attr || top == f.alpha->attr))
                return true;
        std::optional<Function> f = functionOf(network_, v);
        if (f)
            functions_.push_back(std::move(*f));
        return f.has_value();
    }

    void markLater(Cell& cell)
    {
        Cell* root = &cell;
        if (!eval::sourceOf(cell))
            while (root->parent && !root->isElement())
                root = root->parent;
        else
            inputs_.push_back(&cell);
        walkCells(*root, [&](Cell& c) { dirt_.push_back({&c, Cell::kDirty}); });
        for (Cell* p = root->parent; p; p = p->parent)
            dirt_.push_back({p, Cell::kChildDirty});
    }

    void tellInputs(Node& node, bool mark)
    {
        for (Cell* input : inputs_)
            if (input->node == &node && node.user) {
                MPlugArray plugs;
                node.user->setDependentsDirty(PlugAccess::lend(*input), plugs);
                for (unsigned i = 0; mark && i < plugs.length(); ++i)
                    if (Cell* c = PlugAccess::cell(plugs[i]))
                        walkCells(*c, [](Cell& below) { below.flags |= Cell::kDirty; });
            }
    }

    void point(const UV& at, size_t i)
    {
        for (const auto& [cell, flag] : dirt_)
            cell->flags |= flag;
        for (Node* node : nodes_)
            if (node->dependsOnDirtyCall)
                tellInputs(*node, true);
        for (Cell* seed : seeds_)
            putFloats(*seed, &at.u, 2);
        for (const Function& f : functions_) {
            putFloats(*f.color, &f.texels[i].r, 3);
            putFloats(*f.alpha, &f.texels[i].a, 1);
        }
        constants();
    }

    void constants()
    {
        for (Cell* root : roots_)
            eval::pull(*root);
    }

    static double value(const Channel& c) { return c.source ? c.source->number(c.component) : c.constant; }

    /// Cells that came into being meanwhile: what they hold is of the last point.
    void markNewCells(Node& node)
    {
        for (Cell* top : node.cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& c) {
                    if (!known_.count(&c))
                        c.flags |= Cell::kDirty;
                });
    }

    struct Dirt { Cell* cell; uint16_t flag; };

    const Network&                            network_;
    const Target&                             target_;
    const std::vector<Cell*>                  roots_ = target_.roots();
    bool                                      varying_ = false;
    std::vector<Function>                     functions_;
    std::vector<Cell*>                        seeds_, inputs_;
    std::vector<Dirt>                         dirt_;
    std::vector<Node*>                        nodes_;
    std::vector<std::unique_ptr<eval::Aside>> asides_;
    std::unordered_set<const Cell*>           known_;
};

/// The texture that drives the target alone, if there is one.
std::optional<Function> wholeFunction(const Network& network, const Target& target, bool alphas)
{
    const Cell* color = target.color[0].source;
    for (int i = 0; i < 3; ++i)
        if (target.single || target.color[i].source != color || target.color[i].component != i)
            return std::nullopt;
    const int at = network.find(*color);
    if (at < 0)
        return std::nullopt;
    std::optional<Function> f = functionOf(network, network.vertices()[size_t(at)]);
    return f && f->color == color && (!alphas || target.alpha.source == f->alpha) ? std::move(f) : std::nullopt;
}

}  // namespace

bool isTexture2d(const NodeType& type)
{
    return type.isA("texture2d") || type.classification.find("texture/2d") != std::string::npos;
}

bool hasTexture(Node& node, const Attribute& attribute)
{
    std::optional<Network> network;
    return findTarget(node, attribute, network).has_value();
}

bool evaluate(Node& node, const Attribute& attribute, const double* u, const double* v, size_t count, MVector* colors,
              double* alphas)
{
    std::optional<Network> network;
    std::optional<Target>  target = findTarget(node, attribute, network);
    if (!target)
        return false;
    // at the scene's own values first: makes the cells, and tells an ambient time what depends on it
    for (Cell* root : target->roots())
        eval::pull(*root);
    network.emplace(target->roots());

    std::vector<UV>         places(std::min(count, kBlock));
    std::optional<Function> whole = wholeFunction(*network, *target, alphas != nullptr);
    std::vector<Texel>      texels(whole ? places.size() : 0);
    std::optional<Run>      run;
    if (!whole)
        run.emplace(*network, *target);
    for (size_t first = 0; first < count; first += kBlock) {
        const size_t n = std::min(kBlock, count - first);
        for (size_t i = 0; i < n; ++i)
            places[i] = {float(u[first + i]), float(v[first + i])};
        if (!whole) {
            run->block(places.data(), n, colors ? colors + first : nullptr, alphas ? alphas + first : nullptr);
            continue;
        }
        whole->run(places.data(), n, texels.data());
        for (size_t i = 0; i < n; ++i) {
            if (colors)
                colors[first + i] = MVector(texels[i].r, texels[i].g, texels[i].b);
            if (alphas)
                alphas[first + i] = texels[i].a;
        }
    }
    return true;
}

}  // namespace mirk::texture
