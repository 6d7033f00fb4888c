"""A job for render farms, as an Open Job Description template.

Its paths are texts and not of the type PATH: the list names scenes by their absolute paths, so every machine of the farm
has to have them at the same place anyway.
"""

from __future__ import annotations

import json
import os
from typing import Any, Dict, List, Sequence

import yaml

from .shot import Settings, Shot, UsageError
from .store import Store, write_table, write_text
from .tables import list_table

LIST = "list.parquet"

_CHUNK_SECONDS = 60


def write(path: str, shots: Sequence[Shot], settings: Settings, store: Store, chunk: int) -> None:
    """Writes the template, and the list that it refers to into the folder of results. chunk: shots a task. Raises
    WriteError and UsageError."""
    listed = os.path.join(store.folder, LIST)
    store.replace(listed, lambda temporary: write_table(list_table(shots), temporary))
    text = yaml.safe_dump(template(listed, len(shots), settings, store.folder, chunk), sort_keys=False, width=110)
    write_text(path, text)


def template(listed: str, count: int, settings: Settings, folder: str, chunk: int) -> Dict[str, Any]:
    """The job: a step whose tasks each do some shots of the list, by their index, then a step that writes the report."""
    options = option_words(settings)
    return {
        "specificationVersion": "jobtemplate-2023-09",
        "extensions": ["TASK_CHUNKING"],
        "name": "vantorelix-shots",
        "description": "Trails and measures of %d shots" % count,
        "parameterDefinitions": [
            {"name": "List", "type": "STRING", "default": listed, "description": "The list of shots"},
            {"name": "Out", "type": "STRING", "default": folder, "description": "The folder of results"},
            {"name": "Command", "type": "STRING", "default": "vantorelix-shots",
             "description": "The command, by its name or path"},
        ],
        "steps": [
            {
                "name": "Shots",
                "parameterSpace": {"taskParameterDefinitions": [
                    {"name": "Index", "type": "CHUNK[INT]", "range": "0-%d" % (count - 1) if count > 1 else "0",
                     "chunks": {"defaultTaskCount": chunk, "targetRuntimeSeconds": _CHUNK_SECONDS,
                                "rangeConstraint": "CONTIGUOUS"}},
                ]},
                "script": _script(["--only", "{{Task.Param.Index}}"] + options),
            },
            {"name": "Report", "dependencies": [{"dependsOn": "Shots"}], "script": _script(["--report"] + options)},
        ],
    }


def _script(words: List[str]) -> Dict[str, Any]:
    common = ["{{Param.List}}", "--out", "{{Param.Out}}"]
    return {"actions": {"onRun": {"command": "{{Param.Command}}", "args": common + words}}}


def option_words(settings: Settings) -> List[str]:
    """The settings as words of a command line."""
    found: List[str] = []
    for name in ("select", "exclude"):
        found += ["--%s=%s" % (name, _checked(pattern)) for pattern in getattr(settings, name)]
    found += ["--ignore-case"] * settings.ignore_case + ["--all"] * settings.all
    for name in ("samples_per_frame", "fps", "axis", "unit"):
        value = getattr(settings, name)
        found += ["--%s=%s" % (name.replace("_", "-"), value)] if value is not None else []
    return found


def _checked(pattern: str) -> str:
    if "{{" in pattern:
        raise UsageError("'%s': '{{' has a meaning of its own in a job; write the pattern with single braces, or into the "
                         "column 'select' of a table" % pattern)
    return pattern
