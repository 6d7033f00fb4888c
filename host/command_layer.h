// The host's command layer: scene queries and edits, option variables, deferred calls, messages, plug-ins.
//
// One method is one call of one command. The comment gives the call as a scripting host makes it: function,
// positional arguments, keywords, in that order. Every method may throw Error (an ordinary failure, with the
// host's text) or Interrupt; the engine decides what either means. All methods run on the host's main thread, and
// none keeps a reference to its arguments unless it says so. All are required.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/vector.h"
#include "host/callback.h"
#include "host/value.h"

namespace vantorelix::host {

class CommandLayer {
 public:
  virtual ~CommandLayer() = default;

  // --- selection and node queries -------------------------------------------------------------------------
  // ls(sl=True, long=True): the selection as full paths, in selection order; empty when the host gives none.
  virtual std::vector<std::string> ls_selection() = 0;
  // ls(type=type): shortest unique names of all nodes of the type; empty when the host gives none.
  virtual std::vector<std::string> ls_type(const std::string& type) = 0;
  // objExists(name)
  virtual bool objExists(const std::string& name) = 0;
  // listRelatives(node, parent=True, fullPath=True): empty when there is none.
  virtual std::vector<std::string> listRelatives_parent(const std::string& node) = 0;
  // listRelatives(node, s=True, fullPath=True): the shapes of a transform; empty when there are none.
  virtual std::vector<std::string> listRelatives_shapes(const std::string& node) = 0;
  // select(names, replace=True)
  virtual void select_replace(const std::vector<std::string>& names) = 0;
  // select(names): the plain form, which selects just these.
  virtual void select(const std::vector<std::string>& names) = 0;
  // select(clear=True)
  virtual void select_clear() = 0;

  // --- making, naming, moving, deleting -------------------------------------------------------------------
  // createNode(type, name=name): returns the node's name; a shape type gets a transform above it.
  virtual std::string createNode(const std::string& type, const std::string& name) = 0;
  // rename(node, name): returns the name that the node got.
  virtual std::string rename(const std::string& node, const std::string& name) = 0;
  // parent(node, parent)
  virtual void parent(const std::string& node, const std::string& parent) = 0;
  // group(em=True, name=name): an empty transform.
  virtual void group_empty(const std::string& name) = 0;
  // delete(node), with all its descendants.
  virtual void delete_(const std::string& node) = 0;
  // curve(d=degree, p=points, name=name): returns the name of the new curve's transform.
  virtual std::string curve(const Value& degree, const std::vector<Vector>& points, const std::string& name) = 0;

  // --- attributes and animation ---------------------------------------------------------------------------
  // getAttr(attribute, time=time) of a matrix attribute: 16 doubles, row-major. `time` in frames.
  virtual std::array<double, 16> getAttr_matrix(const std::string& attribute, double time) = 0;
  // setAttr(attribute, value): the value as it was passed.
  virtual void setAttr(const std::string& attribute, const Value& value) = 0;
  // keyframe(node, q=True, timeChange=True): key times in frames, in the host's order; empty when there are none.
  virtual std::vector<double> keyframe_times(const std::string& node) = 0;
  // playbackOptions(q=True, min=True) and playbackOptions(q=True, max=True): frames.
  virtual double playbackOptions_min() = 0;
  virtual double playbackOptions_max() = 0;
  // currentTime(q=True): frames.
  virtual double currentTime() = 0;

  // --- deferred calls, redraw, messages -------------------------------------------------------------------
  // evalDeferred(function, lowestPriority=True): one call when the host is idle, after all other deferred work.
  virtual void evalDeferred(const Callback& function) = 0;
  // refresh()
  virtual void refresh() = 0;
  // inViewMessage(amg=text, pos="midCenter", fade=True, alpha=0.9)
  virtual void inViewMessage(const Value& text) = 0;
  // warning(text)
  virtual void warning(const std::string& text) = 0;
  // getPanel(type="modelPanel"): empty when the host gives none.
  virtual std::vector<std::string> getPanel_model() = 0;
  // modelEditor(panel, q=True, flag=True), with `flag` as the keyword.
  virtual bool modelEditor_query(const std::string& panel, const std::string& flag) = 0;
  // modelEditor(panel, e=True, flag=True)
  virtual void modelEditor_enable(const std::string& panel, const std::string& flag) = 0;

  // --- option variables -----------------------------------------------------------------------------------
  // optionVar(exists=name)
  virtual bool optionVar_exists(const std::string& name) = 0;
  // optionVar(q=name)
  virtual Value optionVar_query(const std::string& name) = 0;
  // optionVar(iv=(name, value))
  virtual void optionVar_set_int(const std::string& name, std::int64_t value) = 0;
  // optionVar(fv=(name, value))
  virtual void optionVar_set_float(const std::string& name, double value) = 0;
  // optionVar(stringValueAppend=(name, value))
  virtual void optionVar_append_string(const std::string& name, const std::string& value) = 0;

  // --- application and plug-ins ---------------------------------------------------------------------------
  // about(batch=True): true when the host runs without an interface.
  virtual bool about_batch() = 0;
  // about(version=True)
  virtual std::string about_version() = 0;
  // internalVar(userAppDir=True): the user's application folder, with a separator at its end; may be empty.
  virtual std::string internalVar_userAppDir() = 0;
  // pluginInfo(name, q=True, loaded=True)
  virtual bool pluginInfo_loaded(const std::string& name) = 0;
  // loadPlugin(path, quiet=True): a file path or a bare name. Throws when nothing was loaded.
  virtual void loadPlugin(const std::string& path) = 0;
};

}  // namespace vantorelix::host
