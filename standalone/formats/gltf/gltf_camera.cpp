#include "standalone/formats/gltf/gltf_camera.h"

#include <cgltf.h>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/camera.h"

namespace vantorelix::standalone {

namespace {

constexpr double kHeight = 24.0;  // of the film, millimetres

void read_perspective(const cgltf_camera_perspective& lens, Scene& scene, NodeId shape) {
  const double aspect =
      lens.has_aspect_ratio && lens.aspect_ratio > 0.0f ? static_cast<double>(lens.aspect_ratio) : 1.5;
  const auto half = base::sin_cos(static_cast<double>(lens.yfov) / 2.0);
  set_camera(scene, shape, "verticalFilmAperture", kHeight / kInch);
  set_camera(scene, shape, "horizontalFilmAperture", aspect * kHeight / kInch);
  set_camera(scene, shape, "focalLength", kHeight / 2.0 * half.cos / half.sin);
  set_camera(scene, shape, "nearClipPlane", static_cast<double>(lens.znear));
  set_camera(scene, shape, "farClipPlane", lens.has_zfar ? static_cast<double>(lens.zfar) : 0.0);
}

void read_orthographic(const cgltf_camera_orthographic& lens, Scene& scene, NodeId shape) {
  const double wide = 2.0 * static_cast<double>(lens.xmag), high = 2.0 * static_cast<double>(lens.ymag);
  set_camera(scene, shape, "orthographic", 1.0);
  set_camera(scene, shape, "orthographicWidth", wide);
  set_camera(scene, shape, "verticalFilmAperture", kHeight / kInch);
  set_camera(scene, shape, "horizontalFilmAperture", wide / high * kHeight / kInch);
  set_camera(scene, shape, "nearClipPlane", static_cast<double>(lens.znear));
  set_camera(scene, shape, "farClipPlane", static_cast<double>(lens.zfar));
}

}  // namespace

void read_camera(const cgltf_camera& camera, Scene& scene, NodeId transform) {
  const cgltf_camera_perspective& lens = camera.data.perspective;
  const cgltf_camera_orthographic& flat = camera.data.orthographic;
  const bool sees = camera.type == cgltf_camera_type_perspective
                        ? lens.yfov > 0.0f
                        : camera.type == cgltf_camera_type_orthographic && flat.xmag > 0.0f && flat.ymag > 0.0f;
  if (!sees) return;
  const NodeId shape = add_camera(scene, transform);
  set_camera(scene, shape, "filmFit", static_cast<double>(FilmFit::vertical));
  if (camera.type == cgltf_camera_type_perspective) read_perspective(camera.data.perspective, scene, shape);
  if (camera.type == cgltf_camera_type_orthographic) read_orthographic(camera.data.orthographic, scene, shape);
}

}  // namespace vantorelix::standalone
