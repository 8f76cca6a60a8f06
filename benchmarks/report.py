"""Runs measuring programs and prints a row for each figure.

Every program prints one JSON object per figure and line on its standard output:
{"name", "value", "unit", "bound", "sense"}; sense "max" (at most the bound), "min" (at least) or
"info" (no bound). Other lines are passed on to standard error.
"""

import argparse
import json
import os
import subprocess
import sys

FORMAT = "{:<58} {:>14} {:<12} {:>16}  {}"


def programs(folder, names):
    present = sorted(f[len("bench_"):] for f in os.listdir(folder)
                     if f.startswith("bench_") and os.access(os.path.join(folder, f), os.X_OK)
                     and os.path.isfile(os.path.join(folder, f)))
    unknown = [n for n in names if n not in present]
    if unknown:
        sys.exit("bench: there is no %s; there are: %s" % (", ".join(unknown), ", ".join(present)))
    return names or present


def figure_of(line):
    try:
        figure = json.loads(line)
    except ValueError:
        return None
    if not isinstance(figure, dict) or "name" not in figure or "value" not in figure:
        return None
    return figure


def is_met(figure):
    """True, False, or None where there is no bound."""
    sense, bound, value = figure.get("sense", "info"), figure.get("bound"), figure["value"]
    if sense == "info" or bound is None:
        return None
    if not isinstance(value, (int, float)) or value != value:
        return False
    return value <= bound if sense == "max" else value >= bound


def bound_text(figure):
    if is_met(figure) is None:
        return ""
    return "%s %g" % ("at most" if figure["sense"] == "max" else "at least", figure["bound"])


def run(folder, name):
    """The figures of one program; a program that fails is a missed figure of its own."""
    print("bench: %s" % name, file=sys.stderr, flush=True)
    environment = dict(os.environ)
    environment.setdefault("QT_QPA_PLATFORM", "offscreen")
    figures = []
    process = subprocess.Popen([os.path.join(folder, "bench_" + name)], stdout=subprocess.PIPE,
                               text=True, env=environment)
    for line in process.stdout:
        figure = figure_of(line)
        if figure is None:
            sys.stderr.write(line)
            continue
        figure["program"] = name
        figures.append(figure)
        met = is_met(figure)
        figure["met"] = met
        value = "%.4g" % figure["value"] if isinstance(figure["value"], float) else str(figure["value"])
        print(FORMAT.format(figure["name"], value, figure.get("unit", ""), bound_text(figure),
                            {True: "met", False: "NOT MET", None: ""}[met]), flush=True)
    code = process.wait()
    if code != 0 or not figures:
        reason = "ended with code %d" % code if code else "measured nothing"
        print(FORMAT.format(name, reason, "", "", "NOT MET"), flush=True)
        figures.append({"name": name, "program": name, "value": None, "unit": "", "bound": None,
                        "sense": "info", "met": False, "error": reason})
    return figures


def main():
    parser = argparse.ArgumentParser(prog="bench", description="Measures, and compares with bounds.")
    parser.add_argument("names", nargs="*", metavar="NAME", help="measure these only")
    parser.add_argument("--json", metavar="FILE", help="write the figures there as well")
    parser.add_argument("--programs", required=True, help=argparse.SUPPRESS)
    arguments = parser.parse_args()

    names = programs(arguments.programs, arguments.names)
    print(FORMAT.format("name", "value", "unit", "bound", ""), flush=True)
    figures = [figure for name in names for figure in run(arguments.programs, name)]
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(figures, file, indent=1)
            file.write("\n")
    missed = [figure["name"] for figure in figures if figure["met"] is False]
    if missed:
        print("bench: %d of %d figures miss their bound: %s" % (len(missed), len(figures), ", ".join(missed)),
              file=sys.stderr)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
