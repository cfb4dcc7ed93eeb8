#!/usr/bin/env python3
"""Writes a synthetic CSAQ_PKS zoo-records export set for load tests.

    bench/gen/csaq_pks_gen.py [--animals N] [--seed S] [--out DIR]

DIR receives what the three CSAQ_PKS jobs read, shaped like samples/csaq_pks:
the seven exports of the patient import (Animals, Notes, Transactions,
Identifiers, Measurements, EnclosureMoves, CensusCounts), the enclosure tree
of the habitat import, the list of the taxonomy repair, and species.sql, the
species rows the patient import looks animals up in. Records have the mix of
the sample: individuals and groups (small ones split, large ones kept whole),
every note type with escaped markup, transactions, identifiers, measurements
in several units, moves, and census histories with deaths, transfers,
releases, merges and splits; a few per cent are bad on purpose.

The same --animals and --seed always give the same bytes. Standard library
only. Files are latin1 with CR LF line ends, as the records system writes them.
"""

import argparse
import os
import random

# ---------------------------------------------------------------------------
# Reference data

# abbrev, scientific name, common name in the species table, common name as
# the export writes it, species group
SPECIES = [
    ("LOGG", "Caretta caretta", "Loggerhead turtle", "Loggerhead", "reptile:turtle"),
    ("GRST", "Chelonia mydas", "Green sea turtle", "Green sea turtle", "reptile:turtle"),
    ("KRST", "Lepidochelys kempii", "Kemp's ridley sea turtle", "Kemp's ridley sea turtle", "reptile:turtle"),
    ("MOJE", "Aurelia aurita", "Moon jelly", "Moon jellyfish", "invertebrate:cnidarian"),
    ("ATSN", "Chrysaora quinquecirrha", "Atlantic sea nettle", "Atlantic sea nettle", "invertebrate:cnidarian"),
    ("BOSH", "Sphyrna tiburo", "Bonnethead shark", "Bonnethead", "fish:shark"),
    ("SATS", "Carcharias taurus", "Sand tiger shark", "Sand tiger shark", "fish:shark"),
    ("EAHE", "Cryptobranchus alleganiensis", "Eastern hellbender", "Hellbender", "amphibian:salamander"),
    ("ETSA", "Ambystoma tigrinum", "Eastern tiger salamander", "Tiger salamander", "amphibian:salamander"),
    ("YBSL", "Trachemys scripta scripta", "Yellow-bellied slider", "Yellowbelly slider", "reptile:turtle"),
    ("ESST", "Apalone spinifera", "Eastern spiny softshell turtle", "Spiny softshelled turtle", "reptile:turtle"),
    ("AMKE", "Falco sparverius", "American kestrel", "American kestrel/sparrowhawk", "avian:raptor"),
    ("CHBA", "Serranus tortugarum", "Chalk bass", "Chalk seabass", "fish:marine"),
    ("BSBA", "Centropristis ocyurus", "Bank sea bass", "Bank seabass", "fish:marine"),
    ("STBA", "Morone saxatilis", "Striped bass", "Striped seabass", "fish:marine"),
    ("SAPE", "Diplectrum formosum", "Sandperch", "Sand perch", "fish:marine"),
    ("BLTA", "Acanthurus coeruleus", "Blue tang", "Blue tang surgeon", "fish:marine"),
    ("JAKF", "Equetus lanceolatus", "Jack-knifefish", "Jackknife-fish", "fish:marine"),
    ("LJSQ", "Neoniphon marianus", "Longjaw squirrelfish", "Longjawed squirrelfish", "fish:marine"),
    ("GHCR", "Petrochirus diogenes", "Giant hermit crab", "Giant hermit", "invertebrate:crustacean"),
    ("BAWS", "Nerodia fasciata", "Banded water snake", "Banded watersnake", "reptile:snake"),
    ("RBWS", "Nerodia erythrogaster", "Red-bellied water snake", "Redbelly watersnake", "reptile:snake"),
    ("NARO", "Lontra canadensis", "North American river otter", "North American river otter", "mammal:otter"),
    ("LISE", "Hippocampus erectus", "Lined seahorse", "Lined seahorse", "fish:marine"),
    ("RDRU", "Sciaenops ocellatus", "Red drum", "Red drum", "fish:marine"),
    ("SPFL", "Paralichthys lethostigma", "Southern flounder", "Southern flounder", "fish:marine"),
    ("AMAL", "Alligator mississippiensis", "American alligator", "American alligator", "reptile:crocodilian"),
    ("DBTE", "Malaclemys terrapin", "Diamondback terrapin", "Diamondback terrapin", "reptile:turtle"),
    ("COSN", "Agkistrodon contortrix", "Copperhead", "Copperhead", "reptile:snake"),
    ("HOCR", "Limulus polyphemus", "Horseshoe crab", "Horseshoe crab", "invertebrate:arthropod"),
]
UNKNOWN_TAXA = ["Coenobita clypeatus", "Octopus vulgaris/Common octopus", "Caretta caretta/loggerhead"]

# Enclosure, identifier, category, type, water type
ENCLOSURES = [
    ("Living Shipwreck", "LS", "Aquatic", "Exhibit", "Seawater"),
    ("Loggerhead's Lagoon", "LL-1", "Aquatic", "Exhibit", "Seawater (artificial)"),
    ("Sea Turtle Hospital Tank 1", "STH1", "Aquatic", "Holding", "Estuarine"),
    ("Sea Turtle Hospital Tank 2", "STH2", "Aquatic", "Holding", "Estuarine"),
    ("Rocky Coast", "", "Aquatic", "Exhibit", "Brackish"),
    ("Falls Lake Reservoir", "Falls Lake", "Aquatic", "Exhibit", "Fresh Water"),
    ("Otter Falls", "OF", "Terrestrial", "Exhibit", "Fresh Water"),
    ("Jellyfish Gallery", "JG", "Aquatic", "Exhibit", "Seawater"),
    ("Hellbender Holding", "HH", "Aquatic", "Holding", "Rain Water"),
    ("Salamander Stream", "SS", "Aquatic", "Exhibit", "Freshwater"),
    ("Coastal Aviary", "CA", "Terrestrial", "Exhibit", None),
    ("Teaching Station 1", "TS1", "Education", "Holding", None),
] + [("Quarantine Tank %d" % i, "QT%d" % i, "Aquatic", "Holding", "Seawater") for i in range(1, 21)] + [
    ("Shark Tank %s" % c, "ST-%s" % c, "Aquatic", "Exhibit", "Seawater") for c in "ABCDEF"] + [
    ("Freshwater Holding %d" % i, "FH%d" % i, "Aquatic", "Holding", "Freshwater") for i in range(1, 11)]
MOVE_TARGETS = [e[0] for e in ENCLOSURES if e[0] != "Falls Lake Reservoir"] + [
    "Falls Lake", "Amphibian Holding 15", "Rocky River Holding", "Tactile 2", "Back Bay Holding"]

COLLECTION_PLACES = [
    "United States/North Carolina/Bogue Sound", "United States/North Carolina/Beaufort Inlet",
    "United States/Florida/Key Largo/FL", "United States/Virginia/Chincoteague", "CSAPKS dock",
    "Fisher Swamp", "Little Swift Creek at Ernul", "Kitt Creek", "Bogue Sound", "Taylors Creek Beaufort Docks",
    "United States/Cape Lookout", "United States/Morehead City", "United States/Radio Island",
    "United States/Emerald Isle", "United States/Purchase from Carteret Community College",
    "United States/Purchase from Southeastern Ponds Aquaculture", "United States/Purchase from Dynasty Marine Assoc.",
    "United States/Donated by UNCW aquaculture facility", "United States/South Carolina",
    "United States/Ohio/Lake Erie", "Canada/Nova Scotia",
]
RELEASE_PLACES = ["Atlantic Ocean", "United States/North Carolina/Bogue Banks, off the pier",
                  "United States/Georgia/Cumberland Island", "United States/Southeast", "United States/South",
                  "United States/Texas", ""]
GENERAL_TYPES = ["Animal Care", "Aquatic", "General", "Animal Information", "Management", "Animal Events",
                 "Development", "Sex Information", "Communication", "Husbandry", "Management Plan",
                 "Individual Behavior", "Diet"]
SUB_TYPES = ["", "", "Medical Note (M)", "Keeper Note", "Husbandry Note"]
KEYWORDS = ["", "", "Diet change", "Behavior", "Enrichment", "Bloodwork, CBC", "Shed", "Weight"]
WORDS = ("ate well refused squid capelin herring shrimp active resting basking swimming target fed the at "
         "surface tank keeper vet exam shell flipper fin molt shed enrichment puzzle feeder observed normal "
         "slow quick alert responsive mild lesion healed cleaned water quality checked").split()
KEEPERS = ["Staff", "Dr. Lane", "Jos\xe9 Ortiz", "K. Brooks", "M. Chen", "A. Patel"]


class Writer:
    """One exported table: a dataroot element holding one element per record."""

    def __init__(self, path, table):
        self.file = open(path, "wb")
        self.table = table
        self.parts = ['<?xml version="1.0" encoding="ISO-8859-1"?>',
                      '<dataroot xmlns:od="urn:schemas-microsoft-com:officedata" generated="2015-06-01T09:30:12">']

    def record(self, fields):
        parts = self.parts
        parts.append("<%s>" % self.table)
        for name, value in fields:
            if value is not None:
                parts.append("<%s>%s</%s>" % (name, value, name))
        parts.append("</%s>" % self.table)
        if len(parts) > 20000:
            self.flush()

    def flush(self):
        self.file.write(("\r\n".join(self.parts) + "\r\n").encode("latin-1"))
        self.parts = []

    def close(self):
        self.parts.append("</dataroot>")
        self.flush()
        self.file.close()


def day(rng, start_year=2005, end_year=2016):
    return "%04d-%02d-%02d" % (rng.randint(start_year, end_year), rng.randint(1, 12), rng.randint(1, 28))


def later(date, rng, max_days=900):
    y, m, d = (int(x) for x in date.split("-"))
    total = (y * 12 + m - 1) * 28 + d - 1 + rng.randint(1, max_days)
    y, rest = divmod(total, 12 * 28)
    m, d = divmod(rest, 28)
    return "%04d-%02d-%02d" % (y, m + 1, d + 1)


def comment(rng, words):
    text = " ".join(rng.choice(WORDS) for _ in range(words))
    style = rng.random()
    if style < 0.3:
        return "&lt;p&gt;%s&lt;/p&gt;" % text
    if style < 0.45:
        return "&lt;p style=&quot;margin:0&quot;&gt;%s&lt;/p&gt;&lt;p&gt;&amp;nbsp;&lt;/p&gt;" % text
    if style < 0.55:
        half = len(text) // 2
        return "&lt;ol&gt;&lt;li&gt;%s&lt;/li&gt;&lt;li&gt;%s&lt;/li&gt;&lt;/ol&gt;" % (text[:half], text[half:])
    if style < 0.62:
        return ("&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width:40px&quot;&gt;%s&lt;/td&gt;"
                "&lt;td&gt;%d g&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;" % (text, rng.randint(1, 500)))
    if style < 0.7:
        return "&lt;strong&gt;%s&lt;/strong&gt; &ldquo;ok&rdquo; &amp;ndash; keeper&amp;rsquo;s note" % text
    return text


def generate(animals, seed, out):
    rng = random.Random(seed)
    os.makedirs(out, exist_ok=True)
    path = lambda name: os.path.join(out, name)

    with open(path("species.sql"), "w", encoding="latin-1") as f:
        f.write("insert into species (abbrev,scientific_name,common_name,species_group) values\n")
        f.write(",\n".join("  ('%s','%s','%s','%s')" % (a, s, c.replace("'", "''"), g)
                           for a, s, c, _, g in SPECIES) + ";\n")

    tree = Writer(path("EnclosureTree.xml"), "EnclosureTree")
    for enclosure, identifier, category, kind, water in ENCLOSURES:
        tree.record([("Enclosure", enclosure), ("Identifier", identifier or None), ("Category", category),
                     ("Type", kind), ("CurrentWaterType", water)])
    tree.close()

    with open(path("MissingTaxonomy.txt"), "wb") as f:
        lines = ["Common Name\tScientific Name\tKingdom\tPhylum\tClass\tOrder\tFamily\tGenus\tSpecies"]
        for _, scientific, common, _, _ in SPECIES:
            genus, species = scientific.split(" ", 1)
            lines.append("\t".join([common, scientific, "Animalia", "Chordata", "Reptilia", "Testudines",
                                    "Cheloniidae", genus, species]))
        lines.append("Sea otter\tEnhydra lutris\tAnimalia\tChordata\tMammalia\tCarnivora\tMustelidae\tEnhydra")
        f.write(("\r\n".join(lines) + "\r\n").encode("latin-1"))

    files = {name: Writer(path(name + ".xml"), name) for name in
             ["Animals", "Notes", "Transactions", "Identifiers", "Measurements", "EnclosureMoves", "CensusCounts"]}
    gan = 0
    for number in range(1, animals + 1):
        gan += 1
        local_id = "A%07d" % number
        if rng.random() < 0.01:
            taxon = rng.choice(UNKNOWN_TAXA)
        else:
            _, scientific, _, export_name, _ = rng.choice(SPECIES)
            taxon = "%s/%s" % (scientific, export_name.upper() if rng.random() < 0.05 else export_name)
        group = rng.random() < 0.04
        sex = rng.choice(["Male", "Female", "Undetermined", "Indeterminate", "Male", "Female", "unknown"])
        files["Animals"].record([
            ("GAN", gan), ("Local_ID", local_id), ("TaxonInfo", taxon if rng.random() > 0.002 else None),
            ("SexType", sex), ("LifeStage", rng.choice(["Adult", "Juvenile", "Subadult", None])),
            ("CurrentAccessionType", "Group of Animals" if group else "Individual Animal"),
            ("Institution", "CSAQ_PKS")])

        admitted = day(rng)
        census = files["CensusCounts"]
        if group:
            large = rng.random() < 0.5
            counts = ([rng.randint(3, 30), rng.randint(3, 30), rng.randint(0, 20)] if large
                      else [rng.randint(0, 2), rng.randint(0, 2), rng.randint(1, 1)])
            census.record([("Local_ID", local_id), ("CensusDate", admitted + "T00:00:00"),
                           ("CensusMethodType", "Actual Count"), ("Male", counts[0]), ("Female", counts[1]),
                           ("Other", counts[2]), ("GroupCount", sum(counts)), ("ChangeInCount", 0),
                           ("ResponsibleParty", "Staff")])
            files["Identifiers"].record([("GAN", gan), ("Local_ID", local_id), ("IdentifierType", "Local ID"),
                                         ("IdentifierValue", local_id)])
            date = admitted
            for _ in range(rng.randint(1, 4)):
                date = later(date, rng, 400)
                change = -rng.randint(1, 2)
                counts[2] = max(0, counts[2] + change)
                kind = rng.choice(["Death", "Death", None, "Close Out", "To Another Institution",
                                   "Released To Wild", "Missing", "Merge Another Individual/Group",
                                   "Split A Group/Individual"])
                census.record([("Local_ID", local_id), ("CensusDate", date + "T00:00:00"),
                               ("CensusMethodType", rng.choice(["Actual Count", "Estimate", "Removal From Group"])),
                               ("Male", counts[0]), ("Female", counts[1]), ("Other", counts[2]),
                               ("GroupCount", sum(counts)), ("CensusCountQualifierType", kind),
                               ("ChangeInCount", change), ("ResponsibleParty", "Staff")])
        elif rng.random() < 0.08:
            census.record([("Local_ID", local_id), ("CensusDate", later(admitted, rng) + "T00:00:00"),
                           ("CensusMethodType", "Actual Count"), ("Male", 0), ("Female", 0), ("Other", 0),
                           ("GroupCount", 0),
                           ("CensusCountQualifierType", rng.choice(["Death", "Missing", "Released To Wild",
                                                                    "To Another Institution", "Appeared"])),
                           ("ChangeInCount", -1), ("ResponsibleParty", "Staff")])

        notes = files["Notes"]
        first_note = rng.choice(["Rescue", "Capture From Wild", "Found", "Birth", "Capture", "Rescued Date"])
        notes.record([("GAN", gan), ("Local_ID", local_id), ("NoteType", first_note),
                      ("NoteDate", rng.choice(["", "", "", "~ from ", "~ before "]) + admitted + "T00:00:00"),
                      ("Comment", rng.choice(COLLECTION_PLACES) if first_note != "Birth" else None)])
        for _ in range(rng.choice([0, 0, 1, 1, 1, 2, 3])):
            note_type = rng.choice(GENERAL_TYPES + ["Animal Feeding Log", "Expected Hatch Date", "Vet Visit"])
            keywords = rng.choice(KEYWORDS)
            notes.record([("GAN", gan), ("Local_ID", local_id), ("NoteType", note_type),
                          ("NoteDate", later(admitted, rng) + "T00:00:00"), ("Keywords", keywords or None),
                          ("Comment", comment(rng, rng.randint(4, 60))),
                          ("NoteSubType", rng.choice(SUB_TYPES) or None)])
        if rng.random() < 0.05:
            notes.record([("GAN", gan), ("Local_ID", local_id), ("NoteType", "Release To Wild"),
                          ("NoteDate", later(admitted, rng) + "T00:00:00"),
                          ("Comment", rng.choice(RELEASE_PLACES) or None)])

        transactions = files["Transactions"]
        transactions.record([("GAN", gan), ("Local_ID", local_id), ("TransactionType", "Acquisition"),
                             ("TransactionDate", admitted + "T00:00:00"),
                             ("EventType", rng.choice(["Rescued", "From Wild", "From Another Institution",
                                                       "Birth/Hatch", "Group Split", "Appeared", "Donation"])),
                             ("FromHolder", "Wild"), ("ToHolder", "CSAQ_PKS")])
        if rng.random() < 0.15:
            transactions.record([("GAN", gan), ("Local_ID", local_id), ("TransactionType", "Disposition"),
                                 ("TransactionDate", later(admitted, rng) + "T00:00:00"),
                                 ("EventType", rng.choice(["Death", "To Another Institution", "Release to Wild",
                                                           "Missing", "Close Out", "Egg Disposal or Death"])),
                                 ("FromHolder", "CSAQ_PKS"), ("ToHolder", "Wild")])

        identifiers = files["Identifiers"]
        if rng.random() < 0.3:
            identifiers.record([("GAN", gan), ("Local_ID", local_id), ("IdentifierType", "House Name"),
                                ("IdentifierValue", rng.choice(["Big Ben", "Shelly", "Ziggy", "Nemo", "Tank",
                                                                "Scute", "Bubbles", "O'Malley"]))])
        if rng.random() < 0.3:
            value = ("AVID*%03d*%03d*%03d" % (rng.randint(0, 999), rng.randint(0, 999), rng.randint(0, 999))
                     if rng.random() < 0.5 else "NCQ%05d" % rng.randint(0, 99999))
            identifiers.record([("GAN", gan), ("Local_ID", local_id), ("IdentifierType", "Tag"),
                                ("IdentifierValue", value),
                                ("IdentifierBodyComponent", rng.choice(["Left front flipper", "Right shoulder",
                                                                        None])),
                                ("Descriptors", rng.choice([None, None, "Inconel, applied at intake"]))])
        if rng.random() < 0.15:
            identifiers.record([("GAN", gan), ("Local_ID", local_id),
                                ("IdentifierType", rng.choice(["Band", "Color Marking - Natural",
                                                               "Physical characteristics", "US NOAA ID",
                                                               "Intl Stdbk#", "Satellite Transmitters"])),
                                ("IdentifierValue", rng.choice(["Orange left", "white chin patch", "HB-%04d" %
                                                                rng.randint(0, 9999)]))])

        measurements = files["Measurements"]
        for _ in range(rng.choice([0, 0, 1, 1, 1, 2])):
            kind, unit, value = rng.choice([
                ("Live weight", "kilogram", "%.2f" % rng.uniform(0.1, 90)),
                ("Live weight", "gram", "%d" % rng.randint(2, 5000)),
                ("Live weight", "pound", "%.1f" % rng.uniform(0.2, 150)),
                ("body length", "inch", "%.1f" % rng.uniform(1, 60)),
                ("body length", "centimetre", "%.1f" % rng.uniform(2, 150)),
                ("total length", "millimetre", "%d" % rng.randint(10, 2000)),
                ("carapace length", "centimetre", "%.1f" % rng.uniform(5, 100)),
                ("carapace width (curved)", "centimetre", "%.1f" % rng.uniform(5, 100)),
                ("Live weight", "ounce", "12"),
                ("Ephyra release", None, "Yes"),
            ])
            measurements.record([("GAN", gan), ("Local_ID", local_id),
                                 ("MeasurementDate", later(admitted, rng) + "T10:15:00+05:00"),
                                 ("MeasurementTypeName", kind), ("MeasurementValueEntered", value),
                                 ("UnitOfMeasurement", unit), ("MeasuredByPerson", rng.choice(KEEPERS)),
                                 ("MeasurementGroup", "Development Milestones" if unit is None else "Weights"),
                                 ("Comment", None)])

        moves = files["EnclosureMoves"]
        date = admitted
        for _ in range(rng.choice([0, 1, 1, 2])):
            date = later(date, rng, 200)
            moves.record([("GAN", gan), ("Local_ID", local_id), ("EnclosureName", rng.choice(MOVE_TARGETS)),
                          ("MovedInDate", date), ("ResponsibleParty", rng.choice(KEEPERS)),
                          ("TransferReason", rng.choice([None, None, "Intake exam", "Cleared for exhibit"]))])

    # A few records that name no animal of the export.
    files["Notes"].record([("GAN", gan + 1), ("Local_ID", "A9999999"), ("NoteType", "General"),
                           ("NoteDate", "2014-01-01T00:00:00"), ("Comment", "Unknown animal")])
    for writer in files.values():
        writer.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--animals", type=int, default=50000, help="animals in the export (default 50000)")
    parser.add_argument("--seed", type=int, default=1, help="random seed (default 1)")
    parser.add_argument("--out", default="csaq_pks_export", help="output directory (default ./csaq_pks_export)")
    args = parser.parse_args()
    generate(args.animals, args.seed, args.out)


if __name__ == "__main__":
    main()
