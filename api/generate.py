#!/usr/bin/env python3
"""Derives from the description of the exports what can be derived.

    generate.py OUTPUT WHAT...      writes each WHAT below the folder OUTPUT
    generate.py --check-header include/zlv40.h
    generate.py --check-readme README.md
    generate.py --effects docs/effects.md            writes the page; --check-effects compares it
    generate.py --pictures                           the command lines that make the page's pictures
    generate.py --list
"""
import argparse
import pathlib
import sys

import description
from generators import call_table, catalogue, effects_page, export_lists, header_check, reference

HEADER = pathlib.Path(__file__).resolve().parent.parent / "include" / "zlv40.h"
GENERATORS = {
    "def": export_lists.write_def,
    "map": export_lists.write_map,
    "names": export_lists.write_names,
    "effect_names": export_lists.write_effect_names,
    "catalogue": catalogue.write,
    "call_table": call_table.write,
    "reference": reference.write,
}


def write_if_changed(path, text):
    """Keeps the time stamp of a file that says the same already."""
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("output", nargs="?", type=pathlib.Path)
    parser.add_argument("what", nargs="*", choices=[[], *GENERATORS])
    parser.add_argument("--check-header", type=pathlib.Path)
    parser.add_argument("--check-readme", type=pathlib.Path)
    parser.add_argument("--effects", type=pathlib.Path)
    parser.add_argument("--check-effects", type=pathlib.Path)
    parser.add_argument("--pictures", action="store_true", help="the command lines of the page's pictures")
    parser.add_argument("--list", action="store_true", help="the names of all described exports")
    options = parser.parse_args()
    try:
        run(options)
    except description.DescriptionError as mistake:
        sys.exit(f"description: {mistake}")


def run(options):
    families = description.read_all()
    if options.list:
        print("\n".join(export.name for family in families for export in family.exports))
    if options.check_header:
        mistakes = header_check.compare(options.check_header.read_text(), families)
        if mistakes:
            sys.exit("\n".join(f"{options.check_header}: {mistake}" for mistake in mistakes))
    if options.check_readme:
        wanted = f"<!-- effects -->\n{reference.effects_table(families)}<!-- /effects -->"
        if wanted not in options.check_readme.read_text():
            sys.exit(f"{options.check_readme}: its table of effects should read\n\n{wanted}")
    if options.effects:
        write_if_changed(options.effects, effects_page.write(families, HEADER.read_text(), options.effects.parent))
    if options.check_effects:
        mistakes = effects_page.check(options.check_effects, families, HEADER.read_text())
        if mistakes:
            sys.exit("\n".join(mistakes))
    if options.pictures:
        print(effects_page.rendering(families), end="")
    for what in options.what:
        for name, text in GENERATORS[what](families).items():
            write_if_changed(options.output / name, text)


if __name__ == "__main__":
    main()
