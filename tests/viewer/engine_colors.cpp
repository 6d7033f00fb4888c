// The engine's colours, for tests that compare the page's with them. Reads one JSON object from standard input,
//
//   {"ramp": [t ...], "cases": [{"mode": 0|2|3, "n": , "start": , "step": , "keys": [frame ...], "current": frame}
//   ...]}
//
// and writes {"ramp": [[r, g, b] ...], "cases": [[[r, g, b] ...] ...]}. The modes are those whose colours do not depend
// on positions: 0 standard, 2 flow, 3 beats.
#include <cstdint>
#include <iostream>
#include <nlohmann/json.hpp>
#include <vector>

#include "engine/colour/colour.h"
#include "engine/state/state.h"
#include "standalone/host/host.h"

namespace vantorelix {
namespace {

using nlohmann::json;

json triples(const std::vector<Colour>& colors) {
  json list = json::array();
  for (const Colour& color : colors) list.push_back({color.x, color.y, color.z});
  return list;
}

std::vector<Colour> colors_of(const json& wanted, standalone::Scene& scene) {
  const host::Value n(wanted.at("n").get<std::int64_t>());
  const double start = wanted.at("start"), step = wanted.at("step");
  scene.settings.set_current_time(wanted.at("current"));
  switch (wanted.at("mode").get<int>()) {
    case 0:
      return compute_standard_colors(n);
    case 2:
      return compute_temperature_colors(n, start, step);
    case 3:
      return compute_beats_colors(n, start, step, wanted.at("keys"));
    default:
      throw std::invalid_argument("a mode is 0, 2 or 3");
  }
}

json answer(const json& question) {
  standalone::Host host(standalone::Scene{});
  _initialise({&host.cmds(), &host.om(), &host.oma(), &host.interpreter()});
  std::vector<Colour> ramp;
  for (const json& t : question.at("ramp")) ramp.push_back(_color_ramp(t));
  json cases = json::array();
  for (const json& wanted : question.at("cases")) cases.push_back(triples(colors_of(wanted, host.scene())));
  return {{"ramp", triples(ramp)}, {"cases", cases}};
}

}  // namespace
}  // namespace vantorelix

int main() {
  try {
    std::cout << vantorelix::answer(nlohmann::json::parse(std::cin)) << '\n';
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "engine_colors: " << error.what() << '\n';
    return 1;
  }
}
