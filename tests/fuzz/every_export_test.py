"""Every export is called by a topic: by one that is written by hand, or by that of the described effects.

    every_export_test.py SOURCE
"""
import pathlib
import re
import sys

SOURCE = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(SOURCE / "api"))
import description  # noqa: E402  (found through the line above)

exports = [export for family in description.read_all() for export in family.exports]
topics = "\n".join(path.read_text() for path in sorted((SOURCE / "tests/fuzz").glob("fuzz_*.cpp")))
called = set(re.findall(r"\bZLV40_\w+", topics))
if "ZLV40_SeamCarve" not in called or len(exports) < 100:
    sys.exit("found neither topics nor exports: the check is broken")
missing = [export.name for export in exports if not export.is_swept and export.name not in called]
if missing:
    sys.exit("no topic of tests/fuzz calls " + ", ".join(missing))
print(f"{len(exports)} exports, {len(called)} of them by hand")
