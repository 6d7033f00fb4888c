#include "cli/app.h"
#include "cli/terminal/streams.h"

int main(int argc, char** argv) {
  vantorelix::cli::prepare_streams();
  return vantorelix::cli::run(argc, argv);
}
