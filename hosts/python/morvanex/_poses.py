"""Where a model stands."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any

import numpy
from numpy.typing import ArrayLike, NDArray


@dataclass(frozen=True)
class Pose:
    """The rigid motion that brings a model from its input coordinates to a place: x' = matrix @ x + translation.

    Attributes:
        quaternion: the rotation as w, x, y, z.
        translation: x, y, z in Å, applied after the rotation.

    >>> half_turn = Pose(quaternion=(0.0, 0.0, 0.0, 1.0), translation=(10.0, 0.0, 0.0))
    >>> half_turn.apply([[1.0, 2.0, 3.0]])
    array([[ 9., -2.,  3.]])
    """

    quaternion: tuple[float, float, float, float]
    translation: tuple[float, float, float]

    @property
    def matrix(self) -> NDArray[numpy.float64]:
        """The rotation as a 3 x 3 matrix that acts on columns.

        >>> Pose((1.0, 0.0, 0.0, 0.0), (0.0, 0.0, 0.0)).matrix
        array([[1., 0., 0.],
               [0., 1., 0.],
               [0., 0., 1.]])
        """
        w, x, y, z = numpy.array(self.quaternion) / numpy.linalg.norm(self.quaternion)
        return numpy.array(
            [
                [1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)],
                [2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)],
                [2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)],
            ]
        )

    @property
    def affine(self) -> NDArray[numpy.float64]:
        """Rotation and translation as one 4 x 4 matrix.

        >>> Pose((1.0, 0.0, 0.0, 0.0), (5.0, 6.0, 7.0)).affine[:3, 3]
        array([5., 6., 7.])
        """
        affine = numpy.eye(4)
        affine[:3, :3] = self.matrix
        affine[:3, 3] = self.translation
        return affine

    def apply(self, coordinates: ArrayLike) -> NDArray[numpy.float64]:
        """Coordinates in Å, an array of shape (..., 3), moved.

        >>> Pose((1.0, 0.0, 0.0, 0.0), (0.0, 0.0, 5.0)).apply([1.0, 2.0, 3.0])
        array([1., 2., 8.])
        """
        return numpy.asarray(coordinates, dtype=float) @ self.matrix.T + self.translation

    @classmethod
    def from_json(cls, entry: dict[str, Any]) -> "Pose":
        """The pose of an entry of the command's JSON file.

        >>> Pose.from_json({"rotation": [1, 0, 0, 0], "translation": [0, 0, 5]}).translation
        (0, 0, 5)
        """
        w, x, y, z = entry["rotation"]
        a, b, c = entry["translation"]
        return cls((w, x, y, z), (a, b, c))
