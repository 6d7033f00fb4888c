#include "standalone/formats/maya/maya_units.h"

#include <array>

#include "base/mathematics/mathematics.h"
#include "base/number.h"
#include "base/number_text.h"

namespace vantorelix::standalone {
namespace {

struct LinearName {
  std::string_view symbol;
  std::string_view full;
  double centimetres;
};
constexpr std::array<LinearName, 8> kLinear = {{{"mm", "millimeter", 0.1},
                                                {"cm", "centimeter", 1.0},
                                                {"m", "meter", 100.0},
                                                {"km", "kilometer", 100000.0},
                                                {"in", "inch", 2.54},
                                                {"ft", "foot", 30.48},
                                                {"yd", "yard", 91.44},
                                                {"mi", "mile", 160934.4}}};

struct RateName {
  std::string_view name;
  double rate;
};
constexpr std::array<RateName, 18> kRates = {{{"game", 15.0},
                                              {"film", 24.0},
                                              {"pal", 25.0},
                                              {"ntsc", 30.0},
                                              {"show", 48.0},
                                              {"palf", 50.0},
                                              {"ntscf", 60.0},
                                              {"millisec", 1000.0},
                                              {"millisecond", 1000.0},
                                              {"sec", 1.0},
                                              {"second", 1.0},
                                              {"min", 1.0 / 60.0},
                                              {"minute", 1.0 / 60.0},
                                              {"hour", 1.0 / 3600.0},
                                              {"23.976fps", 24000.0 / 1001.0},
                                              {"29.97fps", 30000.0 / 1001.0},
                                              {"47.952fps", 48000.0 / 1001.0},
                                              {"59.94fps", 60000.0 / 1001.0}}};

}  // namespace

std::optional<LinearUnit> linear_unit_named(std::string_view name) {
  for (const LinearName& unit : kLinear) {
    if (name == unit.symbol || name == unit.full) return LinearUnit{std::string(unit.symbol), unit.centimetres};
  }
  return std::nullopt;
}

std::optional<double> angular_unit_named(std::string_view name) {
  if (name == "deg" || name == "degree") return base::kDegree;
  if (name == "rad" || name == "radian") return 1.0;
  if (name == "min" || name == "minute") return base::kDegree / 60.0;
  if (name == "sec" || name == "second") return base::kDegree / 3600.0;
  return std::nullopt;
}

std::optional<double> frame_rate_named(std::string_view name) {
  for (const RateName& unit : kRates) {
    if (name == unit.name) return unit.rate;
  }
  if (name == "29.97df") return 30000.0 / 1001.0;
  if (!name.ends_with("fps")) return std::nullopt;
  const char* const last = name.data() + name.size() - 3;
  double rate = 0.0;
  const bool complete = parse_number(name.data(), last, rate) == last && last != name.data();
  if (!complete || !(rate >= 1e-3 && rate <= 1e6)) return std::nullopt;
  return rate;
}

std::string frame_rate_name(double rate) {
  for (const RateName& unit : kRates)
    if (unit.rate == rate) return std::string(unit.name);
  return number_text(rate) + "fps";
}

}  // namespace vantorelix::standalone
