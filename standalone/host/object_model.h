// The object model and the animation model over a scene.
#pragma once

#include "host/object_model.h"
#include "standalone/host/host_state.h"

namespace vantorelix::standalone {

// The state must outlive this, and every plug that it gave.
class Objects : public host::ObjectModel {
 public:
  explicit Objects(HostState& state) : state_(state) {}

  std::shared_ptr<host::Plug> findPlug(const std::string& node, const std::string& attribute) override;
  host::TimeUnit uiUnit() override;
  std::shared_ptr<host::VectorArray> vector_array(const Vectors& values) override;
  std::shared_ptr<host::VectorArray> vector_array() override;
  bool isReadingFile() override;
  bool isWritingFile() override;
  bool isOpeningFile() override;
  bool isNewingFile() override;
  host::Value addNodeRemovedCallback(const host::Callback& function, const std::string& type) override;
  void removeCallback(const host::Value& identifier) override;

 private:
  HostState& state_;
};

class Animation : public host::AnimationModel {
 public:
  explicit Animation(HostState& state) : state_(state) {}

  bool isPlaying() override;
  double currentTime() override;
  host::Value addAnimCurveEditedCallback(const host::Callback& function) override;
  host::Value addAnimKeyframeEditedCallback(const host::Callback& function) override;

 private:
  HostState& state_;
};

}  // namespace vantorelix::standalone
