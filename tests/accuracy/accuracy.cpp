// Prints the largest error of each function of base/mathematics/mathematics.h, in units of the last place of the true
// value, over a million arguments. Fails where one is above 1. The true values are those of MPFR, a library of many
// digits.
#include <mpfr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tests/support/mathematics_arguments.h"

namespace vantorelix {
namespace {

using support::Arguments;

constexpr int kCount = 1000000;
constexpr mpfr_prec_t kDigits = 120;

class Number {
 public:
  Number() { mpfr_init2(value_, kDigits); }
  explicit Number(double value) : Number() { mpfr_set_d(value_, value, MPFR_RNDN); }
  ~Number() { mpfr_clear(value_); }
  Number(const Number&) = delete;
  Number& operator=(const Number&) = delete;
  mpfr_ptr get() { return value_; }

 private:
  mpfr_t value_;
};

using Function = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using FunctionOfTwo = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

template <Function F>
void of_one(Number& result, const Arguments& a) {
  F(result.get(), Number(a[0]).get(), MPFR_RNDN);
}

template <FunctionOfTwo F>
void of_two(Number& result, const Arguments& a) {
  F(result.get(), Number(a[0]).get(), Number(a[1]).get(), MPFR_RNDN);
}

void length_of_three(Number& result, const Arguments& a) {
  Number plane;
  mpfr_hypot(plane.get(), Number(a[0]).get(), Number(a[1]).get(), MPFR_RNDN);
  mpfr_hypot(result.get(), plane.get(), Number(a[2]).get(), MPFR_RNDN);
}

// In the order of support::kMathematics.
constexpr std::array<void (*)(Number&, const Arguments&), 9> kTrue = {
    of_one<mpfr_sin>,   of_one<mpfr_cos>, of_one<mpfr_asin>, of_one<mpfr_acos>, of_two<mpfr_atan2>,
    of_two<mpfr_hypot>, length_of_three,  of_two<mpfr_pow>,  of_one<mpfr_log>};

double error_in_ulp(double got, Number& wanted) {
  if (std::isinf(mpfr_get_d(wanted.get(), MPFR_RNDN))) return std::isinf(got) ? 0.0 : INFINITY;
  if (mpfr_zero_p(wanted.get())) return got == 0.0 ? 0.0 : INFINITY;
  const mpfr_exp_t place = std::clamp<mpfr_exp_t>(mpfr_get_exp(wanted.get()) - 53, -1074, 971);
  Number error(got);
  mpfr_sub(error.get(), error.get(), wanted.get(), MPFR_RNDN);
  mpfr_mul_2si(error.get(), error.get(), -place, MPFR_RNDN);
  return std::abs(mpfr_get_d(error.get(), MPFR_RNDN));
}

struct Worst {
  double error = 0.0;
  Arguments arguments{};
};

Worst worst_of(std::size_t which) {
  const support::MathematicsFunction& function = support::kMathematics[which];
  Worst worst;
  support::Draw draw(2);
  Number wanted;
  for (int i = 0; i < kCount; ++i) {
    const Arguments arguments = function.arguments(draw);
    kTrue[which](wanted, arguments);
    const double error = error_in_ulp(function.value(arguments), wanted);
    if (!(error <= worst.error)) worst = {error, arguments};
  }
  return worst;
}

int run() {
  bool good = true;
  for (std::size_t i = 0; i < kTrue.size(); ++i) {
    const auto [error, a] = worst_of(i);
    std::printf("%-14s %.4f ulp at (%a, %a, %a)\n", support::kMathematics[i].name, error, a[0], a[1], a[2]);
    std::fflush(stdout);
    good = good && error <= 1.0;
  }
  return good ? 0 : 1;
}

}  // namespace
}  // namespace vantorelix

int main() { return vantorelix::run(); }
