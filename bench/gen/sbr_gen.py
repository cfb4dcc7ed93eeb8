#!/usr/bin/env python3
"""Writes a synthetic SBR export set for load tests.

    bench/gen/sbr_gen.py [--lines N] [--seed S] --out DIR

DIR receives SBR_LA.txt and SBR_SF.txt (N cases each), BandSightings/
BandSightings.txt and Necropsy.txt (at the sample's ratio to the Los Angeles
cases), all drawn from samples/sbr with their bad lines at the sample's rate,
and the sample's species.txt, which the cases name their species from. Case
numbers of the form XX-YY-NNN get a fresh five-digit number; a necropsy
report names a case made from the sample case it named, so the reports find
their patients as in the sample. Bands and colour markers stay those of the
sample on the first copy of each sample case only and are fresh on later
copies (as every bird has its own), so a sighting that names a sample band or
marker finds one bird, as it does in the sample. The necropsy file ends, as the sample does,
with the short line that stops its import and the line after it. The same
arguments always give the same bytes.
"""

import os
import random
import re

import sample_rows

CASE = re.compile(r"^([A-Z]{2})-([0-9O]{2})-(\d+)$")
NECROPSY_COLUMNS = 53
BAND_COLUMN, MARKER_COLUMN = 69, 71
BAND = re.compile(r"^\d{4}-\d{5}$")
MARKER = re.compile(r"^[A-Z0-9]{3}$")
# Letters the sample's markers do not start with, so fresh markers never
# name a sample bird.
FRESH_MARKER_LETTERS = "RSTUVWXY"


def fresh_band_and_marker(fields, n):
    if len(fields) > BAND_COLUMN and BAND.match(fields[BAND_COLUMN]):
        fields[BAND_COLUMN] = "9%03d-%05d" % (n // 100000 % 1000, n % 100000)
    if len(fields) > MARKER_COLUMN and MARKER.match(fields[MARKER_COLUMN]):
        letter = FRESH_MARKER_LETTERS[n % len(FRESH_MARKER_LETTERS)]
        rest = n // len(FRESH_MARKER_LETTERS)
        fields[MARKER_COLUMN] = "%s%d%s" % (letter, rest % 10, chr(ord("A") + rest // 10 % 26))


def main():
    args = sample_rows.parse_args(__doc__, [("lines", 20000, "cases in each centre's file")])
    rng = random.Random(args.seed)
    sample = lambda *parts: sample_rows.sample_path("sbr", *parts)

    copied = set()

    def rekey(fields, n):
        template = (fields[2] if len(fields) > 2 else "", fields[0])
        if template in copied:
            fresh_band_and_marker(fields, n)
        copied.add(template)
        m = CASE.match(fields[0])
        if m:
            fields[0] = "%s-%s-%05d" % (m.group(1), m.group(2), n)
        return fields

    cases_of = {}
    for centre in ("LA", "SF"):
        name = "SBR_%s.txt" % centre
        templates = sample_rows.read_lines(sample(name))[1:]
        written = sample_rows.write_tab_file(sample(name), os.path.join(args.out, name), args.lines, rng, rekey)
        if centre == "LA":
            for which, fields in written:
                cases_of.setdefault(templates[which].split("\t")[0], []).append(fields[0])
            la_cases = len(templates)

    sightings = sample_rows.read_lines(sample("BandSightings", "BandSightings.txt"))
    os.makedirs(os.path.join(args.out, "BandSightings"), exist_ok=True)
    writer = sample_rows.LineWriter(os.path.join(args.out, "BandSightings", "BandSightings.txt"))
    writer.line(sightings[0])
    for n in range(1, sample_rows.scaled(args.lines, len(sightings) - 1, la_cases) + 1):
        fields = rng.choice(sightings[1:]).split("\t")
        fields[1] = "R-%06d" % n
        writer.line("\t".join(fields))
    writer.close()

    necropsy = sample_rows.read_lines(sample("Necropsy.txt"))
    whole = [line for line in necropsy[1:] if line.count("\t") >= NECROPSY_COLUMNS - 1]
    stop = next(i for i, line in enumerate(necropsy) if line.count("\t") < NECROPSY_COLUMNS - 1)
    writer = sample_rows.LineWriter(os.path.join(args.out, "Necropsy.txt"))
    writer.line(necropsy[0])
    for n in range(1, sample_rows.scaled(args.lines, len(necropsy) - 1, la_cases) + 1):
        fields = rng.choice(whole).split("\t")
        fields[0] = "%d" % (1000 + n)
        if fields[5] in cases_of:
            fields[5] = rng.choice(cases_of[fields[5]])
        writer.line("\t".join(fields))
    for line in necropsy[stop:]:
        writer.line(line)
    writer.close()

    sample_rows.copy_file(sample("species.txt"), args.out)


if __name__ == "__main__":
    main()
