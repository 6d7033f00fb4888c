// A scene: named nodes in a DAG, their attributes, the connections between them, and world matrices at any time.
//
// Names, uniqueness, parenting, renaming, locking and deletion follow the rules of the host that this one stands in
// for. Everything that takes a node takes its NodeId; names are looked up once, at the edge. One thread at a time.
// All failures are host::Error with the text that the host would give, and leave the scene as it was.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/matrix.h"
#include "base/vector.h"
#include "host/value.h"
#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/curves/track.h"
#include "standalone/scene/graph/change_log.h"

namespace vantorelix::standalone {

// Never used again for another node. 0 is the world, the parent of top-level nodes.
using NodeId = std::uint32_t;
inline constexpr NodeId kWorld = 0;
inline constexpr NodeId kNoNode = 0xffffffffu;

// The scalars that a local matrix is made of. Angles are radians, lengths the scene's linear unit. The last three
// are whole numbers or flags kept as doubles, so that they too can be driven.
enum class Channel : std::uint8_t {
  translateX,
  translateY,
  translateZ,
  rotateX,
  rotateY,
  rotateZ,
  scaleX,
  scaleY,
  scaleZ,
  shearXY,
  shearXZ,
  shearYZ,
  rotateAxisX,
  rotateAxisY,
  rotateAxisZ,
  jointOrientX,
  jointOrientY,
  jointOrientZ,
  rotatePivotX,
  rotatePivotY,
  rotatePivotZ,
  rotatePivotTranslateX,
  rotatePivotTranslateY,
  rotatePivotTranslateZ,
  scalePivotX,
  scalePivotY,
  scalePivotZ,
  scalePivotTranslateX,
  scalePivotTranslateY,
  scalePivotTranslateZ,
  inverseScaleX,
  inverseScaleY,
  inverseScaleZ,
  rotateOrder,             // 0 xyz, 1 yzx, 2 zxy, 3 xzy, 4 yxz, 5 zyx
  inheritsTransform,       // 0 or 1
  segmentScaleCompensate,  // 0 or 1, joints only
  count
};

// The k-th of the three channels from `first` on.
constexpr Channel component(Channel first, std::size_t k) {
  return static_cast<Channel>(static_cast<std::size_t>(first) + k);
}

// What a scene tells whoever listens, inside the edit itself.
struct SceneListener {
  std::function<void(NodeId curve)> curve_edited;     // keys, tangents or infinity of a curve changed
  std::function<void(NodeId curve)> keyframe_edited;  // a key was set, moved or removed
  std::function<void(NodeId node, const std::string& type)> node_removed;  // just before it goes
};

// One thing that a reader met and could not follow; equal kinds are counted, not repeated.
struct Warning {
  std::string kind;  // "constraint parentConstraint is not evaluated; the object keeps its static values"
  std::size_t count;
};

// A piece of animation that a file holds under a name: an FBX take, a glTF clip.
struct Take {
  std::string name;
  double first;  // frames
  double last;
};

class Scene {
 public:
  Scene();
  ~Scene();
  Scene(Scene&&) noexcept;
  Scene& operator=(Scene&&) noexcept;

  // --- scene-wide settings ------------------------------------------------------------------------------------
  double frames_per_second() const;  // 24 unless set; > 0
  void set_frames_per_second(double fps);
  std::string linear_unit() const;  // "cm" unless set: the unit of every position that comes out
  void set_linear_unit(std::string unit);
  char up_axis() const;  // 'y' or 'z'
  void set_up_axis(char axis);
  double playback_min() const;  // frames
  double playback_max() const;
  void set_playback_range(double first, double last);
  double current_time() const;  // frames
  // What the file has to choose from, in its order, and which of them this is; empty where its format knows no takes.
  const std::vector<Take>& takes() const;
  std::size_t take() const;
  void set_takes(std::vector<Take> takes, std::size_t chosen);
  void set_current_time(double frame);

  // --- nodes --------------------------------------------------------------------------------------------------
  // Creates a node. DAG types (transform, joint, camera, locator, mesh, nurbsCurve, registered shapes, ...) go under
  // `parent`, which the others ignore. A shape without a parent gets a transform of its own, which bears the type's
  // default name whatever the shape's is: "vlx_ball_vizShape" of type "vantorelix" hangs under "vantorelix1". An
  // empty name gives the type's default ("joint1", "curveShape1"). Defaults are in the current namespace, names that
  // are given are from the root. An unknown type is outside the DAG, or, with a parent, in it: a shape when its type
  // ends in "Shape" or its name holds it, else a transform that cannot be followed. Illegal characters become "_", as
  // does a digit in front; a name already taken among siblings (outside the DAG: anywhere) gets the next free number at
  // its end. Returns the node of that type.
  NodeId create_node(std::string_view type, std::string_view name, NodeId parent = kWorld);
  // Makes a further DAG shape type known, as a loaded plug-in does. Every node of it, there already or not, has the
  // attributes, with these values until it is given its own.
  void register_shape_type(std::string_view type,
                           std::span<const std::pair<std::string_view, host::Value>> attributes = {});
  bool is_registered_type(std::string_view type) const;
  // Deletes the node, its descendants, what hangs on them alone (their animation curves), and a transform's shapes.
  // Throws for a locked node.
  void delete_node(NodeId node);
  // Takes a name from the root. Returns the name that the node got (made unique, shortest unique path). A transform
  // renames its only shape along when that is called after it ("ballShape", "ballShape1" under "ball1"). Throws for a
  // locked node.
  std::string rename(NodeId node, std::string_view name);
  // Reparents, keeping local values; renames on a clash of siblings. Throws when `parent` is the node itself or one
  // of its descendants, or no transform.
  void set_parent(NodeId node, NodeId parent);
  void lock_node(NodeId node, bool locked);

  bool exists(NodeId node) const;
  const std::string& type(NodeId node) const;
  bool is_transform(NodeId node) const;  // transform, joint, and whatever else can have children
  bool is_shape(NodeId node) const;
  NodeId parent(NodeId node) const;  // kWorld at the top
  const std::vector<NodeId>& children(NodeId node) const;
  std::vector<NodeId> shapes(NodeId transform) const;
  // All nodes in order of creation.
  std::vector<NodeId> nodes() const;
  std::vector<NodeId> nodes_of_type(std::string_view type) const;

  // --- names --------------------------------------------------------------------------------------------------
  std::string_view short_name(NodeId node) const;
  std::string long_name(NodeId node) const;    // "|arm|wrist"; the plain name for nodes outside the DAG
  std::string unique_name(NodeId node) const;  // the shortest path that names only this node
  // The one node that `name` (short, partial or full path) stands for; kNoNode when there is none. Throws
  // "More than one object matches name: ..." when it is ambiguous.
  NodeId find(std::string_view name) const;
  // As find, but throws "No object matches name: ..." where there is none.
  NodeId require(std::string_view name) const;
  // Every node that the pattern matches: "*" and "?" within one path component; a pattern without "|" matches short
  // names at any depth. In order of creation.
  std::vector<NodeId> match(std::string_view pattern) const;

  // --- namespaces ---------------------------------------------------------------------------------------------
  // A node is in the namespace that stands before the last colon of its name. Here namespaces are named from the root,
  // without a colon in front; "" is the root, which is always there. A node's namespace is made with the node, those
  // above it too, and stays when the node goes. The current one is where nodes go whose name says nothing else.
  bool has_namespace(std::string_view name) const;
  void add_namespace(std::string_view name);     // and those above it; there already, nothing happens
  void remove_namespace(std::string_view name);  // throws unless it is there, empty and not the current one
  const std::string& current_namespace() const;
  void set_current_namespace(std::string_view name);  // throws unless it is there
  std::vector<std::string> namespaces() const;        // all but the root, in alphabetical order
  // In order of creation; what is in a namespace below it is not in it.
  std::vector<NodeId> nodes_in_namespace(std::string_view name) const;
  // The name from the root for a node to be made: a colon in front means the root, a namespace in the name is one from
  // the root, and a plain name is one in the current namespace.
  std::string name_for_new(std::string_view name) const;
  // The same for a node to be renamed. A namespace in the name is looked up below the current one; `dropped` says that
  // it is not there and does not count. Without `relative_counts` it never does, and that is no reason to say so.
  struct NewName {
    std::string text;
    bool dropped = false;
  };
  NewName name_for_renamed(std::string_view name, bool relative_counts = true) const;

  // --- attributes ---------------------------------------------------------------------------------------------
  // Attribute names are long or short ("translateX", "tx"), without the node. Channels take radians here. Numbers that
  // are not finite are refused with kind value, in every way in.
  double channel(NodeId node, Channel c) const;            // its static value
  void set_channel(NodeId node, Channel c, double value);  // ignores locks and drivers: for readers and tests
  void set_channels(NodeId node, Channel first, const std::array<double, 3>& values);  // the same of three in a row
  void set_offset_parent_matrix(NodeId node, const std::array<double, 16>& matrix);
  // The script's way: converts, checks locks and connections ("The attribute 'x.y' is locked or connected and
  // cannot be modified."), takes UI units (degrees). Throws "No object matches name: x.y" for an unknown attribute.
  void set_attribute(NodeId node, std::string_view attribute, const host::Value& value);
  // The same; false where there is no such attribute.
  bool set_attribute_if_there(NodeId node, std::string_view attribute, const host::Value& value);
  host::Value attribute(NodeId node, std::string_view attribute) const;  // static value, UI units
  bool has_attribute(NodeId node, std::string_view attribute) const;
  // Declares an attribute on one node (addAttr), or sets one that a reader met without declaring it.
  void add_attribute(NodeId node, std::string_view attribute, const host::Value& value);
  void lock_attribute(NodeId node, std::string_view attribute, bool locked);
  // Vector-array attributes ("points", ...): shared storage in, shared storage out; null when never set.
  void set_vectors(NodeId node, std::string_view attribute, Vectors values);
  Vectors vectors(NodeId node, std::string_view attribute) const;
  // NURBS curve geometry of a nurbsCurve shape.
  void set_curve_points(NodeId shape, int degree, std::vector<Vector> points);
  int curve_degree(NodeId shape) const;
  const std::vector<Vector>& curve_points(NodeId shape) const;

  // --- connections --------------------------------------------------------------------------------------------
  // "output" of an animation curve, unitConversion or pairBlend, any channel or parent of channels ("translate"), a
  // number that a transform or shape was given with add_attribute, "worldMatrix[0]" and "matrix" into
  // "offsetParentMatrix", and anything else, which is kept and reported as not followed. Replaces what drove the
  // destination. Cycles, and chains of more than 256 connections, are kept but not followed. Converters and curves that
  // are left driving nothing when what they drove is deleted go with it.
  void connect(NodeId source, std::string_view source_attribute, NodeId destination,
               std::string_view destination_attribute);
  void disconnect(NodeId destination, std::string_view destination_attribute);

  // --- animation curves ---------------------------------------------------------------------------------------
  NodeId create_curve(CurveKind kind, std::string_view name);
  bool is_curve(NodeId node) const;
  const AnimCurve& curve(NodeId node) const;
  void assign_curve(NodeId node, std::vector<Key> keys, bool weighted, Infinity pre, Infinity post);
  // Sets a key on a channel, creating and connecting its curve on the first. Value in radians on angles.
  NodeId set_key(NodeId node, Channel c, double frame, double value);
  // Edits of a curve node; each sends its messages before it returns.
  void set_key(NodeId curve, double frame, double value);
  void set_key(NodeId curve, const Key& key);
  bool remove_key(NodeId curve, double frame);  // the last key takes the curve node with it
  void set_infinity(NodeId curve, Infinity pre, Infinity post);
  // The curve that drives a channel, straight or through unitConversion and pairBlend; kNoNode when none does.
  NodeId driving_curve(NodeId node, Channel c) const;
  // The curves that drive attributes of the node, in order of connection.
  std::vector<NodeId> driving_curves(NodeId node) const;
  // A node whose "output" drives the three channels of a compound ("translate"). It has keys and no edits.
  NodeId create_track(std::shared_ptr<const Track> track, std::string_view name);
  const Track* track(NodeId node) const;  // null for a node that is none
  // Key times of every curve and track that drives an attribute of the node, one by one: curves first, in order of
  // connection.
  std::vector<double> key_times(NodeId node) const;
  std::size_t key_count(NodeId node) const;

  // --- evaluation ---------------------------------------------------------------------------------------------
  // The attribute query: walks the parents and composes. Exact and plain. A shape shows its transform's matrix. Where
  // an inverse scale is zero the result holds infinities or NaN.
  Affine world_matrix(NodeId node, double frame) const;
  Affine local_matrix(NodeId node, double frame) const;
  // What a transform's channel is at a frame, driven or not. Radians on angles.
  double channel_at(NodeId node, Channel c, double frame) const;
  // True when the node or a parent is driven by a curve or track that varies.
  bool is_animated(NodeId node) const;
  // True when the node itself is driven by a curve or a track, whether or not it varies.
  bool has_keys(NodeId node) const;
  // Why the node's world position is not what its scene would give: one text per driver on it or on its parents that
  // cannot be followed. Empty when all is well.
  std::vector<std::string> not_followed(NodeId node) const;

  // Changes with every edit that can move anything or rename, add or remove a node; for caches.
  std::uint64_t revision() const;

  // --- changes ------------------------------------------------------------------------------------------------
  // From here on every change is written down in `log`, at its end; null: in none. Types that are registered, warnings
  // and the listener are no changes. The log must live until another one, or none, takes its place. Returns what was
  // there.
  ChangeLog* record(ChangeLog* log);
  // Takes back what a log holds, or does it again; a log goes back and forth between the two. Nodes come back under
  // their old numbers. The listener is told of nodes before they go and of curves once all is done, and is not
  // recorded. What does not fit any more, as something was changed meanwhile that is in no log, is left out.
  void undo(ChangeLog& log);
  void redo(ChangeLog& log);

  // --- messages and warnings ----------------------------------------------------------------------------------
  void set_listener(SceneListener listener);
  void warn(std::string kind);
  std::vector<Warning> warnings() const;

  struct Data;  // scene_data.h, for the files of this folder

 private:
  friend class Evaluator;
  std::unique_ptr<Data> data_;
};

}  // namespace vantorelix::standalone
