#include "cli/app.h"

int main(int argc, char** argv) { return vantorelix::cli::run(argc, argv); }
