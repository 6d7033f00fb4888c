// What cameras see, in one form whatever format they come from.
//
// Readers give a camera's shape, a node of type "camera" under the transform that carries it, attributes under Maya's
// names and in its units: film apertures and offsets in inches, the focal length in millimetres. What is not given is
// as in Maya. What they convert:
//   FBX   a camera that is told by its field of view gets the focal length that goes with it and its film; a gate that
//         is fitted in no way, or stretched, counts as horizontal
//   glTF  a camera that is told by yfov and aspectRatio has a film 24 mm high, of that shape (3:2 where the file leaves
//         it to the window), the focal length that goes with it, and a vertical fit; numbers are the file's, in 32 bits
#pragma once

#include <string_view>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

inline constexpr double kInch = 25.4;  // millimetres

// Which side of the film fills the picture's. Fill: the one with which nothing beside the film is seen; overscan: the
// one with which all of it is. The numbers are Maya's.
enum class FilmFit { fill = 0, horizontal = 1, vertical = 2, overscan = 3 };

struct CameraView {
  double aperture_x, aperture_y;  // millimetres, a squeezed picture spread again
  double offset_x, offset_y;      // of the film from the lens, millimetres
  double focal_length;            // millimetres
  FilmFit fit;
  double near_clip, far_clip;  // the scene's unit; a far clip of 0 is none
  double width;                // of the picture in the scene's unit, of an orthographic camera; 0: it is perspective
};

// The long name of an attribute of cameras that is read, by its long or short name; empty for any other.
std::string_view camera_attribute(std::string_view name);

// At a frame, by the curves that drive its attributes; other drivers are not followed. `shape` is of type "camera".
CameraView camera_at(const Scene& scene, NodeId shape, double frame);

// Cameras look along -z of their transform with y up; those of FBX along x, with y up.
bool looks_along_x(const Scene& scene, NodeId shape);

// A new shape of a camera under a transform. For readers.
NodeId add_camera(Scene& scene, NodeId transform);
// Gives it a number, unless that is not finite.
void set_camera(Scene& scene, NodeId shape, std::string_view attribute, double value);
void set_looks_along_x(Scene& scene, NodeId shape);

}  // namespace vantorelix::standalone
