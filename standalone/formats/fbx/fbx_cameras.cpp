// Cameras: their shapes, and what of them is animated.
#include <ufbx.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "standalone/formats/camera.h"
#include "standalone/formats/fbx/fbx_reader.h"

namespace vantorelix::standalone {
namespace {

struct CameraProperty {
  std::string_view name, attribute;
};
// Those that an attribute stands for as they are.
constexpr std::array<CameraProperty, 5> kProperties = {{{"FocalLength", "focalLength"},
                                                        {"FilmWidth", "horizontalFilmAperture"},
                                                        {"FilmHeight", "verticalFilmAperture"},
                                                        {"NearPlane", "nearClipPlane"},
                                                        {"FarPlane", "farClipPlane"}}};

FilmFit fit_of(const ufbx_camera& camera) {
  if (camera.aperture_mode == UFBX_APERTURE_MODE_VERTICAL) return FilmFit::vertical;
  if (camera.aperture_mode != UFBX_APERTURE_MODE_FOCAL_LENGTH) return FilmFit::horizontal;
  switch (camera.gate_fit) {
    case UFBX_GATE_FIT_VERTICAL:
      return FilmFit::vertical;
    case UFBX_GATE_FIT_FILL:
      return FilmFit::fill;
    case UFBX_GATE_FIT_OVERSCAN:
      return FilmFit::overscan;
    default:
      return FilmFit::horizontal;
  }
}

struct Lens {
  double width, height, focal_length;  // inches, and millimetres
};

Lens lens_of(const ufbx_camera& camera) {
  const ufbx_vec2 film = camera.film_size_inch, half = camera.field_of_view_tan;
  switch (camera.aperture_mode) {
    case UFBX_APERTURE_MODE_FOCAL_LENGTH:
      return {film.x, film.y, camera.focal_length_mm};
    case UFBX_APERTURE_MODE_VERTICAL:
      return {film.x, film.y, film.y * kInch / 2.0 / half.y};
    case UFBX_APERTURE_MODE_HORIZONTAL:
      return {film.x, film.y, film.x * kInch / 2.0 / half.x};
    default:
      return {film.x, film.x * half.y / half.x, film.x * kInch / 2.0 / half.x};
  }
}

}  // namespace

void FbxReader::read_camera(const ufbx_node& node, NodeId id) {
  const ufbx_camera& camera = *node.camera;
  const NodeId shape = add_camera(scene_, id);
  cameras_.emplace(&camera, shape);
  set_looks_along_x(scene_, shape);
  const Lens lens = lens_of(camera);
  if (lens.width > 0.0 && lens.height > 0.0 && lens.focal_length > 0.0) {
    set_camera(scene_, shape, "horizontalFilmAperture", lens.width);
    set_camera(scene_, shape, "verticalFilmAperture", lens.height);
    set_camera(scene_, shape, "focalLength", lens.focal_length);
  }
  set_camera(scene_, shape, "filmFit", static_cast<double>(fit_of(camera)));
  const double unit =
      std::sqrt(conversion_[0] * conversion_[0] + conversion_[1] * conversion_[1] + conversion_[2] * conversion_[2]);
  set_camera(scene_, shape, "nearClipPlane", camera.near_plane * unit);
  set_camera(scene_, shape, "farClipPlane", camera.far_plane * unit);
  if (camera.projection_mode == UFBX_PROJECTION_MODE_ORTHOGRAPHIC) {
    set_camera(scene_, shape, "orthographic", 1.0);
    set_camera(scene_, shape, "orthographicWidth", camera.orthographic_size.x * unit);
  }
}

// Curves of one layer; a lens that is told by its field of view keeps what it has.
void FbxReader::animate_cameras() {
  for (const ufbx_anim_layer* layer : anim_->layers) {
    for (const ufbx_anim_prop& driven : layer->anim_props) {
      const ufbx_camera* const camera = ufbx_as_camera(driven.element);
      if (camera == nullptr) continue;
      const std::string_view name(driven.prop_name.data, driven.prop_name.length);
      const auto property = std::find_if(kProperties.begin(), kProperties.end(),
                                         [name](const CameraProperty& p) { return p.name == name; });
      const ufbx_anim_curve* const curve = driven.anim_value->curves[0];
      const bool plain = curve != nullptr && curve->keyframes.count > 0 && is_convertible(*curve);
      if (property != kProperties.end() && camera->aperture_mode == UFBX_APERTURE_MODE_FOCAL_LENGTH && plain) {
        drive_cameras(*camera, property->attribute, *curve);
      } else if (name.starts_with("FieldOfView")) {
        scene_.warnings.add(
            "an animated field of view of a camera is not followed; it keeps its static value; animate its focal "
            "length");
      }
    }
  }
}

void FbxReader::drive_cameras(const ufbx_camera& camera, std::string_view attribute, const ufbx_anim_curve& curve) {
  const auto [first, end] = cameras_.equal_range(&camera);
  for (auto shape = first; shape != end; ++shape) {
    FbxCurve made = convert_curve(curve, clock_, 1.0);
    const NodeId driver = scene_.curves.create(
        CurveKind::unitless, std::string(scene_.names.short_name(shape->second)) + "_" + std::string(attribute));
    scene_.curves.assign(driver, std::move(made.keys), made.weighted, made.pre, made.post);
    scene_.connections.connect(driver, "output", shape->second, attribute);
  }
}

}  // namespace vantorelix::standalone
