// The command layer over the module's `cmds`: each method makes the call that its declaration in the interface spells
// out.
#pragma once

#include "host/command_layer.h"

namespace vantorelix::maya {

class Commands : public host::CommandLayer {
 public:
  std::vector<std::string> ls_selection() override;
  std::vector<std::string> ls_type(const std::string& type) override;
  bool objExists(const std::string& name) override;
  std::vector<std::string> listRelatives_parent(const std::string& node) override;
  std::vector<std::string> listRelatives_shapes(const std::string& node) override;
  void select_replace(const std::vector<std::string>& names) override;
  void select(const std::vector<std::string>& names) override;
  void select_clear() override;
  std::string createNode(const std::string& type, const std::string& name) override;
  std::string rename(const std::string& node, const std::string& name) override;
  void parent(const std::string& node, const std::string& parent) override;
  void group_empty(const std::string& name) override;
  void delete_(const std::string& node) override;
  std::string curve(const host::Value& degree, const std::vector<Vector>& points, const std::string& name) override;
  std::array<double, 16> getAttr_matrix(const std::string& attribute, double time) override;
  void setAttr(const std::string& attribute, const host::Value& value) override;
  std::vector<double> keyframe_times(const std::string& node) override;
  double playbackOptions_min() override;
  double playbackOptions_max() override;
  double currentTime() override;
  void evalDeferred(const host::Callback& function) override;
  void refresh() override;
  void inViewMessage(const host::Value& text) override;
  void warning(const std::string& text) override;
  std::vector<std::string> getPanel_model() override;
  bool modelEditor_query(const std::string& panel, const std::string& flag) override;
  void modelEditor_enable(const std::string& panel, const std::string& flag) override;
  bool optionVar_exists(const std::string& name) override;
  host::Value optionVar_query(const std::string& name) override;
  void optionVar_set_int(const std::string& name, std::int64_t value) override;
  void optionVar_set_float(const std::string& name, double value) override;
  void optionVar_append_string(const std::string& name, const std::string& value) override;
  bool about_batch() override;
  std::string about_version() override;
  std::string internalVar_userAppDir() override;
  bool pluginInfo_loaded(const std::string& name) override;
  void loadPlugin(const std::string& path) override;
};

}  // namespace vantorelix::maya
