"""Reports as a browser shows them."""

import json
import os
import pathlib
import struct

import pytest
from conftest import MAP

#: Where pictures go that are to be looked at.
PICTURES = os.environ.get("MORVANEX_REPORT_PICTURES")
#: A picture of one colour takes a few hundred bytes.
DRAWN = 5000


def keep(browser, name):
    if PICTURES:
        pathlib.Path(PICTURES, name + ".png").write_bytes(browser.picture())


def models_of(browser):
    """Of each model in the view, in its place: the first CA atom's position in Å, and whether it is shown."""
    return browser.run(
        """(() => {
            const components = document.getElementById('view').stage.compList.filter(c => c.type === 'structure');
            return components.map(component => {
                let first = null;
                component.structure.eachAtom(atom => {
                    if (!first && atom.atomname === 'CA') first = new NGL.Vector3(atom.x, atom.y, atom.z);
                });
                first.applyMatrix4(component.matrix);
                return {at: first.toArray(), isShown: component.visible};
            });
        })()"""
    )


def first_ca(file):
    """The same of a PDB file."""
    line = next(line for line in file.read_text().splitlines() if line[:4] == "ATOM" and line[12:16] == " CA ")
    return [float(line[start : start + 8]) for start in (30, 38, 46)]


@pytest.mark.parametrize("name", ["place", "assembly", "fit", "map"])
def test_draws_without_an_error_and_without_a_request(browser, folder, name):
    browser.open(folder / f"{name}.html")
    assert browser.run("document.documentElement.dataset.view") == "ready"
    assert len(browser.picture("#view")) > DRAWN
    assert browser.run("[...document.images].every(image => image.naturalWidth > 1)")
    assert browser.run("[...document.querySelectorAll('image')].length") >= (3 if name == "map" else 15)
    assert browser.errors == [] and browser.requests == []
    keep(browser, name)


def test_a_policy_forbids_requests_and_other_scripts(browser, folder):
    browser.open(folder / "flat.html")
    browser.run("fetch('http://127.0.0.1:9/').catch(() => 0)")
    browser.run("document.body.appendChild(document.createElement('script')).textContent = 'window.hit = 1'")
    assert browser.run("window.hit") is None
    assert sum("Connecting to" in error for error in browser.errors) == 1
    assert sum("inline script" in error for error in browser.errors) == 1


def test_the_map_stands_where_its_file_says(browser, folder):
    browser.open(folder / "place.html")
    low, high = browser.run(
        """(() => {
            const map = document.getElementById('view').stage.compList.find(component => component.type === 'volume');
            const box = new NGL.Vector3(), m = map.volume.matrix;
            const last = new NGL.Vector3(map.volume.nx - 1, map.volume.ny - 1, map.volume.nz - 1);
            return [new NGL.Vector3().applyMatrix4(m).toArray(), last.applyMatrix4(m).toArray()];
        })()"""
    )
    words = struct.unpack("<256i", MAP.read_bytes()[:1024])
    floats = struct.unpack("<256f", MAP.read_bytes()[:1024])
    for axis in range(3):
        step = floats[10 + axis] / words[7 + axis]
        assert low[axis] == pytest.approx(floats[49 + axis], abs=1e-3)
        assert high[axis] == pytest.approx(floats[49 + axis] + (words[axis] - 1) * step, abs=1e-3)


def test_a_click_on_a_place_moves_the_model_there(browser, folder):
    browser.open(folder / "place.html")
    before = browser.picture("#view")
    for rank in (1, 4):
        browser.click(f'tr[data-row="{rank - 1}"] button')
        (model,) = models_of(browser)
        assert model["isShown"] and model["at"] == pytest.approx(first_ca(folder / f"placed-{rank}.pdb"), abs=0.01)
        assert browser.run("document.getElementById('shown').textContent") == f"Shown: place {rank}."
        shown = browser.run("[...document.querySelectorAll('[data-picture]')].filter(p => !p.hidden).map(p => p.dataset.picture)")
        assert shown == [str(rank - 1)]
    assert browser.picture("#view") != before
    assert browser.errors == []


def test_an_assembly_shows_all_copies(browser, folder):
    browser.open(folder / "assembly.html")
    browser.click('tr[data-row="2"] td')
    models = models_of(browser)
    assert len(models) == 5 and all(model["isShown"] for model in models)
    assert len({tuple(model["at"]) for model in models}) == 5


def test_the_view_reads_the_mmcif_that_place_writes(browser, folder):
    browser.open(folder / "assembly.html")
    text = (folder / "assembly.cif").read_text()
    load = f"document.getElementById('view').stage.loadFile(new Blob([{json.dumps(text)}]), {{ext: 'cif'}})"
    atoms = sum(line.startswith("ATOM") for line in text.splitlines())
    assert browser.run(f"{load}.then(component => component.structure.atomCount)") == atoms == 5 * 740
    assert browser.errors == []


def test_the_level_is_set_by_the_slider(browser, folder):
    browser.open(folder / "place.html")
    level = "document.getElementById('view').stage.compList[0].reprList[0].repr.getParameters().isolevel"
    before, picture = browser.run(level), browser.picture("#view")
    browser.run("document.getElementById('level').focus()")
    for _ in range(3):
        browser.key("PageUp", 33)
    browser.wait(f"{level} > {before}")
    browser.wait("document.getElementById('view').stage.tasks.count === 0")
    assert browser.picture("#view") != picture
    assert "SD above mean" in browser.run("document.getElementById('level-text').textContent")
    assert browser.errors == []


def test_noise_is_drawn_at_every_level(browser, folder):
    browser.open(folder / "noise.html")
    for level in (1.0, 0.4, 1.5):
        browser.run(
            f"(() => {{ const e = document.getElementById('level'); e.value = {level}; e.dispatchEvent(new Event('input')); }})()"
        )
        browser.wait(f"document.getElementById('view').stage.compList[0].reprList[0].getParameters().isolevel === {level}")
        browser.settle()
    assert len(browser.picture("#view")) > DRAWN
    assert browser.errors == []


def test_the_keyboard_reaches_the_places(browser, folder):
    browser.open(folder / "place.html")
    for _ in range(10):
        browser.key("Tab", 9)
        if browser.run("document.activeElement.getAttribute('aria-label')") == "Show place 3":
            break
    outline = browser.run("getComputedStyle(document.activeElement).outlineStyle")
    browser.key("Enter", 13, "\r")
    assert outline == "solid"
    assert browser.run("document.querySelector('tr.shown').dataset.row") == "2"
    assert browser.run("document.activeElement.getAttribute('aria-pressed')") == "true"


def test_a_screen_reader_finds_table_buttons_and_pictures(browser, folder):
    browser.open(folder / "place.html")
    assert "Table of places" in browser.names("region")
    assert ["Score", "Probability", "Confidence"] == browser.names("columnheader")[1:4]
    assert {f"Show place {rank}" for rank in range(1, 9)} <= set(browser.names("button"))
    assert any(name.startswith("Level") for name in browser.names("slider"))
    assert any(name.startswith("Slice, xy plane") for name in browser.names("image"))
    assert any(name.startswith("Histogram of 8 scores") for name in browser.names("image"))


@pytest.mark.parametrize("name", ["place", "flat", "fit", "assembly"])
def test_fits_on_a_phone(browser, folder, name):
    browser.open(folder / f"{name}.html", width=375, height=667)
    assert browser.run("document.documentElement.scrollWidth") <= 375
    assert browser.run("document.querySelector('.slices > svg').getBoundingClientRect().width") > 200
    keep(browser, f"{name}-phone")


def contrast_of(browser, selector):
    """The contrast of a text with the page behind it, 1 to 21, as WCAG defines it."""
    colours = browser.run(f"[getComputedStyle(document.querySelector({selector!r})).color, getComputedStyle(document.body).backgroundColor]")
    light = []
    for colour in colours:
        channels = [int(part) / 255 for part in colour[4:-1].split(",")]
        linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in channels]
        light.append(0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2])
    return (max(light) + 0.05) / (min(light) + 0.05)


@pytest.mark.parametrize("dark", [False, True])
def test_is_readable_in_dark_and_in_light(browser, folder, dark):
    browser.open(folder / "place.html", dark=dark)
    behind = browser.run("getComputedStyle(document.body).backgroundColor")
    assert (behind != "rgb(255, 255, 255)") == dark
    for selector in ("p", ".hint", "tr.found .confidence", "button[aria-pressed=false]", "figcaption", ".checksum"):
        assert contrast_of(browser, selector) > 4.5, selector
    keep(browser, "dark" if dark else "light")


def test_on_paper_pictures_stand_for_the_view(browser, folder):
    browser.open(folder / "place.html", dark=True)
    browser.call("Emulation.setEmulatedMedia", media="print")
    assert browser.run("getComputedStyle(document.getElementById('scene')).display") == "none"
    assert browser.run("getComputedStyle(document.body).backgroundColor") == "rgb(255, 255, 255)"
    assert browser.run("getComputedStyle(document.querySelector('.density')).filter") == "none"
    assert browser.run("document.querySelector('.scroll').scrollHeight <= document.querySelector('.scroll').clientHeight")
    keep(browser, "print")


def test_without_the_view_the_rest_is_there(browser, folder):
    browser.open(folder / "flat.html")
    assert "The 3D view is not installed here" in browser.run("document.getElementById('scene').textContent")
    browser.click('tr[data-row="1"] button')
    shown = browser.run("[...document.querySelectorAll('[data-picture]')].filter(p => !p.hidden).map(p => p.dataset.picture)")
    assert shown == ["1"] and browser.errors == []
    keep(browser, "flat")


def test_names_are_no_markup(browser, folder):
    browser.open(folder / "hostile.html")
    assert browser.run("document.images.length") == 0
    assert browser.run("document.title") != "hit"
    assert "<img src=x" in browser.run("document.querySelector('h1').textContent")
    assert browser.errors == [] and browser.requests == []
