#!/usr/bin/env python3
"""Writes a synthetic DsWC export set for load tests.

    bench/gen/dswc_gen.py [--admissions N] [--contacts M] [--seed S] --out DIR

DIR receives 2011Admissions.txt and 2014Admissions.txt (N admissions each,
numbered from 0001, the 2014 file with its donation column), AddressBook.txt
with M contacts, all drawn from samples/dswc with their bad lines at the
sample's rate, and the sample's species.xml, which the admissions name their
species from. The same arguments always give the same bytes.
"""

import os
import random

import sample_rows


def main():
    args = sample_rows.parse_args(__doc__, [("admissions", 20000, "admissions in each year file"),
                                            ("contacts", 5000, "address book contacts")])
    rng = random.Random(args.seed)

    def rekey(fields, n):
        if fields[0].strip().isdigit():
            fields[0] = "%04d" % n
        return fields

    for year in (2011, 2014):
        name = "%dAdmissions.txt" % year
        sample_rows.write_tab_file(sample_rows.sample_path("dswc", name), os.path.join(args.out, name),
                                   args.admissions, rng, rekey, header_lines=2)
    sample_rows.write_tab_file(sample_rows.sample_path("dswc", "AddressBook.txt"),
                               os.path.join(args.out, "AddressBook.txt"), args.contacts, rng,
                               lambda fields, n: fields)
    sample_rows.copy_file(sample_rows.sample_path("dswc", "species.xml"), args.out)


if __name__ == "__main__":
    main()
