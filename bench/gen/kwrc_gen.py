#!/usr/bin/env python3
"""Writes a synthetic KWRC year file for load tests.

    bench/gen/kwrc_gen.py [--cases N] [--seed S] --out DIR

DIR receives KWRC_2012.txt with N cases drawn from samples/kwrc (with their
bad lines at the sample's rate) and settings.sql, the organisation's
non-problems setting to load first. Case numbers are 6 digits from 120001 on,
so they are stored unchanged. The same arguments always give the same bytes.
"""

import os
import random

import sample_rows


def main():
    args = sample_rows.parse_args(__doc__, [("cases", 20000, "cases in the year file")])
    rng = random.Random(args.seed)

    def rekey(fields, n):
        fields[0] = "%d" % (120000 + n)
        return fields

    sample_rows.write_tab_file(sample_rows.sample_path("kwrc", "KWRC_2012.txt"),
                               os.path.join(args.out, "KWRC_2012.txt"), args.cases, rng, rekey)
    sample_rows.copy_file(sample_rows.sample_path("kwrc", "settings.sql"), args.out)


if __name__ == "__main__":
    main()
