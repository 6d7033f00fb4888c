// The undo queue.
#include "maya/standalone/calls.h"

namespace vantorelix::standalone {

using host::Value;

namespace {

// [on, length, infinite, entries to undo, to redo, name of the next to undo, to redo, name of the open chunk]
Value state(Session& session, const Arguments&) {
  const UndoQueue& queue = session.undo_queue();
  const auto number = [](std::size_t n) { return static_cast<std::int64_t>(n); };
  return Value::list({queue.on(), number(queue.length()), queue.infinite(), number(queue.undo_count()),
                      number(queue.redo_count()), queue.undo_name(), queue.redo_name(), queue.chunk_name()});
}

Value set_length(Session& session, const Arguments& a) {
  session.undo_queue().set_length(static_cast<std::size_t>(a.integer(0)));
  return {};
}

}  // namespace

const Calls& undo_calls() {
  static const Calls calls = {
      {"undo", [](Session& s, const Arguments&) { return s.undo_queue().undo(), Value(); }},
      {"redo", [](Session& s, const Arguments&) { return s.undo_queue().redo(), Value(); }},
      {"flush_undo", [](Session& s, const Arguments&) { return s.undo_queue().clear(), Value(); }},
      {"undo_state", state},
      {"undo_names", [](Session& s, const Arguments&) { return list_of(s.undo_queue().names()); }},
      {"undo_keeps", [](Session& s, const Arguments& a) { return Value(s.undo_queue().keeps(a.node(0))); }},
      {"set_undo", [](Session& s, const Arguments& a) { return s.undo_queue().set_on(a.flag(0)), Value(); }},
      {"set_undo_length", set_length},
      {"set_undo_infinite",
       [](Session& s, const Arguments& a) { return s.undo_queue().set_infinite(a.flag(0)), Value(); }},
      {"open_undo_chunk",
       [](Session& s, const Arguments& a) { return s.undo_queue().open_chunk(a.has(0) ? a.text(0) : ""), Value(); }},
      {"close_undo_chunk", [](Session& s, const Arguments&) { return s.undo_queue().close_chunk(), Value(); }},
  };
  return calls;
}

}  // namespace vantorelix::standalone
