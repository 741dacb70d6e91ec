"""Parameters as the command's options: one reader, and one set of rules, serves both."""

from __future__ import annotations

import os
from collections.abc import Iterable, Mapping
from numbers import Integral, Real
from typing import Union

Option = Union[None, bool, int, float, str, os.PathLike, Iterable[Union[int, float, str]]]


def option_name(parameter: str) -> str:
    """The option of a parameter.

    >>> option_name("min_plddt")
    '--min-plddt'
    """
    return "--" + parameter.replace("_", "-")


def text_of(value: object) -> str:
    """A value as the command line has it; numbers in as many digits as they take to be read back."""
    if isinstance(value, (str, os.PathLike)):
        return os.fsdecode(value)
    if isinstance(value, Integral):
        return str(int(value))
    if isinstance(value, Real):
        return repr(float(value))
    if isinstance(value, Iterable):
        return ",".join(text_of(entry) for entry in value)
    raise TypeError(f"neither a number nor a text: {value!r}")


def options(parameters: Mapping[str, Option], repeated: Mapping[str, list[str]] = {}) -> dict[str, list[str]]:
    """The options that were given, each with its values. None and False leave an option out, True is a flag; each text of
    a repeated one is a value of its own.

    >>> options({"resolution": 8, "chain": ["A", "B"], "invert": False, "near": True, "json": None}, {"fixed": ["a", "b"]})
    {'--resolution': ['8'], '--chain': ['A,B'], '--near': [], '--fixed': ['a', 'b']}
    """
    texts: dict[str, list[str]] = {}
    for parameter, value in parameters.items():
        if value is None or value is False:
            continue
        texts[option_name(parameter)] = [] if value is True else [text_of(value)]
    texts.update((option_name(parameter), values) for parameter, values in repeated.items() if values)
    return texts
