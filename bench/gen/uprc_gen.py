#!/usr/bin/env python3
"""Writes a synthetic UPRC year file for load tests.

    bench/gen/uprc_gen.py [--lines N] [--seed S] --out DIR

DIR receives "UPRC 2012.txt" with N birds drawn from samples/uprc (with their
bad lines at the sample's rate), numbered 12-00001 on. The same arguments
always give the same bytes.
"""

import os
import random
import re

import sample_rows


def main():
    args = sample_rows.parse_args(__doc__, [("lines", 20000, "patient lines")])
    rng = random.Random(args.seed)

    def rekey(fields, n):
        if re.match(r"^\d\d-\d+$", fields[0]):
            fields[0] = "12-%05d" % n
        return fields

    sample_rows.write_tab_file(sample_rows.sample_path("uprc", "UPRC 2012.txt"),
                               os.path.join(args.out, "UPRC 2012.txt"), args.lines, rng, rekey)


if __name__ == "__main__":
    main()
