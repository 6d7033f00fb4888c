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
   * for nothing. "interrupted": the callback of vlx_watch asked for it. "memory". "failed": anything else. */
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
