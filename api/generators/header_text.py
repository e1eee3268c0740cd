"""What the public header says of each function, and of several in common."""
import re

SECTION = re.compile(r"/\* ---- (?P<title>.*?) -+ \*/\n")
DECLARED = re.compile(r"ZLV40_API\s[^;(]*?(?P<name>ZLV40_\w+)\(")
LINKAGE = re.compile(r"#define \w+ \w+\n")


def sections(header):
    """{title: the blocks of text that blank lines part}."""
    _, *parts = SECTION.split(header)
    return {title: [block.strip("\n") for block in re.split(r"\n\n+", text)]
            for title, text in zip(parts[::2], parts[1::2])}


def read(header):
    """({function: its constants, comment and declaration}, {section: what its functions have in common})."""
    functions, common = {}, {}
    for title, blocks in sections(header).items():
        pending, shared = [], []
        for block in blocks:
            declared = DECLARED.search(block)
            if declared:
                functions[declared["name"]] = "\n\n".join([*pending, LINKAGE.sub("", block)])
                pending = []
            elif block.startswith("enum") or "\nenum" in block:
                pending.append(block)
            elif block.startswith("/*"):
                shared.append(block)
        common[title] = "\n\n".join(shared)
    return functions, common
