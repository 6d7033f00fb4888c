// The object model and the animation model over the module's `om` and `oma`.
#pragma once

#include "host/object_model.h"

namespace vantorelix::maya {

class Objects : public host::ObjectModel {
 public:
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
};

class Animation : public host::AnimationModel {
 public:
  bool isPlaying() override;
  double currentTime() override;
  host::Value addAnimCurveEditedCallback(const host::Callback& function) override;
  host::Value addAnimKeyframeEditedCallback(const host::Callback& function) override;
};

}  // namespace vantorelix::maya
