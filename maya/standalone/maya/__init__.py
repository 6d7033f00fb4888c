"""Maya's Python for plain interpreters: the part of `maya` that motion trails need, over the standalone host.

Names, flags, results and kinds of errors are those of Maya's own documentation for whatever is here. What is not here
says so: an unknown command is an AttributeError, an unknown flag a TypeError, and both texts say "not covered".
"""
