"""The second Python API, as far as motion trails need it."""
