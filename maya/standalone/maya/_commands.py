"""What the commands have in common: flags with two names, names of objects, errors for what is not covered."""

import functools
import inspect

from . import host


def command(**short_names):
    """Makes a command from a function whose keywords are the long names of the flags. Each flag can then also be given
    by its short name. A flag that the function does not have is a TypeError."""

    def decorate(function):
        known = {
            name
            for name, parameter in inspect.signature(function).parameters.items()
            if parameter.kind is inspect.Parameter.KEYWORD_ONLY
        }
        long_names = {short: name for name, short in short_names.items()}
        assert set(short_names) <= known, function.__name__

        @functools.wraps(function)
        def call(*arguments, **flags):
            named = {}
            for flag, value in flags.items():
                name = long_names.get(flag, flag)
                if name not in known:
                    raise TypeError("Invalid flag '%s': not covered by %s of this host" % (flag, function.__name__))
                if name in named:
                    raise TypeError("Flag '%s' of %s is given twice" % (name, function.__name__))
                named[name] = value
            return function(*arguments, **named)

        return call

    return decorate


def undoable(function):
    """A command that is recorded in the undo queue, unless it is a query."""

    @functools.wraps(function)
    def call(*arguments, **flags):
        if flags.get("query") or flags.get("q"):
            return function(*arguments, **flags)
        with host.command(function.__name__):
            return function(*arguments, **flags)

    return call


def not_covered(what):
    return RuntimeError("%s: not covered by this host" % what)


def flat(arguments):
    """The names in the arguments of a command, which may be names or lists of names."""
    names = []
    for argument in arguments:
        if isinstance(argument, str):
            names.append(argument)
        elif isinstance(argument, (list, tuple)):
            names.extend(flat(argument))
        else:
            raise TypeError("Invalid arguments: expected the name of an object, got %r" % (argument,))
    return names


def node_named(name):
    return host.call("named", name)


def nodes_named(arguments):
    """The nodes with these names and patterns, each once. If there is none for a name, that is a ValueError."""
    nodes = []
    for name in flat(arguments):
        found = host.call("match", name) if "*" in name or "?" in name else [node_named(name)]
        if not found:
            raise ValueError("No object matches name: %s" % name)
        nodes.extend(node for node in found if node not in nodes)
    return nodes


def nodes_or_selection(arguments):
    return nodes_named(arguments) if arguments else host.call("selection")


def unique_name(node):
    return host.call("unique_name", node)


def split_plug(path):
    """(node, attribute) of "object.attribute"."""
    name, dot, attribute = path.partition(".")
    if not attribute:
        raise RuntimeError("No attribute was specified.")
    try:
        return node_named(name), attribute
    except ValueError as error:
        raise ValueError(str(error).replace(": " + name, ": " + path))


def missing(path):
    return ValueError("No object matches name: %s" % path)


def existing_plug(path):
    """As split_plug, but the attribute must exist."""
    node, attribute = split_plug(path)
    if not (host.call("has_attribute", node, attribute) or host.call("has_vectors", node, attribute)):
        raise missing(path)
    return node, attribute
