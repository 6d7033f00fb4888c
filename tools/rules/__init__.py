"""The rules of this house, one module each: `problems(root, options)` returns a list of texts, empty when all is well.

Every text is "file:line: what is wrong; what to do instead".
"""
