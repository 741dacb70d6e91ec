"""The tables of the made maps, from the lines of made.py's CSV file."""

CLASSES = (("z >= 7", 7, float("inf")), ("4.5 <= z < 7", 4.5, 7), ("z < 4.5", 0, 4.5))
DECLARED = 0.95
BINS = (0, 0.05, 0.2, 0.4, 0.6, 0.8, 0.95, 1.0000001)


def number(row, column):
    return float(row[column]) if row[column] != "" else None


def is_right(row):
    return int(row["right"]) == 1


def of_kind(rows, *kinds):
    return [row for row in rows if row["kind"] in kinds]


def share(part, whole):
    return f"{part:4d} of {whole:4d}" + (f" {100 * part / whole:5.1f} %" if whole else "        ")


def right_first(rows, write):
    """How often the right place came first, by the predicted signal and by what was done to the map."""
    positives = of_kind(rows, "present")
    write("Right place first, by the predicted signal z\n")
    write(f"{'':26}" + "".join(f"{name:>24}" for name, _, _ in CLASSES))
    for treatment in [*dict.fromkeys(row["treatment"] for row in positives), "all"]:
        cells = []
        for _, low, high in CLASSES:
            chosen = [row for row in positives if treatment in ("all", row["treatment"])
                      and low <= number(row, "signal") < high]
            cells.append(share(sum(map(is_right, chosen)), len(chosen)).rjust(24))
        write(f"{treatment:26}" + "".join(cells))


def confidence(rows, write):
    """What the answers that are called right are worth."""
    positives = of_kind(rows, "present")
    declared = [row for row in positives if row["verdict"] == "placed"]
    right = [row for row in positives if is_right(row)]
    judged = [row for row in right if row["verdict"] != "not-judged"]
    write("Confidence\n")
    write(f"{'called right (p >= 0.95), of them right':50}" + share(sum(map(is_right, declared)), len(declared)))
    write(f"{'right, of them called so':50}" + share(sum(row["verdict"] == "placed" for row in right), len(right)))
    write(f"{'right in maps that are judged, called so':50}" +
          share(sum(row["verdict"] == "placed" for row in judged), len(judged)))
    for _, low, high in CLASSES:
        chosen = [row for row in judged if low <= number(row, "signal") < high]
        write(f"{f'  of these with {low:g} <= z < {high:g}':50}" +
              share(sum(row["verdict"] == "placed" for row in chosen), len(chosen)))
    for kind, name in (("foreign", "other proteins"), ("mirrored", "mirror images")):
        chosen = [row for row in of_kind(rows, kind) if row["verdict"] != "not-judged"]
        for title, some in ((name, [row for row in chosen if row["treatment"] != "noise alone"]),
                            (name + " in noise", [row for row in chosen if row["treatment"] == "noise alone"])):
            if some:
                write(f"{f'negative controls, {title}: declared':50}" +
                      share(sum(row["verdict"] == "placed" for row in some), len(some)))
    turns = [row for row in rows if row["verdict"] == "turn-unsure"]
    wrong = [row for row in turns if row["kind"] != "present"]
    write(f"{'place sure, turn not: of them no such model':50}" + share(len(wrong), len(turns)))


def reliability(rows):
    """Runs, mean probability and share right for each bin of the probability, of all runs that are judged: models that
    are there, and models that are not."""
    judged = [row for row in rows if row["verdict"] not in ("not-judged", "no-density")]
    points = []
    for low, high in zip(BINS, BINS[1:]):
        chosen = [row for row in judged if low <= number(row, "probability") < high]
        if chosen:
            points.append({"low": low, "high": min(high, 1), "runs": len(chosen),
                           "mean": sum(number(row, "probability") for row in chosen) / len(chosen),
                           "right": sum(map(is_right, chosen))})
    return points


def print_reliability(rows, write):
    write("Reliability\n")
    write(f"{'probability':16}{'runs':>8}{'mean':>8}{'right':>8}")
    for point in reliability(rows):
        write(f"{point['low']:4.2f} to {point['high']:4.2f}    {point['runs']:8d}{point['mean']:8.3f}"
              f"{point['right'] / point['runs']:8.3f}")
