"""Messages about edits, sent inside the edit."""

import itertools

from .. import host
from ._nodes import MObject, MObjectArray

__all__ = ["MDGMessage", "MEventMessage", "MMessage"]

_identifiers = itertools.count(1)


class _Subscriber(object):
    """Who gets the messages about one kind of event."""

    def __init__(self, event, tell):
        self.event = event
        self.tell = tell
        self.identifier = next(_identifiers)


def _is_kind_of(type_name, wanted):
    return wanted in (type_name, "dependNode") or (wanted == "animCurve" and type_name.startswith(wanted))


def subscribe(event, tell, function):
    if not callable(function):
        raise TypeError("parameter must be callable, got %r" % (function,))
    subscriber = _Subscriber(event, tell)
    host.subscribers.append(subscriber)
    return subscriber.identifier


def subscribe_to_curves(event, function, clientData):
    """The function gets the curves that were edited, in a list."""
    return subscribe(event, lambda node, _: function(MObjectArray([MObject(node)]), clientData), function)


class MMessage(object):
    @staticmethod
    def removeCallback(identifier):
        for subscriber in host.subscribers:
            if subscriber.identifier == identifier:
                host.subscribers.remove(subscriber)
                return
        raise RuntimeError("(kInvalidParameter): Callback ID is not valid")

    @staticmethod
    def removeCallbacks(identifiers):
        for identifier in identifiers:
            MMessage.removeCallback(identifier)


class MDGMessage(MMessage):
    @staticmethod
    def addNodeRemovedCallback(function, nodeType="dependNode", clientData=None):
        """The function gets the node, which still exists, and the client's data."""

        def tell(node, type_name):
            if _is_kind_of(type_name, nodeType):
                function(MObject(node), clientData)

        return subscribe(host.NODE_REMOVED, tell, function)


class MEventMessage(MMessage):
    _EVENTS = ("Undo", "Redo")

    @staticmethod
    def getEventNames():
        return MEventMessage._EVENTS

    @staticmethod
    def addEventCallback(eventName, function, clientData=None):
        """The function gets the client's data, after the undo or redo."""
        if eventName not in MEventMessage._EVENTS:
            raise RuntimeError("(kInvalidParameter): the event '%s' is not covered by this host" % eventName)
        return subscribe(eventName, lambda: function(clientData), function)
