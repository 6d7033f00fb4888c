/* Scenes and their trails through plain C, for whatever is not C++: the Python package loads it as a shared library.
 *
 * One call at a time in the whole process, whatever the scene. A function that returns an int returns 0 when it did its
 * work; else vlx_error says what was wrong. Texts are UTF-8 (names as they are in their file) and end with a zero; a
 * text that is handed out stays as it is until the next call of any function. Numbers are doubles, frames may be
 * fractions.
 */
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#define VLX_API extern "C" __declspec(dllexport)
#else
#define VLX_API extern "C" __attribute__((visibility("default")))
#endif

struct VlxScene;
struct VlxTrailSet;
struct VlxTrail;
struct VlxTables;

struct VlxError {
  /* "format": a file that cannot be read. "no_file": one that is not there. "not_found": a name or pattern that stands
   * for nothing. "interrupted": the callback of vlx_watch asked for it. "refused": an edit that keys cannot do, with
   * nothing changed. "memory". "failed": anything else. */
  const char* kind;
  const char* text;
  std::size_t line; /* of the file, from 1; 0 where none is known */
};

/* Null or empty texts and numbers that are not above 0 leave a setting to the file. */
struct VlxReading {
  const char* take;
  const char* axis; /* "y-up", "z-up" */
  const char* unit; /* "mm", "cm", "m", "km", "in", "ft", "yd" */
  double fps;
  int bounds; /* whether to find how large the surfaces are, for vlx_statics */
};

struct VlxSamples {
  const char* const* names;
  const std::int64_t* parents; /* the number of an object before it, or -1 */
  std::size_t count, frames;
  double first, fps;
  const char* unit;
  char up_axis; /* 'y' or 'z' */
};

struct VlxRequest {
  const char* const* patterns;
  std::size_t pattern_count;
  const char* const* excluded;
  std::size_t excluded_count;
  int ignore_case;
  int all;
  std::int64_t samples_per_frame; /* below 1: the engine's default */
  int color_mode;                 /* 0 to 3; below 0: the engine's default */
  double first, last;             /* frames; not a number: the scene's own end */
};

struct VlxArray {
  const double* data; /* null where `count` is 0 */
  std::size_t count;  /* of doubles */
};

struct VlxTrailArrays {
  VlxArray points, colors, key_points, key_colors; /* triples */
  VlxArray key_times;
};

/* Columns of numbers, in which the trails follow each other; not a number where something is not known or not finite.
 */
struct VlxColumns {
  VlxArray x, y, z, speed;                 /* of each sample; speed as session/tables/columns.h has it */
  VlxArray key_frame, key_x, key_y, key_z; /* of each key */
  VlxArray measures;                       /* of each trail: a column for each measure, one after the other */
};

struct VlxStretch {
  std::size_t trail; /* of the set */
  std::size_t first; /* the sample that the first point is of */
  VlxArray points;   /* triples */
};

struct VlxProgress {
  int pending;             /* whether trails are not exact yet */
  int worked;              /* whether anything was done; else the engine waits for the edits to end */
  std::size_t item, items; /* how many trails are done, of how many; 0 of 0 where nothing is at work */
};

VLX_API const char* vlx_version();
/* Of the last call that failed. */
VLX_API void vlx_error(VlxError* error);

/* Asked about twenty times a second by the calls from here on while they are at work: anything but 0 ends the call.
 * Null for none. */
VLX_API void vlx_watch(int (*asked)());

/* A scene goes with all its sets of trails; a trail lives on its own. */
VLX_API int vlx_open(const char* file, const VlxReading* reading, VlxScene** scene);
/* A scene of objects that the caller has evaluated (standalone/formats/samples/sampled_scene.h): `matrices` holds 16
 * doubles for each object of each frame. `name` stands in error texts. Nothing that is passed is kept. */
VLX_API int vlx_samples(const VlxSamples* samples, const double* matrices, const char* name, VlxScene** scene);
VLX_API int vlx_close(VlxScene* scene);

/* JSON; see api/texts.h. */
VLX_API int vlx_description(VlxScene* scene, const char** json);
VLX_API int vlx_objects(VlxScene* scene, const char** json);
VLX_API int vlx_cameras(VlxScene* scene, const char** json);
/* The boxes of what stands still, where they are at a frame. One whose size was not asked for when the scene was opened
 * is a cube of one unit. See session/statics.h. */
VLX_API int vlx_statics(VlxScene* scene, double frame, const char** json);

/* What a camera sees at frames, by the path of its shape: 9 doubles a frame, which are the width and the height of its
 * film, how far that is shifted to the right and up, and the focal length, all in millimetres; the film fit (0 fill,
 * 1 horizontal, 2 vertical, 3 overscan); near and far clip in the scene's unit, a far clip of 0 being none; and the
 * width of the picture of an orthographic camera, in the scene's unit, or 0. See standalone/formats/camera.h. */
VLX_API int vlx_camera_views(VlxScene* scene, const char* shape, const double* frames, std::size_t count,
                             double* values);

VLX_API int vlx_trails(VlxScene* scene, const VlxRequest* request, VlxTrailSet** set, std::size_t* count);
/* The set's trails are followed no more. */
VLX_API int vlx_let_go(VlxScene* scene, VlxTrailSet* set);
/* A trail of a set as it is now, with arrays that never change. */
VLX_API int vlx_trail(VlxTrailSet* set, std::size_t index, VlxTrail** trail);
VLX_API int vlx_trail_text(VlxTrail* trail, const char** json);
/* JSON, worked out now. */
VLX_API int vlx_trail_measures(VlxTrail* trail, const char** json);
VLX_API int vlx_trail_arrays(VlxTrail* trail, VlxTrailArrays* arrays);
/* This and vlx_tables_free are the functions that any thread may call at any time. */
VLX_API void vlx_trail_free(VlxTrail* trail);

/* The trails of a set as they are now, with all measures that are one number: what tables are made of. */
VLX_API int vlx_tables(VlxTrailSet* set, VlxTables** tables);
/* JSON: the trails, and the names and units of the measures; see api/texts.h. */
VLX_API int vlx_tables_text(VlxTables* tables, const char** json);
VLX_API int vlx_tables_columns(VlxTables* tables, VlxColumns* columns);
/* As vlx_trail_free. */
VLX_API void vlx_tables_free(VlxTables* tables);

/* 16 doubles a frame, row by row, row vectors; `count` frames. */
VLX_API int vlx_world_matrices(VlxScene* scene, const char* object, const double* frames, std::size_t count,
                               double* matrices);
/* The same of what its local matrix is multiplied with: its offset parent matrix and all that is above it. What its
 * translation channels are, this takes to the world. */
VLX_API int vlx_matrices_above(VlxScene* scene, const char* object, const double* frames, std::size_t count,
                               double* matrices);

/* The frames of an object's keys in order, each once, of every attribute. They stay until the next call of any
 * function.
 */
VLX_API int vlx_key_times(VlxScene* scene, const char* object, VlxArray* times);
/* `attribute` is one channel, "translateY" or "ty"; `value` in degrees on angles. */
VLX_API int vlx_set_key(VlxScene* scene, const char* object, const char* attribute, double frame, double value);
VLX_API int vlx_move_key(VlxScene* scene, const char* object, const char* attribute, double frame, double to);
VLX_API int vlx_remove_key(VlxScene* scene, const char* object, const char* attribute, double frame);
/* JSON: the channels of an object that have keys; see api/texts.h. */
VLX_API int vlx_curves(VlxScene* scene, const char* object, const char** json);
/* The keys of a channel's curve, in order, none without one: 8 doubles each, which are the frame, the value (in radians
 * on angles), the sorts of the tangents in and out (standalone/scene/curves/curve_key.h has their numbers) and, of
 * fixed tangents, in x and y and out x and y (seconds, and the value's unit). They stay until the next call of any
 * function. */
VLX_API int vlx_keys(VlxScene* scene, const char* object, const char* attribute, VlxArray* keys);
/* Adds a key, or replaces the one at its frame: 8 doubles as vlx_keys has them, to the last bit. */
VLX_API int vlx_put_key(VlxScene* scene, const char* object, const char* attribute, const double* key);
/* What a channel is at `count` frames, keyed or not; in radians on angles. */
VLX_API int vlx_channel_values(VlxScene* scene, const char* object, const char* attribute, const double* frames,
                               std::size_t count, double* values);

/* Where handles of keys lead. An empty `attribute` stands for all channels of the object that have curves. */

/* JSON: whether an object's own keys at a frame can put it elsewhere; see api/texts.h. */
VLX_API int vlx_placing(VlxScene* scene, const char* object, double frame, const char** json);
/* Sets the keys of the object's translation at a frame so that it is at a place in the world then: 3 doubles. See
 * session/editing/placing.h for what it does to channels without a key there. */
VLX_API int vlx_place_key(VlxScene* scene, const char* object, double frame, const double* place);
/* JSON: whether the object can slide on its path at a frame, and between which keys; see api/texts.h. */
VLX_API int vlx_sliding(VlxScene* scene, const char* object, double frame, const char** json);
/* Puts the object at a frame where its path is at another one; the path stays, and the spacing changes. See
 * session/editing/beads.h for what it does to tangents. With `alone_before` (`alone_after`) the other side of the key
 * before (after) the frame stays as it is. */
VLX_API int vlx_slide_bead(VlxScene* scene, const char* object, double frame, double to, int alone_before,
                           int alone_after);
/* Keys at a frame go to another one, as one step; none of them, where one would land on a neighbour or pass it. */
VLX_API int vlx_move_keys(VlxScene* scene, const char* object, const char* attribute, double frame, double to);
/* Keys that leave the curves as they are. */
VLX_API int vlx_insert_keys(VlxScene* scene, const char* object, const char* attribute, double frame);
VLX_API int vlx_remove_keys(VlxScene* scene, const char* object, const char* attribute, double frame);
/* The tangents of a channel's keys as the curve has them, of whatever sort: 4 doubles a key, in x and y and out x and
 * y, all forward in time: seconds, and the value's unit (radians on angles). Three times the handles of the Bezier
 * between two keys. They stay until the next call of any function. */
VLX_API int vlx_tangents(VlxScene* scene, const char* object, const char* attribute, VlxArray* tangents);
/* Fixes the side of a key where the curve leaves it (`out`) or enters it along such a vector; unified, the other side
 * turns along and keeps its length. A tangent that is broken is one whose sides have two slopes. */
VLX_API int vlx_set_tangent(VlxScene* scene, const char* object, const char* attribute, double frame, int out, double x,
                            double y, int unified);
/* Whether the lengths of the tangents of a channel's curve count, which keeps its slopes. */
VLX_API int vlx_set_weighted(VlxScene* scene, const char* object, const char* attribute, int weighted);
/* 2 doubles, the frames outside of which no edit of a key at this frame is felt; infinite where there is no end. */
VLX_API int vlx_felt_range(VlxScene* scene, const char* object, const char* attribute, double frame, double* range);
/* Where the samples between two frames (not a number: the trail's own end) are now, of those trails of the set that
 * move with the object: what vlx_pump will lead to. They stay until the next call of this function. */
VLX_API int vlx_provisional(VlxScene* scene, VlxTrailSet* set, const char* object, double first, double last,
                            const VlxStretch** stretches, std::size_t* count);

struct VlxWritten {
  const char* bytes; /* ends with a zero besides */
  std::size_t size;
  const char* lost; /* JSON: a list of sentences, what the bytes do not hold or not to the last bit */
};
/* The animation of objects as it is now, in the form that `form` names, nothing saved: "ma", curves as a Maya ASCII
 * file to be imported; "py", the same as a script for Maya; "bvh", figures as a clip of the scene's own range; "glb",
 * the glTF file that was opened, which has to lie there still, with this animation. No object at all: all of them.
 * "refused" where the form cannot hold what is asked for. See standalone/formats/writer.h. Both stay until the next
 * call of this function. */
VLX_API int vlx_written(VlxScene* scene, const char* form, const char* const* objects, std::size_t count,
                        VlxWritten* written);

/* From here on edits can be undone; 0: they cannot, as at first, and what is known is forgotten. */
VLX_API int vlx_keep_history(VlxScene* scene, int kept);
/* The edits in between are one step with this name. A step without edits is none. */
VLX_API int vlx_open_step(VlxScene* scene, const char* name);
VLX_API int vlx_close_step(VlxScene* scene);
VLX_API int vlx_undo(VlxScene* scene);
VLX_API int vlx_redo(VlxScene* scene);
/* JSON: what the next undo and redo are about; see api/texts.h. */
VLX_API int vlx_history(VlxScene* scene, const char** json);

/* Makes every set of trails exact after edits. */
VLX_API int vlx_follow(VlxScene* scene);
/* Does part of that work, for about so many seconds and at least one slice of the engine's; call it again and again,
 * with other work in between. After an edit the engine waits until there was none for a fifth of a second. */
VLX_API int vlx_pump(VlxScene* scene, double seconds, VlxProgress* progress);
/* A trail of a set as the last of these calls left it. The revision is another whenever the arrays are. They stay until
 * the next vlx_follow, vlx_pump, vlx_let_go or vlx_close. */
VLX_API int vlx_trail_now(VlxTrailSet* set, std::size_t index, VlxTrailArrays* arrays, std::size_t* revision);
