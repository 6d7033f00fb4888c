#include "engine/trails/viz_push.h"

#include <memory>

#include "engine/state/attempt.h"
#include "engine/state/state.h"
#include "engine/trails/nodes.h"

namespace vantorelix {

namespace {

std::shared_ptr<host::VectorArray> array_of(const Vectors& values) {
  std::shared_ptr<host::VectorArray> array;
  if (attempt([&] { array = om->vector_array(values); })) return array;
  array = om->vector_array();
  for (const Vector& value : *values) array->append(value);
  return array;
}

// Key times travel in the x component: the node type has vector arrays only.
Vectors as_vectors(const std::vector<double>& times) {
  auto vectors = std::make_shared<std::vector<Vector>>();
  vectors->reserve(times.size());
  for (const double t : times) vectors->push_back({t, 0.0, 0.0});
  return vectors;
}

}  // namespace

void _set_vector_array_attr(const std::string& node, const std::string& attr, const Vectors& values) {
  const std::shared_ptr<host::Plug> plug = om->findPlug(node, attr);
  plug->set_vector_array(array_of(values));
}

void _push_data_to_viz(const std::string& viz_tr, const VizData& data, const std::vector<double>* key_times) {
  const std::string shape = _first_shape(viz_tr);
  _set_vector_array_attr(shape, "points", data.positions);
  _set_vector_array_attr(shape, "colors", data.colors);
  _set_vector_array_attr(shape, "keyPoints", data.key_positions);
  _set_vector_array_attr(shape, "keyColors", data.key_colors);
  if (!key_times) return;
  // An older node plug-in has no "keyTimes"; everything else must still arrive.
  attempt([&] { _set_vector_array_attr(shape, "keyTimes", as_vectors(*key_times)); });
}

void _update_frame_attrs(const std::string& viz_tr, const host::Value& start, const host::Value& step) {
  attempt([&] {
    const std::string shape = _first_shape(viz_tr);
    cmds->setAttr(shape + ".startFrame", start.to_float());
    cmds->setAttr(shape + ".frameStep", step.to_float());
  });
}

}  // namespace vantorelix
