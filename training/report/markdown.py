"""Markdown tables."""

NO_FIGURE = "–"  # where nothing was measured


def percent(share):
    """A share for reading: "2.7 %", "0.05 %"."""
    value = 100 * share
    return f"{value:.2f} %" if 0 < value < 0.095 else f"{value:.1f} %"


def code(symbol):
    return f"`` {symbol} ``" if "`" in symbol else f"`{symbol}`"


def cell(text):
    return str(text).replace("|", "\\|")


def table(header, rows):
    """The lines of a table, and an empty one behind it."""
    lines = ["| " + " | ".join(map(cell, header)) + " |", "|" + "---|" * len(header)]
    lines += ["| " + " | ".join(map(cell, row)) + " |" for row in rows]
    return lines + [""]
