import gc
import os
import pathlib
import tracemalloc

import numpy
import pytest

import morvanex
from conftest import MAP, command


def ramp(dtype=numpy.float64):
    return numpy.arange(4 * 5 * 6).reshape(4, 5, 6).astype(dtype)


@pytest.mark.parametrize("dtype", ["?", "b", "B", "h", "H", "i", "I", "q", "Q", "e", "f", "d", "g", ">f4", ">i2"])
def test_values_of_every_type_arrive(dtype):
    values = (ramp() % 100).astype(dtype)
    density = morvanex.Map(values, voxel=1)
    assert density.values.dtype == numpy.float32
    assert numpy.array_equal(density.values, values.astype(float))


@pytest.mark.parametrize(
    "arranged",
    [
        lambda a: numpy.asfortranarray(a),
        lambda a: a[::-1, :, ::-1],
        lambda a: numpy.repeat(a, 2, axis=1)[:, ::2],
        lambda a: numpy.broadcast_to(a[:1], (4, 5, 6)),
        lambda a: numpy.lib.stride_tricks.as_strided(a, (4, 5, 6), (8, 8, 8)),
    ],
    ids=["Fortran", "reversed", "strided", "broadcast", "overlapping"],
)
def test_values_in_every_arrangement_arrive(arranged):
    values = arranged(ramp())
    assert numpy.array_equal(morvanex.Map(values, voxel=1).values, values)


def test_lists_and_read_only_arrays_are_copied():
    values = ramp(numpy.float32)
    values.flags.writeable = False
    density = morvanex.Map(values, voxel=1)
    density.values[0, 0, 0] = 7
    assert values[0, 0, 0] == 0
    assert morvanex.Map([[[1, 2]]], voxel=1).values.shape == (1, 1, 2)


@pytest.mark.parametrize("shape", [(), (5,), (5, 5), (2, 2, 2, 2)])
def test_other_dimensions_are_refused(shape):
    with pytest.raises(ValueError, match="3 dimensions"):
        morvanex.Map(numpy.zeros(shape), voxel=1)


@pytest.mark.parametrize("shape", [(0, 5, 5), (5, 0, 5), (5, 5, 0), (0, 0, 0)])
def test_empty_ones_are_refused(shape):
    with pytest.raises(ValueError, match="0 voxels along an axis; a map has 1 to 65535"):
        morvanex.Map(numpy.zeros(shape), voxel=1)


def test_huge_ones_are_refused_before_any_memory_is_taken():
    tracemalloc.start()
    with pytest.raises(ValueError, match="more than three quarters of the machine's"):
        morvanex.Map(numpy.broadcast_to(numpy.float32(1), (60000, 60000, 60000)), voxel=1)
    with pytest.raises(ValueError, match="70000 voxels along an axis"):
        morvanex.Map(numpy.broadcast_to(numpy.float32(1), (1, 1, 70000)), voxel=1)
    assert tracemalloc.get_traced_memory()[1] < 1 << 20
    tracemalloc.stop()


@pytest.mark.parametrize("values", [[[[1j]]], [[["a"]]], [[[None]]]])
def test_what_is_no_real_number_is_refused(values):
    with pytest.raises(ValueError, match="real numbers"):
        morvanex.Map(values, voxel=1)


@pytest.mark.parametrize("value", [numpy.nan, numpy.inf, 1e300])
def test_values_beyond_32_bits_are_refused(value):
    with pytest.raises(ValueError, match="1 voxels that are not finite"):
        morvanex.Map([[[1.0, value]]], voxel=1)


def test_odd_geometry_is_refused():
    for voxel in [0, -1, (1, 1, 0)]:
        with pytest.raises(ValueError, match="voxel must be above 0"):
            morvanex.Map(ramp(), voxel=voxel)
    with pytest.raises(ValueError, match="one number or three"):
        morvanex.Map(ramp(), voxel=(1, 2))
    with pytest.raises(ValueError, match="origin holds a number that is not finite"):
        morvanex.Map(ramp(), voxel=1, origin=(0, 0, numpy.nan))


def test_values_are_a_view_in_the_order_z_y_x():
    density = morvanex.Map(ramp(), voxel=(1, 2, 3), origin=(4, 5, 6))
    assert density.values.shape == (4, 5, 6)
    assert density.voxel == (1, 2, 3) and density.origin == (4, 5, 6)
    density.values[1, 2, 3] = -1
    assert density.values[1, 2, 3] == -1
    assert numpy.shares_memory(density.values, density.values)


def test_a_view_outlives_its_map():
    values = morvanex.Map(ramp(), voxel=1).values
    for _ in range(100):
        morvanex.Map(numpy.full((4, 5, 6), 9), voxel=1)
    gc.collect()
    assert numpy.array_equal(values, ramp())


def resident():
    return int(pathlib.Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def test_the_memory_of_maps_and_views_is_given_back():
    values = numpy.zeros((128, 128, 128), numpy.float32)
    for round in range(20):
        morvanex.Map(values, voxel=1).values[0, 0, 0] = 1
        if round == 1:
            before = resident()
    assert resident() - before < 3 * values.nbytes


def test_a_map_is_read_as_the_command_reads_it():
    density = morvanex.read_map(MAP)
    assert f"{density.values.shape[2]} x {density.values.shape[1]} x {density.values.shape[0]}" in command("info", MAP)
    assert density.name == MAP


def test_written_maps_are_read_back_bit_for_bit():
    density = morvanex.Map(numpy.random.default_rng(1).normal(size=(7, 8, 9)), voxel=(1.5, 2, 2.5), origin=(-3, 0, 9))
    morvanex.write_map("written.mrc", density, title="noise")
    again = morvanex.read_map("written.mrc")
    assert numpy.array_equal(again.values, density.values)
    assert (again.voxel, again.origin, again.title) == (density.voxel, density.origin, "noise")


def test_errors_of_files_are_those_of_the_command():
    pathlib.Path("short.mrc").write_bytes(pathlib.Path(MAP).read_bytes()[:2000])
    with pytest.raises(morvanex.FileError, match="short.mrc: byte 2000: the map ends too early"):
        morvanex.read_map("short.mrc")
    with pytest.raises(morvanex.FileError, match="/nonexistent/a.mrc"):
        morvanex.write_map("/nonexistent/a.mrc", morvanex.Map(ramp(), voxel=1))


def test_what_is_read_differently_is_warned_of():
    bytes = bytearray(pathlib.Path(MAP).read_bytes())
    bytes[1024:1028] = numpy.float32(numpy.nan).tobytes()
    pathlib.Path("nan.mrc").write_bytes(bytes)
    with pytest.warns(morvanex.MorvanexWarning, match="nan.mrc: 1 of 50388 voxels are not finite and were read as 0"):
        assert morvanex.read_map("nan.mrc").values[0, 0, 0] == 0


def test_names_of_files_need_not_be_utf_8():
    name = os.fsdecode(b"caf\xe9.mrc")
    morvanex.write_map("plain.mrc", morvanex.Map(ramp(), voxel=1))
    os.rename("plain.mrc", name)
    assert numpy.array_equal(morvanex.read_map(name).values, ramp())
    with pytest.raises(morvanex.FileError) as error:
        morvanex.read_map(os.fsdecode(b"\xe9.mrc"))
    assert os.fsdecode(b"\xe9.mrc") in str(error.value)
