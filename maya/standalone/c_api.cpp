#include "maya/standalone/c_api.h"

#include <algorithm>
#include <memory>
#include <string>

#include "host/error.h"
#include "maya/standalone/calls.h"
#include "maya/standalone/json_value.h"

namespace sa = vantorelix::standalone;
namespace host = vantorelix::host;

struct VlxSession {
  explicit VlxSession(sa::HostOptions options) : session(std::move(options)) {}

  sa::Session session;
  std::string result;
  vantorelix::Vectors vectors;  // keeps what was handed out last
};

namespace {

std::string error_kind;
std::string error_text;

const char* name_of(host::ErrorKind kind) {
  static constexpr const char* kNames[] = {"runtime",   "type",          "value",    "key",    "index",
                                           "attribute", "zero_division", "overflow", "import", "os"};
  return kNames[static_cast<std::size_t>(kind)];
}

// No exception may leave a C function.
template <class Work>
int guarded(Work work) {
  try {
    work();
    return 0;
  } catch (const host::Error& error) {
    error_kind = name_of(error.kind());
    error_text = error.what();
  } catch (const std::exception& error) {
    error_kind = "runtime";
    error_text = error.what();
  }
  return 1;
}

sa::HostOptions options_of(const char* json) {
  const host::Value given = sa::value_of_json(json);
  if (!given.as_list()) throw host::Error("The options of a host must be a list.", host::ErrorKind::type);
  const sa::Arguments arguments(**given.as_list());
  sa::HostOptions options;
  options.batch = arguments.flag(0);
  options.plugin_loaded = arguments.flag(1);
  if (arguments.has(2)) options.preferences = arguments.text(2);
  if (arguments.has(3)) options.user_app_dir = arguments.text(3);
  return options;
}

static_assert(sizeof(vantorelix::Vector) == 3 * sizeof(double), "triples lie in memory as doubles do");

}  // namespace

int vlx_start(const char* options, VlxSession** session) {
  return guarded([&] { *session = new VlxSession(options_of(options)); });
}

int vlx_close(VlxSession* session) {
  return guarded([&] { delete session; });
}

int vlx_listen(VlxSession* session, VlxListener listener) {
  return guarded([&] { session->session.listen(listener); });
}

int vlx_open(VlxSession* session, const char* file) {
  return guarded([&] { session->session.open(file); });
}

int vlx_call(VlxSession* session, const char* name, const char* arguments, const char** result) {
  return guarded([&] {
    session->result = sa::json_of(sa::call(session->session, name, sa::value_of_json(arguments)));
    *result = session->result.c_str();
  });
}

int vlx_begin(VlxSession* session, const char* name) {
  return guarded([&] { session->session.undo_queue().begin(name); });
}

int vlx_end(VlxSession* session, int succeeded) {
  return guarded([&] { session->session.undo_queue().end(succeeded != 0); });
}

int vlx_exists(VlxSession* session, std::uint32_t node) { return session->session.scene().nodes.exists(node) ? 1 : 0; }

int vlx_matrix(VlxSession* session, std::uint32_t node, double frame, int world, double* matrix) {
  return guarded([&] {
    const sa::Scene& scene = session->session.scene();
    const vantorelix::Affine affine =
        world ? scene.evaluation.world_matrix(node, frame) : scene.evaluation.local_matrix(node, frame);
    for (std::size_t row = 0; row < 4; ++row) {
      std::copy(affine.m[row].begin(), affine.m[row].end(), matrix + 4 * row);
      matrix[4 * row + 3] = row == 3 ? 1.0 : 0.0;
    }
  });
}

int vlx_vectors(VlxSession* session, std::uint32_t node, const char* attribute, const double** xyz,
                std::size_t* count) {
  return guarded([&] {
    session->vectors = session->session.scene().attributes.vectors(node, attribute);
    const bool there = session->vectors && !session->vectors->empty();
    *xyz = there ? &session->vectors->front().x : nullptr;
    *count = there ? session->vectors->size() : 0;
  });
}

int vlx_set_vectors(VlxSession* session, std::uint32_t node, const char* attribute, const double* xyz,
                    std::size_t count) {
  return guarded([&] {
    auto values = std::make_shared<std::vector<vantorelix::Vector>>(count);
    for (std::size_t i = 0; i < count; ++i) (*values)[i] = {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]};
    session->session.scene().attributes.set_vectors(node, attribute, std::move(values));
  });
}

const char* vlx_error_kind() { return error_kind.c_str(); }
const char* vlx_error_text() { return error_text.c_str(); }
