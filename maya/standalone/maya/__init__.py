"""Maya's Python for plain interpreters: the part of `maya` that motion trails need, over the standalone host.

Names, flags, results and types of errors are those of Maya's documentation. A command that is not here is an
AttributeError, and a flag that is not here a TypeError; both messages say "not covered".
"""
