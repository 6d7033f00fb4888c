// An FBX file in memory, and the clock that its times are counted with. For the files of this folder only.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "standalone/formats/reader.h"

struct ufbx_scene;

namespace vantorelix::standalone {

using FbxDocument = std::shared_ptr<const ufbx_scene>;

// Parses everything but embedded files, and geometry only where its bounds are wanted; opens no other file. Throws
// FormatError. Memory: at most kFbxMemoryMultiple times the file and kFbxMemoryBase bytes while it parses, and as much
// for the document; a usual file takes a tenth of that multiple. The scene made of it takes at most four times the
// document.
inline constexpr std::size_t kFbxMemoryMultiple = 128;
inline constexpr std::size_t kFbxMemoryBase = std::size_t{64} << 20;
FbxDocument load_fbx(std::string_view bytes, const std::string& name, const ReadOptions& options);

// Whether a text file lacks the section "Takes", which ends it: the library does not mind.
bool lacks_its_end(std::string_view bytes, const ufbx_scene& document);

// Frame f is at f / rate seconds. Files count time in whole ticks, which seconds round.
class FbxClock {
 public:
  explicit FbxClock(const ufbx_scene& document);

  double frames_per_second() const { return frames_per_second_; }
  // A whole number where the file's tick is the nearest one to that frame.
  double frame(double seconds) const;
  // The inverse of frame(): for a frame that frame() gave for a key, exactly that key's tick.
  double seconds(double frame) const;

 private:
  double frames_per_second_;
  double ticks_per_second_;
};

}  // namespace vantorelix::standalone
