// The clock, which the engine reads after every sample: an import of one call, as WASI's own costs several times a
// sample.
#include <cmath>
#include <ctime>

// Milliseconds since 1970, with fractions; never back.
extern "C" __attribute__((import_module("vantorelix"), import_name("now"))) double vantorelix_now();

// In place of the C library's, for every clock.
extern "C" int clock_gettime(clockid_t, timespec* time) {
  const double milliseconds = vantorelix_now(), seconds = std::floor(milliseconds / 1000.0);
  time->tv_sec = static_cast<std::time_t>(seconds);
  time->tv_nsec = static_cast<long>((milliseconds - 1000.0 * seconds) * 1e6);
  return 0;
}
