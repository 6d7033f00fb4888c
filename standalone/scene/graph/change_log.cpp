#include "standalone/scene/graph/change_log.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>
#include <utility>

#include "standalone/scene/graph/change.h"
#include "standalone/scene/graph/node_places.h"

namespace vantorelix::standalone {
namespace {

// To the last bit: 0 and -0 are two values.
bool is_same(const Key& a, const Key& b) {
  const auto bits = [](const Key& k) {
    return std::array{std::bit_cast<std::uint64_t>(k.time),  std::bit_cast<std::uint64_t>(k.value),
                      std::bit_cast<std::uint64_t>(k.in_x),  std::bit_cast<std::uint64_t>(k.in_y),
                      std::bit_cast<std::uint64_t>(k.out_x), std::bit_cast<std::uint64_t>(k.out_y)};
  };
  return a.in == b.in && a.out == b.out && bits(a) == bits(b);
}

// --- undoing and redoing. Edits that were not recorded may have removed what a change refers to (a parent, a source):
// then it has no effect, or uses the nearest place that is left.

void swap_sides(Graph& scene, Presence& p) {
  if (p.kept) {
    const Node* const parent = scene.find(p.kept->parent);
    const bool hangs = scene.is_dag(*p.kept) && p.kept->parent != kWorld;
    if (!hangs || (parent && parent->channels)) put_in(scene, std::move(p.kept), p.name, p.before);
    return;
  }
  const Node* const node = scene.find(p.node);
  if (!node) return;
  std::vector<NodeId> below = with_descendants(scene, p.node);
  for (; below.size() > 1; below.pop_back()) take_out(scene, below.back());
  p.name = scene.text(*node);
  p.before = sibling_after(scene, *node);
  p.kept = take_out(scene, p.node);
}

void swap_sides(Graph& scene, Place& p) {
  Node* const node = scene.find(p.node);
  if (!node) return;
  Place now = Place::now(scene, *node);
  const Node* const parent = scene.find(p.parent);
  const bool moves =
      scene.is_dag(*node) && parent && (p.parent == kWorld || parent->channels) && !is_below(scene, p.parent, p.node);
  scene.names.remove(scope_of(scene, *node), node->name, node->id);
  if (moves) {
    detach(scene, *node);
    node->parent = p.parent;
    attach(scene, *node, p.before);
  }
  const NodeId scope = scope_of(scene, *node);
  node->name = scene.names.add(scope, scene.names.free_name(scope, p.name), node->id);
  p = std::move(now);
}

void put(Graph&, Node& node, const ChannelValue& c) { (*node.channels)[index(c.channel)] = c.value; }

void put(Graph& scene, Node& node, const StoredValue& v) {
  if (v.value) return scene.store(node, v.attribute, *v.value);
  std::erase_if(scene.extras(node).values, [&v](const auto& value) { return value.first == v.attribute; });
}

void put(Graph& scene, Node& node, const VectorArray& v) {
  auto& all = scene.extras(node).vectors;
  const auto at = std::find_if(all.begin(), all.end(), [&v](const auto& each) { return each.first == v.attribute; });
  if (at == all.end() && v.values) all.emplace_back(v.attribute, *v.values);
  if (at == all.end()) return;
  if (v.values) {
    at->second = *v.values;
  } else {
    all.erase(at);
  }
}

void put(Graph& scene, Node& node, OffsetMatrix& m) { scene.extras(node).offset_parent_matrix = std::move(m.matrix); }

void put(Graph& scene, Node& node, Geometry& g) {
  scene.extras(node).curve_degree = g.degree;
  scene.extras(node).curve_points = std::move(g.points);
}

void put(Graph& scene, Node& node, const AttributeLock& l) {
  auto& all = scene.extras(node).locked;
  const auto at = std::lower_bound(all.begin(), all.end(), l.attribute);
  const bool there = at != all.end() && *at == l.attribute;
  if (l.locked && !there) all.insert(at, l.attribute);
  if (!l.locked && there) all.erase(at);
}

void put(Graph&, Node& node, const NodeLock& l) { node.locked = l.locked; }

void put(Graph& scene, Node& node, const Wire& w) {
  if (const Input* input = node.inputs.find(w.input.attribute)) {
    Node* const source = scene.find(input->source);
    node.inputs.remove(w.input.attribute);
    if (source) scene.remove_output(*source);
  }
  Node* const source = w.input.source == kNoNode ? nullptr : scene.find(w.input.source);
  if (!source) return;
  node.inputs.insert(w.input, w.order);
  source->outputs.push_back({w.node, w.input.attribute});
  ++source->live_outputs;
}

// `of`: what `now` wants beside the node.
template <class Piece, class... Of>
void exchange(Graph& scene, Piece& piece, const Of&... of) {
  Node* const node = scene.find(piece.node);
  if (!node) return;
  Piece now = Piece::now(*node, of...);
  put(scene, *node, piece);
  piece = std::move(now);
}

void swap_sides(Graph& scene, ChannelValue& c) { exchange(scene, c, c.channel); }
void swap_sides(Graph& scene, StoredValue& v) { exchange(scene, v, v.attribute); }
void swap_sides(Graph& scene, VectorArray& v) { exchange(scene, v, v.attribute); }
void swap_sides(Graph& scene, OffsetMatrix& m) { exchange(scene, m); }
void swap_sides(Graph& scene, Geometry& g) { exchange(scene, g); }
void swap_sides(Graph& scene, AttributeLock& l) { exchange(scene, l, l.attribute); }
void swap_sides(Graph& scene, NodeLock& l) { exchange(scene, l); }
void swap_sides(Graph& scene, Wire& w) { exchange(scene, w, w.input.attribute); }

void swap_sides(Graph& scene, Keys& k) {
  Node* const node = scene.find(k.node);
  if (!node) return;
  AnimCurve& curve = *node->curve;
  std::vector<Key> keys = curve.keys();
  k.first = std::min(k.first, keys.size());
  k.count = std::min(k.count, keys.size() - k.first);
  const auto from = keys.begin() + static_cast<std::ptrdiff_t>(k.first);
  const auto to = from + static_cast<std::ptrdiff_t>(k.count);
  std::vector<Key> replaced(from, to);
  keys.insert(keys.erase(from, to), k.keys.begin(), k.keys.end());
  const bool weighted = std::exchange(k.weighted, curve.weighted());
  const Infinity pre = std::exchange(k.pre, curve.pre_infinity()), post = std::exchange(k.post, curve.post_infinity());
  curve.assign(std::move(keys), weighted, pre, post);
  k.count = k.keys.size();
  k.keys = std::move(replaced);
}

void swap_sides(Graph& scene, NamespacePresence& n) {
  const bool there = scene.namespaces.contains(n.name);
  if (n.there) {
    scene.namespaces.insert(n.name);
  } else {
    scene.namespaces.erase(n.name);
  }
  n.there = there;
}

void swap_sides(Graph& scene, AllSettings& all) {
  std::swap(scene.settings, all.settings);
  if (scene.settings.frames_per_second == all.settings.frames_per_second) return;
  for (const auto& node : scene.nodes)
    if (node && node->curve) node->curve->set_frames_per_second(scene.settings.frames_per_second);
}

// --- who is told. No listener runs while the scene is neither as before nor as after.

void tell_of_removal(Graph& scene, const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    const auto* const presence = std::get_if<Presence>(&change.piece);
    if (!presence || presence->kept || !scene.listener.node_removed) continue;
    Node* const node = scene.find(presence->node);
    if (!node || std::exchange(node->removal_told, true)) continue;
    const std::string type = node->type->name;
    scene.listener.node_removed(presence->node, type);
  }
}

// Curves with other keys, and those that are back.
std::vector<NodeId> edited_curves(const Graph& scene, const std::vector<Change>& changes) {
  std::vector<NodeId> curves;
  for (const Change& change : changes) {
    NodeId id = kNoNode;
    if (const auto* keys = std::get_if<Keys>(&change.piece)) id = keys->node;
    if (const auto* presence = std::get_if<Presence>(&change.piece)) id = presence->node;
    const Node* const node = id == kNoNode ? nullptr : scene.find(id);
    if (node && node->curve) curves.push_back(id);
  }
  std::sort(curves.begin(), curves.end());
  curves.erase(std::unique(curves.begin(), curves.end()), curves.end());
  return curves;
}

class Unrecorded {
 public:
  explicit Unrecorded(Recorder& recorder) : recorder_(recorder), log_(std::exchange(recorder.log, nullptr)) {}
  ~Unrecorded() { recorder_.log = log_; }
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  Recorder& recorder_;
  ChangeLog* log_;
};

template <class Iterator>
void change_sides(Graph& scene, std::vector<Change>& changes, Iterator from, Iterator to) {
  const Unrecorded unrecorded(scene.recorder);
  tell_of_removal(scene, changes);
  for (; from != to; ++from) std::visit([&scene](auto& piece) { swap_sides(scene, piece); }, from->piece);
  scene.structure_changed();
  for (const NodeId curve : edited_curves(scene, changes))
    if (scene.find(curve)) scene.tell_curve_edited(curve, true);
}

}  // namespace

ChangeLog::ChangeLog() = default;
ChangeLog::~ChangeLog() = default;
ChangeLog::ChangeLog(ChangeLog&&) noexcept = default;
ChangeLog& ChangeLog::operator=(ChangeLog&&) noexcept = default;

bool ChangeLog::empty() const { return changes_.empty(); }
std::size_t ChangeLog::size() const { return changes_.size(); }

bool ChangeLog::keeps(std::uint32_t node) const {
  return std::any_of(changes_.begin(), changes_.end(), [node](const Change& change) {
    const auto* const presence = std::get_if<Presence>(&change.piece);
    return presence && presence->kept && presence->node == node;
  });
}

void ChangeLog::append(ChangeLog&& later) {
  std::move(later.changes_.begin(), later.changes_.end(), std::back_inserter(changes_));
  later.changes_.clear();
}

// --- writing down

Place Place::now(const Graph& scene, const Node& node) {
  return {node.id, scene.text(node), node.parent, sibling_after(scene, node)};
}

StoredValue StoredValue::now(const Node& node, AttributeId attribute) {
  if (node.extras)
    for (const auto& [id, value] : node.extras->values)
      if (id == attribute) return {node.id, attribute, value};
  return {node.id, attribute, std::nullopt};
}

VectorArray VectorArray::now(const Node& node, AttributeId attribute) {
  if (node.extras)
    for (const auto& [id, values] : node.extras->vectors)
      if (id == attribute) return {node.id, attribute, values};
  return {node.id, attribute, std::nullopt};
}

OffsetMatrix OffsetMatrix::now(const Node& node) {
  const Affine* const matrix = node.extras ? node.extras->offset_parent_matrix.get() : nullptr;
  return {node.id, matrix ? std::make_unique<Affine>(*matrix) : nullptr};
}

Geometry Geometry::now(const Node& node) {
  if (!node.extras) return {node.id, 0, {}};
  return {node.id, node.extras->curve_degree, node.extras->curve_points};
}

AttributeLock AttributeLock::now(const Node& node, AttributeId attribute) {
  const bool locked =
      node.extras && std::binary_search(node.extras->locked.begin(), node.extras->locked.end(), attribute);
  return {node.id, attribute, locked};
}

Wire Wire::now(const Node& node, AttributeId attribute) {
  const Input* const input = node.inputs.find(attribute);
  if (!input) return {node.id, {attribute, kNoNode, AttributeNames::kNone}, 0};
  return {node.id, *input, node.inputs.order_of(attribute)};
}

Keys Keys::now(const Node& node) {
  const AnimCurve& curve = *node.curve;
  return {node.id, 0, curve.keys().size(), curve.keys(), curve.weighted(), curve.pre_infinity(), curve.post_infinity()};
}

void Recorder::write(Change change) const { log->changes_.push_back(std::move(change)); }

void Recorder::write_going(Graph& scene, Node& node) const {
  for (const Output& out : scene.outputs_of(node)) {
    if (!scene.connection_stands(node, out)) continue;  // was in the list twice
    Node& destination = *scene.find(out.destination);
    note<Wire>(destination, out.attribute);
    destination.inputs.remove(out.attribute);
    scene.remove_output(node);
  }
  write({Presence{node.id, nullptr, scene.text(node), sibling_after(scene, node)}});
}

void Recorder::keep(std::unique_ptr<Node> node) const {
  std::get<Presence>(log->changes_.back().piece).kept = std::move(node);
}

void Recorder::keys(const Node& node, Keys before) const {
  const std::vector<Key>& now = node.curve->keys();
  std::vector<Key>& old = before.keys;
  const auto same = std::mismatch(old.begin(), old.end(), now.begin(), now.end(), is_same);
  const auto end = std::mismatch(old.rbegin(), std::reverse_iterator(same.first), now.rbegin(),
                                 std::reverse_iterator(same.second), is_same);
  before.first = static_cast<std::size_t>(same.first - old.begin());
  before.count = static_cast<std::size_t>(end.second.base() - same.second);
  old.erase(end.first.base(), old.end());
  old.erase(old.begin(), same.first);
  old.shrink_to_fit();
  write({std::move(before)});
}

// --- the scene's own

std::uint64_t SceneChanges::revision() const { return graph().revision; }
void SceneChanges::set_listener(SceneListener listener) { graph().listener = std::move(listener); }

ChangeLog* SceneChanges::record(ChangeLog* log) { return std::exchange(graph().recorder.log, log); }

void SceneChanges::undo(ChangeLog& log) {
  change_sides(graph(), log.changes_, log.changes_.rbegin(), log.changes_.rend());
}

void SceneChanges::redo(ChangeLog& log) {
  change_sides(graph(), log.changes_, log.changes_.begin(), log.changes_.end());
}

}  // namespace vantorelix::standalone
