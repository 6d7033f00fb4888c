"""The house rules, one module each: `problems(root, options)` returns a list of messages, empty if there is no problem.

Every message is "file:line: what is wrong; what to do instead".
"""
