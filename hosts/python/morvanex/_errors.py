"""What goes wrong."""


class Error(RuntimeError):
    """The work failed; the message is the one that the command prints.

    Attributes:
        result: what was found all the same, where there is anything; else None.
    """

    result: object = None


class FileError(Error):
    """A file, or an object that stands for one, cannot be read, used or written: "FILE: PLACE: PROBLEM"."""


class ParameterError(Error, ValueError):
    """A parameter has a value that makes no sense; the message calls it by the name of the command's option."""


class MorvanexWarning(UserWarning):
    """Something was left out, or read differently from what a file says; the work went on."""
