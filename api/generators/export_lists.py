"""The lists of exported symbols: module definition file (Windows), version script (Linux), plain names (tests)."""


def symbols(families):
    return sorted(export.symbol for family in families for export in family.exports)


def write_def(families):
    lines = ["LIBRARY zlv40.dll", "EXPORTS", *(f"    {symbol}" for symbol in symbols(families))]
    return {"zlv40.def": "\n".join(lines) + "\n"}


def write_map(families):
    lines = ["{", "global:", *(f"    {symbol};" for symbol in symbols(families)), "local:", "    *;", "};"]
    return {"zlv40.map": "\n".join(lines) + "\n"}


def write_names(families):
    return {"exports.txt": "\n".join(symbols(families)) + "\n"}


def write_effect_names(families):
    names = [export.name for family in families for export in family.exports if export.is_swept]
    return {"effect_names.txt": "\n".join(names) + "\n"}
