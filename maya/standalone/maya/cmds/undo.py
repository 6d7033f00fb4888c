"""The undo queue. It records the commands that change nodes, attributes, connections, keys, namespaces or the
selection. It does not record calls of the API, queries, the current time, or anything about the interface and the
application."""

from .. import host
from .._commands import command

__all__ = ["flushUndo", "redo", "undo", "undoInfo"]


def _answer(**asked):
    """The answer to a query; without any flag, the number of entries that can be undone."""
    on, length, infinite, undo_count, redo_count, undo_name, redo_name, chunk_name = host.call("undo_state")
    answers = {
        "state": on,
        "stateWithoutFlush": on,
        "length": length,
        "infinity": infinite,
        "undoName": undo_name,
        "redoName": redo_name,
        "undoQueueEmpty": undo_count == 0,
        "redoQueueEmpty": redo_count == 0,
        "chunkName": chunk_name,
    }
    wanted = [name for name in asked if asked[name]]
    return answers[wanted[0]] if wanted else undo_count


def _switch(on):
    host.call("set_undo", bool(on))


@command(
    query="q",
    state="st",
    stateWithoutFlush="swf",
    openChunk="ock",
    closeChunk="cck",
    chunkName="cn",
    length="l",
    undoName="un",
    redoName="rn",
    undoQueueEmpty="uqe",
    redoQueueEmpty="rqe",
    printQueue="pq",
)
def undoInfo(
    *,
    query=False,
    state=None,
    stateWithoutFlush=None,
    openChunk=False,
    closeChunk=False,
    chunkName=None,
    length=None,
    infinity=None,
    undoName=False,
    redoName=False,
    undoQueueEmpty=False,
    redoQueueEmpty=False,
    printQueue=False
):
    """A query without any other flag returns the number of entries that can be undone."""
    if query and printQueue:
        print("\n".join(host.call("undo_names")))
        return None
    if query:
        return _answer(
            state=state,
            stateWithoutFlush=stateWithoutFlush,
            length=length,
            infinity=infinity,
            undoName=undoName,
            redoName=redoName,
            undoQueueEmpty=undoQueueEmpty,
            redoQueueEmpty=redoQueueEmpty,
            chunkName=chunkName,
        )
    if length is not None:
        if length < 0:
            raise RuntimeError("undoInfo: the length %r is below 0; give 0 or more." % (length,))
        host.call("set_undo_length", length)
    if infinity is not None:
        host.call("set_undo_infinite", bool(infinity))
    if state is not None:
        _switch(state)
        if not state:
            host.call("flush_undo")
    if stateWithoutFlush is not None:
        _switch(stateWithoutFlush)
    if openChunk:
        host.call("open_undo_chunk", chunkName or "")
    if closeChunk:
        host.call("close_undo_chunk")


def undo():
    _move("undo", "Undo")


def redo():
    _move("redo", "Redo")


def _move(call, event):
    host.undoing = call
    try:
        host.call(call)
    finally:
        host.undoing = ""
    host.tell(event)


def flushUndo():
    """Empties the queue, so that nothing before can be undone."""
    host.call("flush_undo")
