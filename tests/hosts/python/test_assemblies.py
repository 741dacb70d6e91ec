"""Several models, copies, symmetries: what `place` does beside placing one model."""

import json
import pathlib

import gemmi
import numpy
import pytest

import morvanex
from conftest import COMPLEX, MAP, MODEL, CommandFailed, command, without_time


def of_command(*words):
    command("place", "--map", MAP, "--json", "command.json", *words)
    return without_time(pathlib.Path("command.json").read_text())


@pytest.mark.parametrize(
    "words, model, parameters",
    [
        (["--model", MODEL, "--copies", "2"], MODEL, dict(copies=2)),
        (["--model", MODEL, "--copies", "auto"], MODEL, dict(copies="auto")),
        (["--model", MODEL + "=2"], MODEL + "=2", {}),
        (["--model", MODEL + "=2"], [(MODEL, 2)], {}),
        (["--model", MODEL + "=auto", "--model", "a.pdb"], [(MODEL, "auto"), "a.pdb"], {}),
        (["--model", MODEL, "--model", "a.pdb", "--copies", "2"], [MODEL, "a.pdb"], dict(copies=2)),
        (["--model", "a.pdb", "--fixed", COMPLEX, "--fixed-chains", "D,E,F,G,H", "--copies", "1"], ["a.pdb"],
         dict(fixed=COMPLEX, fixed_chains="D,E,F,G,H")),
        (["--model", "a.pdb", "--model", MODEL, "--max-distance", "A:100", "D:50", "60",
          "--max-distance", "A:100", "A:4", "20.5"],
         ["a.pdb", MODEL], dict(max_distance=[("A:100", "D:50", 60), "A:100 A:4 20.5"])),
        (["--model", "a.pdb", "--max-distance", "A:100", "A:4", "20.5"], "a.pdb", dict(max_distance=("A:100", "A:4", 20.5))),
    ],
    ids=str,
)  # fmt: skip
def test_the_record_has_the_bytes_of_the_command(words, model, parameters):
    whole = morvanex.read_structure(COMPLEX)
    morvanex.write_structure("a.pdb", whole.moved(morvanex.Pose((1.0, 0.0, 0.0, 0.0), (9.0, 0.0, 0.0)), ["A"]))
    assembly = morvanex.place(MAP, model, resolution=8, **parameters)
    assert isinstance(assembly, morvanex.Assembly)
    assert without_time(assembly.json) == of_command("--resolution", 8, *words)


def test_the_files_have_the_bytes_of_the_command():
    of_command("--model", MODEL, "--resolution", 8, "--copies", 2, "--assembly", "all.cif", "--rest", "rest.mrc")
    expected = [pathlib.Path(name).read_bytes() for name in ("all.cif", "rest.mrc")]
    assembly = morvanex.place(MAP, MODEL, resolution=8, copies=2, assembly="all.cif", rest="rest.mrc")
    assert [pathlib.Path(name).read_bytes() for name in ("all.cif", "rest.mrc")] == expected
    assert len(assembly.written) == 2


def test_an_assembly_holds_what_the_record_holds():
    found = morvanex.place(MAP, [(MODEL, 3)], resolution=8, max_distance=("D:1", "D:2", 5))
    record = found.as_dict()
    assert record == json.loads(found.json)
    assert (str(found), found.complete) == (record["statement"], record["complete"])
    assert (found.resolution, found.searches) == (8, record["search"]["searches"])
    assert found.explained == record["explained"] and found.symmetry is None and not found.cancelled
    assert len(found.copies) == len(record["copies"]) == 3
    for copy, entry in zip(found.copies, record["copies"]):
        assert [vars(chain) for chain in copy.chains] == entry["chains"]
        assert list(copy.pose.quaternion) == entry["rotation"] and list(copy.centre) == entry["centre"]
        assert (copy.probability, copy.log_expected) == (entry["probability"], entry["logExpected"])
    (part,), (distance,) = found.parts, found.distances
    assert (part.placed, part.wanted, part.left) == (3, 3, record["parts"][0]["left"])
    assert (distance.first, distance.second, distance.max) == ("D:1", "D:2", 5) and distance.holds


def test_the_copies_are_where_the_file_has_them():
    found = morvanex.place(MAP, MODEL + "=2", resolution=8, assembly="all.cif")
    written = morvanex.read_structure("all.cif")
    for number, copy in enumerate(found.copies, 1):
        own = written.moved(morvanex.Pose((1.0, 0.0, 0.0, 0.0), (0.0, 0.0, 0.0)), [copy.chains[0].name])
        assert abs(own.coordinates - found.model(number).coordinates).max() < 2e-3
    with pytest.raises(IndexError, match="no copy 3, only 2"):
        found.model(3)


def test_models_in_memory_are_told_apart():
    model = morvanex.read_structure(MODEL)
    half = model.picked(i < 60 for i in range(len(model.polymer_residues)))
    found = morvanex.place(MAP, [(gemmi.read_structure(MODEL), 1), half], resolution=8)
    assert [part.file for part in found.parts] == [gemmi.read_structure(MODEL).name, MODEL]
    of_gemmi = [copy.file != MODEL for copy in found.copies]
    assert [isinstance(found.model(i), gemmi.Structure) for i in range(1, len(of_gemmi) + 1)] == of_gemmi and of_gemmi
    twins = morvanex.place(MAP, [model, half], resolution=8)
    assert [part.file for part in twins.parts] == [MODEL, MODEL + " 2"]


def test_a_list_is_an_assembly_be_it_of_one_model():
    assert isinstance(morvanex.place(MAP, [MODEL], resolution=8), morvanex.Assembly)
    with pytest.raises(morvanex.ParameterError, match="--model: the list holds no model"):
        morvanex.place(MAP, [], resolution=8)
    with pytest.raises(TypeError, match="neither a model nor a pair"):
        morvanex.place(MAP, [(MODEL, 1, 2)], resolution=8)


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--symmetry", "C5"], dict(symmetry="C5")),
        (["--symmetry", "auto"], dict(symmetry="auto")),
        (["--symmetry", "C5", "--symmetry-axis", "0,0,1", "--symmetry-centre", "55.5,1,20"],
         dict(symmetry="C5", symmetry_axis=(0, 0, 1), symmetry_centre=(55.5, 1, 20))),
        (["--symmetry", "C5", "--assembly", "all.cif"], dict(symmetry="C5", assembly="all.cif")),
    ],
    ids=str,
)  # fmt: skip
def test_symmetries_are_those_of_the_command(words, parameters):
    found = morvanex.place(MAP, MODEL, resolution=8, **parameters)
    assert without_time(found.json) == of_command("--model", MODEL, "--resolution", 8, *words)
    record = found.as_dict()["symmetry"]
    assert found.symmetry.asked == record["asked"] and found.symmetry.name == record["name"]
    assert found.symmetry.of_map.correlation == record["evidence"]["map"]["correlation"]
    assert found.symmetry.of_places.rmsd == record["evidence"]["places"]["rmsd"]
    assert list(found.symmetry.statement) == record["statement"]


def test_a_symmetry_comes_from_a_file():
    pathlib.Path("operators.cif").write_text(
        "data_a\nloop_\n_pdbx_struct_oper_list.id\n"
        + "".join(f"_pdbx_struct_oper_list.matrix[{i}][{j}]\n" for i in (1, 2, 3) for j in (1, 2, 3))
        + "".join(f"_pdbx_struct_oper_list.vector[{i}]\n" for i in (1, 2, 3))
        + "1 1 0 0 0 1 0 0 0 1 0 0 0\n2 -1 0 0 0 -1 0 0 0 1 100 0 0\n"
        + "loop_\n_pdbx_struct_assembly_gen.assembly_id\n_pdbx_struct_assembly_gen.oper_expression\n"
        + "_pdbx_struct_assembly_gen.asym_id_list\n1 1,2 A\n"
    )
    found = morvanex.place(MAP, MODEL, resolution=8, symmetry_from="operators.cif")
    words = ["--model", MODEL, "--resolution", 8, "--symmetry-from", "operators.cif"]
    assert without_time(found.json) == of_command(*words)
    assert found.symmetry.asked == "C2"


@pytest.fixture
def turned_map():
    """A map, and its density in another place."""
    placement = morvanex.place(MAP, MODEL, resolution=8)
    first, second = (morvanex.simulate(model, resolution=9, voxel=3)
                     for model in (morvanex.read_structure(COMPLEX), placement.model()))  # fmt: skip
    morvanex.write_map("first.mrc", first)
    morvanex.write_map("second.mrc", second)


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--moved-map", "moved.mrc"], dict(moved_map="moved.mrc")),
        (["--refine"], dict(refine=True)),
        (["--invert", "--near"], dict(invert=True, near=True)),
    ],
    ids=str,
)
def test_a_map_is_laid_on_a_map_as_the_command_does(turned_map, words, parameters):
    found = morvanex.place("first.mrc", "second.mrc", resolution=9, **parameters)
    moved = pathlib.Path("moved.mrc").read_bytes() if "moved_map" in parameters else None
    command("place", "--map", "first.mrc", "--model", "second.mrc", "--resolution", 9, "--json", "command.json", *words)
    assert without_time(found.json) == without_time(pathlib.Path("command.json").read_text())
    assert moved is None or pathlib.Path("moved.mrc").read_bytes() == moved
    first, second = morvanex.read_map("first.mrc"), morvanex.read_map("second.mrc")
    before = first.values.copy()
    assert without_time(morvanex.place(first, second, resolution=9, **parameters).json) == without_time(found.json)
    assert (first.values == before).all()


def test_a_map_in_a_map_holds_what_the_record_holds(turned_map):
    found = morvanex.place("first.mrc", "second.mrc", resolution=9)
    record = found.as_dict()
    assert isinstance(found, morvanex.MapPlacement)
    assert (str(found), found.placed, found.verdict) == (record["statement"], record["placed"], record["verdict"])
    assert found.hand.as_given.probability == record["hand"]["asGiven"]["probability"]
    assert [shell.correlation for shell in found.shells] == [entry["correlation"] for entry in record["shells"]]
    assert found.agreement == record["correlation"]["statement"]
    assert found.resolution_at_0143 == record["correlation"]["resolutionAt0.143"]
    assert (found.points, found.points_resolution) == (record["input"]["points"], record["input"]["pointsResolution"])
    assert found.places[0].rank == 1 and found.search.rotation_step is None


@pytest.mark.parametrize("order", [1, -1], ids=["as given", "mirrored"])
def test_the_map_at_its_place_is_the_one_that_the_search_writes(order):
    density = morvanex.simulate(COMPLEX, resolution=6, voxel=2)
    turned = morvanex.Map(density.values[:, :, ::order], voxel=2, origin=(70, -40, 5))
    found = morvanex.place(density, turned, resolution=6, moved_map="moved.mrc")
    assert found.hand.places_are_mirrored == (order == -1)
    laid, written = found.map(), morvanex.read_map("moved.mrc")
    assert (laid.voxel, laid.origin) == (density.voxel, density.origin)
    assert numpy.allclose(laid.values, written.values, atol=1e-5 * written.values.max())
    assert numpy.corrcoef(laid.values.ravel(), density.values.ravel())[0, 1] > 0.98
    with pytest.raises(IndexError, match="no place of rank 2, only 1"):
        found.map(2)


def test_two_maps_of_one_name_are_told_apart():
    density = morvanex.read_map(MAP)
    same = [morvanex.Map(values, voxel=density.voxel, origin=density.origin) for values in (density.values, density.values * 2)]
    found = morvanex.place(*same, resolution=12, refine=True)
    assert (found.as_dict()["input"]["map"], found.as_dict()["input"]["movedMap"]) == ("map", "map 2")


@pytest.mark.parametrize(
    "words, model, parameters",
    [
        (["--copies", "0"], MODEL, dict(copies=0)),
        (["--copies", "many"], MODEL, dict(copies="many")),
        (["--copies", "2", "--near"], MODEL, dict(copies=2, near=True)),
        (["--copies", "2", "--results", "a"], MODEL, dict(copies=2, results="a")),
        (["--copies", "2", "--symmetry", "C5"], MODEL, dict(copies=2, symmetry="C5")),
        (["--model", MODEL], [MODEL, MODEL], {}),
        (["--model", MAP], [MODEL, MAP], {}),
        (["--symmetry", "C1"], MODEL, dict(symmetry="C1")),
        (["--symmetry-axis", "0,0,1"], MODEL, dict(symmetry_axis=(0, 0, 1))),
        (["--symmetry", "C5", "--hands"], MODEL, dict(symmetry="C5", hands=True)),
        (["--symmetry", "C5", "--symmetry-from", "a"], MODEL, dict(symmetry="C5", symmetry_from="a")),
        (["--moved-map", "a.mrc"], MODEL, dict(moved_map="a.mrc")),
        (["--max-distance", "D:1", "D:2", "0"], MODEL, dict(max_distance=("D:1", "D:2", 0))),
        (["--max-distance", "D:1", "Z:2", "30"], MODEL, dict(max_distance="D:1 Z:2 30")),
        (["--rest", MAP], MODEL, dict(rest=MAP)),
    ],
    ids=str,
)
def test_what_is_refused_is_refused_in_the_same_words(words, model, parameters):
    with pytest.raises(CommandFailed) as of_command:
        command("place", "--map", MAP, "--model", MODEL, "--resolution", 8, *words)
    with pytest.raises(morvanex.Error) as of_python:
        morvanex.place(MAP, model, resolution=8, **parameters)
    assert str(of_python.value) == str(of_command.value)


@pytest.mark.parametrize("parameters", [{}, dict(resolution=8, chain="A"), dict(resolution=8, models=1)], ids=str)
def test_what_a_map_cannot_have_is_refused_in_the_same_words(parameters):
    words = [word for name, value in parameters.items() for word in (f"--{name}", value)]
    with pytest.raises(CommandFailed) as of_command:
        command("place", "--map", MAP, "--model", MAP, *words)
    with pytest.raises(morvanex.ParameterError) as of_python:
        morvanex.place(MAP, morvanex.read_map(MAP), **parameters)
    assert str(of_python.value) == str(of_command.value)


def test_an_assembly_without_a_copy_is_warned_of():
    with pytest.warns(morvanex.MorvanexWarning, match="all.cif is not written, since nothing is placed"):
        found = morvanex.place(MAP, COMPLEX, resolution=40, chain="C", assembly="all.cif")
    assert not found.copies and not pathlib.Path("all.cif").exists()
