"""Files of models in folders, archives and lists."""

from __future__ import annotations

import csv
import os
import pathlib
import tarfile
import zipfile
from collections.abc import Iterator
from dataclasses import dataclass
from typing import Union

from .._errors import FileError

ENDINGS = (".pdb", ".ent", ".cif", ".mmcif")
TAR_ENDINGS = (".tar", ".tar.gz", ".tgz", ".tar.bz2", ".tar.xz")
#: Larger than any model that the reader takes.
MAX_BYTES = 512 << 20


@dataclass(frozen=True)
class ModelFile:
    """One file of a model.

    Attributes:
        name: within the folder, the archive or the list; no two of a run have the same.
        source: the file, or the archive that holds it.
        member: its name in the archive; empty for a file.
    """

    name: str
    source: str
    member: str = ""

    def read(self) -> bytes:
        """The file's bytes, as they are stored.

        Raises:
            FileError: where it is no longer there, or cannot be read.
        """
        try:
            if not self.member:
                return pathlib.Path(self.source).read_bytes()
            if zipfile.is_zipfile(self.source):
                with zipfile.ZipFile(self.source) as archive:
                    return archive.read(self.member)
            with tarfile.open(self.source) as archive:
                return _member_of(archive, self.member)
        except OSError as error:
            raise FileError(f"{self.source}: {error.strerror or error}") from error
        except (KeyError, EOFError, tarfile.TarError, zipfile.BadZipFile, RuntimeError) as error:
            raise FileError(f"{self.source}: {self.member}: {error}") from error


def _member_of(archive: tarfile.TarFile, name: str) -> bytes:
    stream = archive.extractfile(name)
    if stream is None:
        raise KeyError(f"{name} is no file")
    return stream.read()


def is_model(name: str) -> bool:
    """Whether a name is that of a structure file, compressed or not.

    >>> [is_model(name) for name in ("a.pdb", "B.CIF.gz", "a.pdb.gz", "notes.txt", ".hidden.pdb")]
    [True, True, True, False, False]
    """
    base = os.path.basename(name).lower()
    return base.removesuffix(".gz").endswith(ENDINGS) and not base.startswith(".")


def find_models(path: Union[str, "os.PathLike[str]"]) -> list[ModelFile]:
    """The models of a folder and those below it, of an archive (.tar, also compressed, or .zip), or of a list, in the
    order of their names.

    A list is a CSV file with a column "model": files, named from the list's folder on, those of an archive as
    ARCHIVE:MEMBER. Other columns are left alone.

    Raises:
        FileError: for what is none of these, holds no model, or names one twice.
    """
    path = os.fspath(path)
    if os.path.isdir(path):
        found = list(_of_folder(path))
    elif not os.path.isfile(path):
        raise FileError(f"{path}: there is no such folder, archive or list")
    elif path.lower().endswith(".csv"):
        found = list(_of_list(path))
    else:
        found = list(_of_archive(path))
    if not found:
        raise FileError(f"{path}: holds no model ({', '.join(ENDINGS)}, also with .gz)")
    names = set()
    for model in found:
        if model.name in names:
            raise FileError(f"{path}: {model.name} is named twice")
        names.add(model.name)
    return sorted(found, key=lambda model: model.name)


def _of_folder(folder: str) -> Iterator[ModelFile]:
    for root, folders, files in os.walk(folder):
        folders[:] = [name for name in folders if not name.startswith(".")]
        for name in files:
            file = os.path.join(root, name)
            if is_model(name):
                yield ModelFile(os.path.relpath(file, folder), os.path.abspath(file))


def _of_archive(file: str) -> Iterator[ModelFile]:
    source = os.path.abspath(file)
    try:
        if zipfile.is_zipfile(file):
            with zipfile.ZipFile(file) as archive:
                members = [(entry.filename, entry.file_size) for entry in archive.infolist() if not entry.is_dir()]
        else:
            with tarfile.open(file) as tar:
                members = [(entry.name, entry.size) for entry in tar if entry.isfile()]
    except (OSError, EOFError, tarfile.TarError, zipfile.BadZipFile) as error:
        raise FileError(f"{file}: is neither a folder, an archive nor a list: {error}") from error
    for name, size in members:
        if is_model(name) and size <= MAX_BYTES:
            yield ModelFile(name, source, name)


def _of_list(file: str) -> Iterator[ModelFile]:
    folder = os.path.dirname(os.path.abspath(file))
    try:
        with open(file, newline="", encoding="utf-8-sig") as lines:
            rows = csv.DictReader(lines)
            if "model" not in (rows.fieldnames or []):
                raise FileError(f"{file}: line 1: there is no column \"model\"")
            for row in rows:
                name = (row["model"] or "").strip()
                if not name:
                    raise FileError(f"{file}: line {rows.line_num}: the model is empty")
                yield _listed(folder, name)
    except (OSError, UnicodeDecodeError, csv.Error) as error:
        raise FileError(f"{file}: {error}") from error


def _listed(folder: str, name: str) -> ModelFile:
    source = os.path.join(folder, name)
    archive, colon, member = source.rpartition(":")
    if colon and not os.path.exists(source) and os.path.isfile(archive):
        return ModelFile(name, archive, member)
    return ModelFile(name, source)
