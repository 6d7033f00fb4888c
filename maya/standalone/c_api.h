/* The standalone host through plain C, for scripting languages that load shared libraries.
 *
 * One thread. Every function but vlx_exists and the last two returns 0 when it did its work; else vlx_error_kind and
 * vlx_error_text say what was wrong, and nothing was changed. Texts are UTF-8 and end with a zero; what a function
 * hands out stays as it is until the next call of the same function. Nodes go by numbers that are never used again in
 * the same scene.
 */
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#define VLX_API extern "C" __declspec(dllexport)
#else
#define VLX_API extern "C" __attribute__((visibility("default")))
#endif

struct VlxSession;

/* Told inside each edit: 0 a curve was edited, 1 a key was edited, 2 a node goes; the node with its type. May call any
 * function here but vlx_close. */
using VlxListener = void (*)(std::int32_t event, std::uint32_t node, const char* type);

/* `options`, as JSON: [batch, plug-in loaded from the start, file of option variables or null, the user's application
 * folder]. The session starts with an empty scene. */
VLX_API int vlx_start(const char* options, VlxSession** session);
VLX_API int vlx_close(VlxSession* session);
VLX_API int vlx_listen(VlxSession* session, VlxListener listener);

/* Reads a scene file and puts it in the place of the scene that is open. */
VLX_API int vlx_open(VlxSession* session, const char* file);

/* Everything that is not hot: a call by its name, its arguments and its result as JSON. */
VLX_API int vlx_call(VlxSession* session, const char* name, const char* arguments, const char** result);

/* Around a command that can be undone: its name, and whether it did its work. */
VLX_API int vlx_begin(VlxSession* session, const char* name);
VLX_API int vlx_end(VlxSession* session, int succeeded);

/* Whether a node is there: 1 or 0, never a failure. */
VLX_API int vlx_exists(VlxSession* session, std::uint32_t node);

/* The world matrix of a node at a frame (`world` 0: its local matrix), 16 doubles, row by row, row vectors. */
VLX_API int vlx_matrix(VlxSession* session, std::uint32_t node, double frame, int world, double* matrix);

/* A vector array of the trail node: `count` triples. Never set: `xyz` null, count 0. */
VLX_API int vlx_vectors(VlxSession* session, std::uint32_t node, const char* attribute, const double** xyz,
                        std::size_t* count);
VLX_API int vlx_set_vectors(VlxSession* session, std::uint32_t node, const char* attribute, const double* xyz,
                            std::size_t count);

/* Of the last failure: "runtime", "type", "value", "key", "index", "attribute", "zero_division", "overflow", "import"
 * or "os". */
VLX_API const char* vlx_error_kind();
VLX_API const char* vlx_error_text();
