#include "tests/support/trail_scene.h"

namespace vantorelix::support {

namespace {

std::string viz(const std::string& name) { return "vlx_" + name + "_viz"; }
std::string shape_path(const std::string& name) { return "|vantorelixs_grp|" + viz(name) + "|" + viz(name) + "Shape"; }
std::string shapes_of(const std::string& name) {
  return "cmds.listRelatives('" + viz(name) + "', s=True, fullPath=True)";
}

}  // namespace

std::shared_ptr<Settings> add_trail(FakeHost& fake, const std::string& name, const host::Value& samples_per_frame) {
  fake.add("|" + name);
  fake.add(shape_path(name), "vantorelix");
  auto settings = std::make_shared<Settings>();
  settings->set("source", "|" + name);
  settings->set("samples_per_frame", samples_per_frame);
  settings->set("ref", {});
  _REGISTRY.set(viz(name), settings);
  return settings;
}

FakeHost::Node& viz_shape(FakeHost& fake, const std::string& name) { return fake.node(shape_path(name)); }

Vectors pushed(FakeHost& fake, const std::string& name, const std::string& attribute) {
  const auto& arrays = viz_shape(fake, name).arrays;
  const auto found = arrays.find(attribute);
  return found == arrays.end() ? nullptr : found->second;
}

Lines together(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Lines fast_sampler_lines(const std::string& name) {
  return {"om.findPlug('|" + name + "', 'worldMatrix')",
          "plug.elementByLogicalIndex(0)",
          "om.MTime.uiUnit()",
          "cmds.currentTime(q=True)",
          "plug.translation_at(1.0)",
          "cmds.getAttr('|" + name + ".worldMatrix[0]', time=1.0)"};
}

Lines timed_samples(std::initializer_list<const char*> frames) {
  Lines lines;
  for (const char* frame : frames) {
    lines.push_back("plug.translation_at(" + std::string(frame) + ")");
    lines.push_back("time.time()");
  }
  return lines;
}

Lines push_lines(const std::string& name, int n, int k) {
  Lines lines = {shapes_of(name)};
  const auto array = [&](const std::string& attribute, int size) {
    const std::string count = "(<" + std::to_string(size) + ">)";
    lines.push_back("om.findPlug('" + shape_path(name) + "', '" + attribute + "')");
    lines.push_back("om.MVectorArray" + count);
    lines.push_back("plug.setMObject" + count);
  };
  array("points", n);
  array("colors", n);
  array("keyPoints", k);
  array("keyColors", k);
  array("keyTimes", k);
  return lines;
}

Lines frame_attr_lines(const std::string& name, const std::string& start, const std::string& step) {
  return {shapes_of(name), "cmds.setAttr('" + shape_path(name) + ".startFrame', " + start + ")",
          "cmds.setAttr('" + shape_path(name) + ".frameStep', " + step + ")"};
}

}  // namespace vantorelix::support
