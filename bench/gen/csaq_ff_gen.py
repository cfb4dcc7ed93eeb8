#!/usr/bin/env python3
"""Writes a synthetic CSAQ_FF aquarium export set for load tests.

    bench/gen/csaq_ff_gen.py [--animals N] [--seed S] --out DIR

DIR receives what the eight CSAQ_FF jobs read. The reference tables (species
names and abbreviations, non-natives, habitats, invertebrate list) are the
sample's. The tables that grow with the collection (groups, husbandry,
habitat census, sea-turtle rehabilitation records, turtle daily logs, snake
statistics, water chemistry) are copies of the sample's records, as many
copies as it takes to reach N animals (a single animal counts one, a group
its census count, or one when it is written as one group patient); copy k
gives every identity tag " kkkkk" and every stranding number "-kkkkk" and
names them so in the rows that refer to them, so each copy finds its own
animals as the sample does and the bad records come at the sample's rate.
Within a copy the seed shuffles the order of the collection records. The
same arguments always give the same bytes.
"""

import math
import os
import random

import sample_rows

TAG = "Identity_x0020__x0020_Tag"
COUNT = "Number_x0020_of_x0020_specimens_x0020_in_x0020_group"
REFERENCE = ["ScientificNames.xml", "NonNatives.xml", "SpeciesAbbreviations.xml", "Habitats.xml",
             "InvertebrateSpecies.txt"]
GROUP_PATIENT_ABOVE = 20


def suffixed(record, element, suffix):
    text = sample_rows.element_text(record, element)
    return record if text is None or text == "" else sample_rows.with_element_text(record, element, text + suffix)


def animals_per_copy(groups, census):
    """Animals one copy of the sample's collection records makes."""
    counts = {}
    for record in census:
        tag = (sample_rows.element_text(record, TAG) or "").lower()
        count = sample_rows.element_text(record, COUNT)
        if tag not in counts and count and count.isdigit():
            counts[tag] = int(count)
    total = 0
    for record in groups:
        tag = sample_rows.element_text(record, TAG) or ""
        if " RS0" in tag:
            total += 1
        else:
            count = counts.get(tag.lower(), 0)
            total += 1 if count > GROUP_PATIENT_ABOVE else count
    return total


def main():
    args = sample_rows.parse_args(__doc__, [("animals", 20000, "animals in the collection")])
    rng = random.Random(args.seed)
    sample = lambda name: sample_rows.sample_path("csaq_ff", name)
    out = lambda name: os.path.join(args.out, name)

    for name in REFERENCE:
        sample_rows.copy_file(sample(name), args.out)

    tables = {name: sample_rows.XmlTable(sample(name + ".xml"), name) for name in
              ["Groups", "Husbandry", "HabitatCensus", "SeaTurtleRehabRecords", "LoggerHeadDailyLogs",
               "SnakeStatTable", "WaterChem"]}
    copies = math.ceil(args.animals / animals_per_copy(tables["Groups"].records, tables["HabitatCensus"].records))

    rows = {name: [] for name in tables}
    for k in range(1, copies + 1):
        tag_suffix, number_suffix = " %05d" % k, "-%05d" % k
        groups = list(tables["Groups"].records)
        rng.shuffle(groups)
        rows["Groups"] += [suffixed(r, TAG, tag_suffix) for r in groups]
        rows["Husbandry"] += [suffixed(r, TAG, tag_suffix) for r in tables["Husbandry"].records]
        rows["HabitatCensus"] += [suffixed(r, TAG, tag_suffix) for r in tables["HabitatCensus"].records]
        rows["SeaTurtleRehabRecords"] += [suffixed(r, "StrandingNumber", number_suffix)
                                          for r in tables["SeaTurtleRehabRecords"].records]
        rows["LoggerHeadDailyLogs"] += [suffixed(r, "Turtle", number_suffix)
                                        for r in tables["LoggerHeadDailyLogs"].records]
        rows["SnakeStatTable"] += [suffixed(r, "Snake", tag_suffix) for r in tables["SnakeStatTable"].records]
        rows["WaterChem"] += tables["WaterChem"].records

    for name, table in tables.items():
        table.write(out(name + ".xml"), rows[name])


if __name__ == "__main__":
    main()
