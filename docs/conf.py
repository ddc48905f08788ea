"""The site: tests/package/check_site.py runs Doxygen over the headers and then Sphinx over this folder."""
import os
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

project = "qkr"
copyright = "2026, the qkr developers"
version = release = re.search(r"project\(qkr VERSION ([\d.]+)", Path(__file__).parent.with_name("CMakeLists.txt").read_text())[1]

extensions = ["breathe", "cxx_reference", "myst_parser", "python_reference"]
breathe_projects = {"qkr": os.environ["QKR_DOXYGEN_XML"]}
breathe_default_project = "qkr"
breathe_domain_by_extension = {"h": "c"}
breathe_show_include = False
myst_heading_anchors = 3
myst_enable_extensions = ["colon_fence"]

html_theme = "furo"
html_title = f"qkr {version}"
html_static_path = ["_static"]
html_css_files = ["wide.css"]
html_show_sourcelink = False
html_copy_source = False
