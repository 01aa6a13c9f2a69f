# SPDX-License-Identifier: MIT
"""The figures of a run: medians, spreads and ratios, as one table and as JSON."""
import json
import statistics


def shown(value):
    """A number with as many digits as one reads."""
    if value is None:
        return "-"
    if isinstance(value, int) or float(value).is_integer():
        return f"{int(value):,}"
    if abs(value) >= 1000:
        return f"{value:,.0f}"
    return f"{value:.1f}" if abs(value) >= 100 else f"{value:.3g}"


class Results:
    """Rows of one table. A row's values are those of its rounds, in their order; None for a round that
    failed."""

    def __init__(self):
        self.rows = []

    def add(self, where, what, contestant, unit, values):
        if any(value is not None for value in values):
            self.rows.append({"where": where, "what": what, "contestant": contestant,
                              "unit": unit, "values": values})

    def ratios(self, row, yardstick="bare loop"):
        """To the yardstick of the same round: machines differ, and so do their moments."""
        if row["contestant"] == yardstick:
            return []
        wanted = {**row, "contestant": yardstick}
        for other in self.rows:
            if all(other[key] == wanted[key] for key in ("where", "what", "unit", "contestant")):
                pairs = zip(row["values"], other["values"])
                return [value / one for value, one in pairs if value is not None and one]
        return []

    def summaries(self):
        for row in self.rows:
            values = [value for value in row["values"] if value is not None]
            ratios = self.ratios(row)
            yield {**row, "median": statistics.median(values), "lowest": min(values),
                   "highest": max(values), "timesBareLoop": statistics.median(ratios) if ratios else None}

    def table(self):
        head = ["where", "what", "contestant", "median", "lowest", "highest", "unit", "x loop"]
        lines = [head]
        for row in self.summaries():
            ratio = "" if row["timesBareLoop"] is None else f"{row['timesBareLoop']:.2f}"
            lines.append([row["where"], row["what"], row["contestant"], shown(row["median"]),
                          shown(row["lowest"]), shown(row["highest"]), row["unit"], ratio])
        widths = [max(len(line[column]) for line in lines) for column in range(len(head))]
        numbers = {3, 4, 5, 7}
        for line in lines:
            yield "  ".join(cell.rjust(width) if column in numbers else cell.ljust(width)
                            for column, (cell, width) in enumerate(zip(line, widths))).rstrip()

    def write_json(self, path, about):
        with open(path, "w", encoding="utf-8") as file:
            json.dump({**about, "rows": list(self.summaries())}, file, indent=1)
            file.write("\n")
