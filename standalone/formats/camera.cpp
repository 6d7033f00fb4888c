#include "standalone/formats/camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "host/value.h"

namespace vantorelix::standalone {

namespace {

constexpr std::string_view kLooksAlongX = "looksAlongX";

struct Attribute {
  std::string_view name, short_name;
  double otherwise;
};

constexpr std::array<Attribute, 11> kAttributes = {{{"horizontalFilmAperture", "hfa", 1.41732},
                                                    {"verticalFilmAperture", "vfa", 0.94488},
                                                    {"horizontalFilmOffset", "hfo", 0.0},
                                                    {"verticalFilmOffset", "vfo", 0.0},
                                                    {"lensSqueezeRatio", "lsr", 1.0},
                                                    {"focalLength", "fl", 35.0},
                                                    {"filmFit", "ff", 0.0},
                                                    {"nearClipPlane", "ncp", 0.1},
                                                    {"farClipPlane", "fcp", 10000.0},
                                                    {"orthographic", "o", 0.0},
                                                    {"orthographicWidth", "ow", 10.0}}};

class Camera {
 public:
  Camera(const Scene& scene, NodeId shape, double frame)
      : scene_(scene), shape_(shape), frame_(frame), inputs_(scene.connections.into(shape)) {}

  double operator()(std::string_view name) const {
    for (const Connection& input : inputs_)
      if (input.attribute == name && scene_.curves.is_curve(input.source))
        return scene_.curves.at(input.source).evaluate(frame_);
    if (scene_.attributes.has(shape_, name)) return scene_.attributes.value(shape_, name).to_float();
    return std::find_if(kAttributes.begin(), kAttributes.end(), [name](const Attribute& a) { return a.name == name; })
        ->otherwise;
  }

 private:
  const Scene& scene_;
  NodeId shape_;
  double frame_;
  std::vector<Connection> inputs_;
};

FilmFit fit_of(double number) {
  return number >= 0.0 && number < 4.0 ? static_cast<FilmFit>(static_cast<int>(number)) : FilmFit::fill;
}

}  // namespace

std::string_view camera_attribute(std::string_view name) {
  const auto found = std::find_if(kAttributes.begin(), kAttributes.end(),
                                  [name](const Attribute& a) { return a.name == name || a.short_name == name; });
  return found == kAttributes.end() ? std::string_view() : found->name;
}

CameraView camera_at(const Scene& scene, NodeId shape, double frame) {
  const Camera value(scene, shape, frame);
  const double squeeze = value("lensSqueezeRatio");
  return {.aperture_x = value("horizontalFilmAperture") * squeeze * kInch,
          .aperture_y = value("verticalFilmAperture") * kInch,
          .offset_x = value("horizontalFilmOffset") * squeeze * kInch,
          .offset_y = value("verticalFilmOffset") * kInch,
          .focal_length = value("focalLength"),
          .fit = fit_of(value("filmFit")),
          .near_clip = value("nearClipPlane"),
          .far_clip = value("farClipPlane"),
          .width = value("orthographic") == 0.0 ? 0.0 : value("orthographicWidth")};
}

bool looks_along_x(const Scene& scene, NodeId shape) { return scene.attributes.has(shape, kLooksAlongX); }

NodeId add_camera(Scene& scene, NodeId transform) {
  return scene.nodes.create("camera", std::string(scene.names.short_name(transform)) + "Shape", transform);
}

void set_camera(Scene& scene, NodeId shape, std::string_view attribute, double value) {
  if (std::isfinite(value)) scene.attributes.add(shape, attribute, host::Value(value));
}

void set_looks_along_x(Scene& scene, NodeId shape) { scene.attributes.add(shape, kLooksAlongX, host::Value(true)); }

}  // namespace vantorelix::standalone
