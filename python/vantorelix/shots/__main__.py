"""`python -m vantorelix.shots` is `vantorelix-shots`."""

import sys

from .command import main

if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
