// What reading a Maya ASCII scene remembers from statement to statement. For the files of this folder only.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "standalone/formats/maya/curve_draft.h"
#include "standalone/formats/maya/mel_scanner.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/attributes/channel_names.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// Limits of a transform's translation, rotation and scale, component by component, in that order; angles in radians.
// They hold where they are switched on.
struct Limits {
  Limits();
  struct Bound {
    std::array<double, 9> values;
    std::array<bool, 9> on = {};
  };
  Bound minimum, maximum;
};

// What makes the surface of a mesh from a few numbers, which tell its bounds.
inline bool is_primitive(std::string_view type) { return type == "polyCube" || type == "polyPlane"; }

// Statements act on the scene as they come. What cannot move anything is passed over in silence; what can, and cannot
// be followed, is noted as a warning once a kind, with a count.
class MayaReader {
 public:
  MayaReader(ByteSource& source, const ReadOptions& options, std::size_t window);
  Scene read();

 private:
  // --- maya_reader.cpp: statements other than the two below
  void check_kind_of_file();
  void read_statement(const std::string& command);
  void read_current_unit();
  void read_file_reference();
  void read_create_node();
  NodeId create(const std::string& type, const std::string& name, const std::string& parent);
  NodeId parent_named(const std::string& name, bool& missing);
  NodeId moved_into_dag(NodeId node);
  void read_select();
  void read_add_attribute();
  void read_parent();
  void read_lock_node();
  void read_playback(std::string_view script);
  void finish();
  void name_all(const std::string& type, const std::string& one, const std::string& several);
  std::string names_of(const std::vector<NodeId>& nodes) const;

  // --- maya_set_attr.cpp
  void read_set_attr();
  void set_values(NodeId node, std::string_view attribute, const std::string& type);
  void set_channels(NodeId node, const NamedChannels& channels);
  void hold_channels(NodeId node, const NamedChannels& channels);
  void set_offset_parent_matrix(NodeId node);
  void set_curve_shape(NodeId node);
  void set_script();
  void add_vertices(NodeId mesh);
  bool set_camera_values(NodeId shape, std::string_view attribute);
  void set_number(NodeId node, const std::string& attribute);
  bool read_numbers(std::size_t limit);
  CurveDraft& draft(NodeId curve);
  void assign(NodeId curve, const CurveDraft& draft);

  // --- maya_limits.cpp
  bool set_limits(NodeId node, std::string_view attribute);
  void note_limits();
  bool leaves_limits(NodeId node, const Limits& limits) const;
  bool set_time(std::string_view attribute);
  void note_time_warp();

  // --- maya_deformers.cpp
  void note_deformer(NodeId driver, std::string_view attribute);
  void mark_deformed_surfaces();

  // --- maya_instances.cpp
  void add_instances(const std::vector<std::string>& names, NodeId above);
  NodeId find_by_second_path(std::string_view path);
  void make_instances();
  void make_twins(NodeId node, NodeId above, NodeId first_twin);
  NodeId make_twin(NodeId node, NodeId above);

  // --- maya_connect.cpp
  void read_connect();
  void read_disconnect();
  void connect(std::string_view source, std::string_view destination);
  void add_primitive(NodeId maker, NodeId mesh);
  bool can_move(NodeId destination, std::string_view attribute) const;
  void note_driver(NodeId source, NodeId destination);
  void hold_as_unfollowed(NodeId driver, NodeId node);

  // --- shared
  // The node of a name in the file; kNoNode where there is none, or more than one.
  NodeId find(std::string_view name);
  // "node.attribute" in two; the node empty for ".attribute".
  static void split(std::string_view plug, std::string_view& node, std::string_view& attribute);
  // The long name of an attribute that the file declared.
  std::string_view declared(NodeId node, std::string_view attribute) const;
  void note(const std::string& kind);
  // The argument of a flag.
  const std::string& argument();

  TextInput in_;
  MelScanner words_;
  Scene scene_;
  Word word_;
  Word argument_;
  std::vector<double> numbers_;
  bool known_statement_ = false;
  bool bounds_;  // of meshes are wanted
  bool has_range_ = false;
  bool written_by_maya_ = false;  // its first line says so

  // Units of the file.
  double centimetres_ = 1.0;
  double radians_;

  // What a statement without a node's name is about.
  NodeId current_ = kNoNode;
  std::string current_name_;
  // The curve that the last createNode made; its draft is assigned to the scene at the next createNode. Drafts of
  // curves that a later statement names are assigned at the end of the file, however often the statements change
  // between them.
  NodeId fresh_curve_ = kNoNode;
  std::unordered_map<NodeId, CurveDraft> drafts_;
  double first_key_ = 0.0;
  double last_key_ = -1.0;

  std::size_t node_count_ = 0;
  std::vector<std::uint16_t> depth_;                                    // by node; only of those in the DAG
  std::unordered_map<std::string, std::string> declared_;               // "<node id>.<short name>" to the long one
  std::unordered_map<std::string, std::unordered_set<NodeId>> driven_;  // by the type of what drives them
  std::unordered_set<std::string> notes_;
  std::unordered_set<NodeId> deformers_;  // where bounds are wanted; in the end with all that hangs on them
  // Values of channels that were set on nodes of unknown types, which have no channels yet. They are given to the node
  // when it becomes the parent of another, and so turns out to be a transform (moved_into_dag).
  std::unordered_map<NodeId, std::vector<std::pair<Channel, double>>> held_channels_;
  std::unordered_map<NodeId, Limits> limits_;
  std::string time_warp_;  // what drives the scene's time; empty where nothing does
  bool time_warp_is_off_ = false;

  // Second and further parents, in the file's order. Nodes are made for them at the end of the file: until then each
  // name stands for one node.
  std::vector<std::pair<NodeId, NodeId>> instances_;                 // node and parent
  std::unordered_map<NodeId, std::vector<NodeId>> instances_under_;  // the same by parent
  std::unordered_map<std::string, NodeId> second_paths_;             // "<parent's id>|<name>"
  std::unordered_set<NodeId> twin_path_;                             // from the instance down to where twins are made
  std::size_t twins_left_ = 0;
  NodeId placeholder_ = kNoNode;  // stands for what a missing file would bring
};

}  // namespace vantorelix::standalone
