"""Writes the catalogue of shapes.toml as the build writes that of the library: generate_shapes.py API_FOLDER OUTPUT."""
import pathlib
import sys

api, output = map(pathlib.Path, sys.argv[1:])
sys.path.insert(0, str(api))
import description  # noqa: E402: found in the folder named above
from generators import catalogue  # noqa: E402

families = [description.read_family(pathlib.Path(__file__).resolve().parent / "shapes.toml")]
for name, text in catalogue.write(families).items():
    (output / name).write_text(text.replace('#include "zlv40.h"', '#include "shapes.h"'))
