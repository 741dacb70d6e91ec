"""The site of these pages; ./run docs builds it. The module morvanex is on PYTHONPATH."""

import pathlib
import re

ROOT = pathlib.Path(__file__).parent.parent

project = "Morvanex"
author = "the Morvanex developers"
copyright = author
release = re.search(r"project\(Morvanex VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text()).group(1)

extensions = ["myst_parser", "sphinx.ext.autodoc", "sphinx.ext.napoleon"]
html_theme = "furo"
html_title = f"Morvanex {release}"
exclude_patterns = ["conf.py"]
myst_heading_anchors = 3

autodoc_member_order = "bysource"
autodoc_typehints = "none"  # the signatures have them
autodoc_default_options = {"members": True, "undoc-members": False}
napoleon_google_docstring = True
napoleon_numpy_docstring = False
napoleon_use_ivar = True
