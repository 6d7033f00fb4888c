// Option variables, panels, plug-ins, and what the session is doing.
#include "maya/standalone/calls.h"

namespace vantorelix::standalone {

using host::Value;

namespace {

// The scene file's warnings, each with its count.
Value warnings(Session& session, const Arguments&) {
  std::vector<std::string> texts;
  for (const Warning& warning : session.scene().warnings.all())
    texts.push_back(warning.count == 1 ? warning.kind
                                       : warning.kind + " (" + std::to_string(warning.count) + " times)");
  return list_of(texts);
}

Value file_activity(Session& session, const Arguments&) {
  host::ObjectModel& om = session.host().om();
  return Value::list({om.isReadingFile(), om.isWritingFile(), om.isOpeningFile(), om.isNewingFile()});
}

}  // namespace

const Calls& host_calls() {
  static const Calls calls = {
      {"option_exists",
       [](Session& s, const Arguments& a) { return Value(s.host().cmds().optionVar_exists(a.text(0))); }},
      {"option", [](Session& s, const Arguments& a) { return s.host().cmds().optionVar_query(a.text(0)); }},
      {"set_option",
       [](Session& s, const Arguments& a) { return s.host().set_option(a.text(0), a.value(1)), Value(); }},
      {"append_option",
       [](Session& s, const Arguments& a) {
         return s.host().cmds().optionVar_append_string(a.text(0), a.text(1)), Value();
       }},

      {"model_panels", [](Session& s, const Arguments&) { return list_of(s.host().cmds().getPanel_model()); }},
      {"add_model_panel", [](Session& s, const Arguments& a) { return s.host().add_model_panel(a.text(0)), Value(); }},
      {"panel_flag",
       [](Session& s, const Arguments& a) { return Value(s.host().cmds().modelEditor_query(a.text(0), a.text(1))); }},
      {"set_panel_flag",
       [](Session& s, const Arguments& a) {
         s.host().cmds().modelEditor_query(a.text(0), a.text(1));  // an error for what it has not
         return s.host().set_panel_flag(a.text(0), a.text(1), a.flag(2)), Value();
       }},

      {"batch", [](Session& s, const Arguments&) { return Value(s.host().cmds().about_batch()); }},
      {"version", [](Session& s, const Arguments&) { return Value(s.host().cmds().about_version()); }},
      {"user_app_dir", [](Session& s, const Arguments&) { return Value(s.host().cmds().internalVar_userAppDir()); }},
      {"loaded_plugins", [](Session& s, const Arguments&) { return list_of(s.host().loaded_plugins()); }},
      {"load_plugin", [](Session& s, const Arguments& a) { return s.host().cmds().loadPlugin(a.text(0)), Value(); }},

      {"make_new", [](Session& s, const Arguments&) { return s.make_new(), Value(); }},
      {"warnings", warnings},
      {"is_playing", [](Session& s, const Arguments&) { return Value(s.host().oma().isPlaying()); }},
      {"set_playing", [](Session& s, const Arguments& a) { return s.host().set_playing(a.flag(0)), Value(); }},
      {"file_activity", file_activity},
      {"set_file_activity",
       [](Session& s, const Arguments& a) {
         return s.host().set_file_activity(static_cast<Host::FileActivity>(a.integer(0))), Value();
       }},
  };
  return calls;
}

}  // namespace vantorelix::standalone
