#!/usr/bin/env python3
"""Writes a synthetic GLFH patient file for load tests.

    bench/gen/glfh_gen.py [--lines N] [--seed S] --out DIR

DIR receives GLFH_Patients.txt with N lines drawn from samples/glfh (with
their bad lines at the sample's rate). A line's patient number is replaced by
its line number unless it is not a positive number, which the job refuses.
The same arguments always give the same bytes.
"""

import os
import random

import sample_rows


def main():
    args = sample_rows.parse_args(__doc__, [("lines", 20000, "patient lines")])
    rng = random.Random(args.seed)

    def rekey(fields, n):
        if len(fields) > 4 and fields[4].isdigit() and int(fields[4]) > 0:
            fields[4] = "%d" % n
        return fields

    sample_rows.write_tab_file(sample_rows.sample_path("glfh", "GLFH_Patients.txt"),
                               os.path.join(args.out, "GLFH_Patients.txt"), args.lines, rng, rekey)


if __name__ == "__main__":
    main()
