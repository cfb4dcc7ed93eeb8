#!/usr/bin/env python3
"""Tests of the benchmark's text tools and input generators (no server)."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

REPO = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
TOOL = os.path.join(REPO, "bench", "bench_tool.py")
GEN = os.path.join(REPO, "bench", "gen")

# A general log as the server writes it: two connections interleaved, a
# statement spanning lines, the log switched off by a client of its own.
GENERAL_LOG = (
    b"/usr/sbin/mariadbd, Version: 10.11.19-MariaDB-0+deb12u1 (Debian 12). started with:\n"
    b"Tcp port: 3399  Unix socket: /tmp/db/mariadb.sock\n"
    b"Time\t\t    Id Command\tArgument\n"
    b"261123 23:46:30\t  7781 Quit\t\n"
    b"\t\t  7782 Connect\tcorvana@127.0.0.1 on  using TCP/IP\n"
    b"\t\t  7782 Init DB\tjob_db\n"
    b"\t\t  7782 Query\tSET SESSION sql_mode='NO_ENGINE_SUBSTITUTION'\n"
    b"\t\t  7782 Query\tSELECT @@GLOBAL.sql_mode\n"
    b"\t\t  7790 Query\tselect 1 from other_db\n"
    b"\t\t  7782 Query\tinsert into record_entry (notes) values ('Data imported\n"
    b"----------\n"
    b"\tClinical summary: caf\xe9')\n"
    b"261123 23:46:31\t  7782 Query\tselect id from patient where notes like '%12'\n"
    b"\t\t  7783 Connect\tcorvana@127.0.0.1 on job_db using TCP/IP\n"
    b"\t\t  7783 Query\tset global general_log=0\n"
)


def run_tool(*args):
    return subprocess.run([sys.executable, TOOL] + list(args), capture_output=True)


def stream_entries(data):
    """The (kind, statement) pairs of a replay stream."""
    entries = []
    while data:
        header, data = data.split(b"\n", 1)
        kind, length = header.split(b" ")
        entries.append((kind, data[:int(length)]))
        assert data[int(length):int(length) + 1] == b"\n"
        data = data[int(length) + 1:]
    return entries


class CaptureTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.log = os.path.join(self.dir.name, "general.log")
        self.stream = os.path.join(self.dir.name, "stream")
        with open(self.log, "wb") as f:
            f.write(GENERAL_LOG)

    def tearDown(self):
        self.dir.cleanup()

    def test_takes_the_jobs_connection_whole_and_in_order(self):
        result = run_tool("capture", self.log, "job_db", "2", self.stream)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.strip(), b"5")
        with open(self.stream, "rb") as f:
            entries = stream_entries(f.read())
        self.assertEqual(entries, [
            (b"D", b"job_db"),
            (b"Q", b"SET SESSION sql_mode='NO_ENGINE_SUBSTITUTION'"),
            (b"Q", b"SELECT @@GLOBAL.sql_mode"),
            (b"Q", b"insert into record_entry (notes) values ('Data imported\n----------\n"
                   b"\tClinical summary: caf\xe9')"),
            (b"Q", b"select id from patient where notes like '%12'"),
        ])

    def test_refuses_a_log_that_lacks_statements_the_program_sent(self):
        result = run_tool("capture", self.log, "job_db", "3", self.stream)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(b"holds 2 of the job's statements", result.stderr)

    def test_refuses_a_database_no_connection_selected(self):
        self.assertNotEqual(run_tool("capture", self.log, "other_db", "1", self.stream).returncode, 0)


class SummaryTest(unittest.TestCase):
    def test_adds_up_the_rows_and_reads_the_statement_counts(self):
        text = (b"a notice first\n== Summary of KWRC - patient - 2012\nRows written:\n"
                b"  patient                      18 inserted       36 updated\n"
                b"  problems                     31 inserted\n"
                b"Statements: 148 sent, 1 failed\nLog lines reporting an error or a warning: 7\nWall time: 0.26 s\n")
        with tempfile.NamedTemporaryFile() as f:
            f.write(text)
            f.flush()
            result = run_tool("summary", f.name)
        self.assertEqual(result.stdout.split(), [b"85", b"148", b"1"])


class TablesTest(unittest.TestCase):
    # job, scale, bytes, size, user, sys, wall, max RSS kB, rows, sent, failed,
    # replay: statements, failed, user, sys, wall
    RUNS = ["KWRC patient\t1\t3682937\t20000 cases\t1.0\t4.0\t25.0\t8000\t96199\t100000\t869"
            "\t100003\t0\t0.5\t3.5\t20.0",
            "KWRC patient\t2\t7365874\t40000 cases\t2.0\t8.5\t52.0\t8100\t192398\t200000\t1738"
            "\t-\t-\t-\t-\t-"]

    def run_on_results(self, command):
        with tempfile.NamedTemporaryFile("w") as f:
            f.write("\n".join(self.RUNS) + "\n")
            f.flush()
            result = run_tool(command, f.name)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout.decode().splitlines()

    def test_job_table_ratios(self):
        first = re.split(r"\s{2,}", self.run_on_results("table")[2])
        # wall 25 s over replay 20 s; own CPU 5 s is 20%; 1 s more CPU than the
        # replay over 100,000 statements is 10 us each and a CPU ratio of 21/20.
        self.assertEqual(first, ["KWRC patient", "x1", "20000 cases", "3.7 MB", "96199", "100000 (869 failed)",
                                 "25.0", "4000", "20.0%", "8.2 MB", "20.0", "20.0%", "1.250", "+10.0", "1.050"])

    def test_growth_factors(self):
        row = re.split(r"\s{2,}", self.run_on_results("growth")[2])
        self.assertEqual(row, ["KWRC patient", "25.0 s, 5.0 s, 8.2 MB", "52.0 s, 10.5 s, 8.3 MB", "2.08 2.10 1.01"])


class RttTableTest(unittest.TestCase):
    # job, rows, statements, wall s: plain and atomic directly, plain and
    # atomic through the proxy; the second job ended within the timer's
    # resolution when direct.
    RESULTS = ("KWRC patient\t1255\t1310\t0.16\t0.20\t27.42\t26.90\n"
               "DsWC address_book\t30\t32\t0.00\t0.00\t0.71\t0.70\n")

    def test_columns_and_the_atomic_runs_ratio(self):
        with tempfile.NamedTemporaryFile("w") as f:
            f.write(self.RESULTS)
            f.flush()
            result = run_tool("rtt", f.name, "20")
        self.assertEqual(result.returncode, 0, result.stderr)
        lines = result.stdout.decode().splitlines()
        self.assertEqual(re.split(r"\s{2,}", lines[0].strip()),
                         ["job", "rows", "statements", "plain 0 ms", "atomic 0 ms", "plain 20 ms", "atomic 20 ms",
                          "atomic 20 ms / atomic 0 ms"])
        self.assertEqual([re.split(r"\s{2,}", line.strip()) for line in lines[2:]], [
            ["KWRC patient", "1255", "1310", "0.16 s", "0.20 s", "27.42 s", "26.90 s", "134.5x"],
            ["DsWC address_book", "30", "32", "0.00 s", "0.00 s", "0.71 s", "0.70 s", "-"],
        ])


class TinyScaleTablesTest(unittest.TestCase):
    """At --scale 0.01 a job can end within /usr/bin/time's resolution: a wall
    time, CPU time or replay time of 0.00 prints "-" where a ratio needs it."""

    # The same fields as TablesTest.RUNS: a job and its replay both measured
    # at 0.00 s, then a job of no statements at all, at two sizes.
    RUNS = ["CSAQ_FF invert_species_groups\t0.01\t310\t200 animals\t0.00\t0.00\t0.00\t7900\t2\t11\t0"
            "\t13\t0\t0.00\t0.00\t0.00",
            "HWC none\t0.01\t0\t1 lines\t0.00\t0.00\t0.01\t7800\t0\t0\t0\t2\t0\t0.00\t0.00\t0.01",
            "HWC none\t0.02\t0\t1 lines\t0.00\t0.00\t0.00\t7800\t0\t0\t0\t-\t-\t-\t-\t-"]

    def run_on_results(self, command):
        with tempfile.NamedTemporaryFile("w") as f:
            f.write("\n".join(self.RUNS) + "\n")
            f.flush()
            result = run_tool(command, f.name)
        self.assertEqual(result.returncode, 0, result.stderr)
        return [re.split(r"\s{2,}", line) for line in result.stdout.decode().splitlines()[2:]]

    def test_ratios_that_cannot_be_computed_print_a_dash(self):
        cases = [  # table, row: the expected row
            ("table", 0, ["CSAQ_FF invert_species_groups", "x0.01", "200 animals", "0.0 MB", "2", "11 (0 failed)",
                          "0.0", "-", "-", "8.1 MB", "0.0", "-", "-", "+0.0", "-"]),
            ("table", 1, ["HWC none", "x0.01", "1 lines", "0.0 MB", "0", "0 (0 failed)", "0.0", "0", "0.0%",
                          "8.0 MB", "0.0", "0.0%", "1.000", "-", "1.000"]),
            ("growth", 1, ["HWC none", "0.0 s, 0.0 s, 8.0 MB", "0.0 s, 0.0 s, 8.0 MB", "0.00 - 1.00"]),
            ("growth", 0, ["CSAQ_FF invert_species_groups", "0.0 s, 0.0 s, 8.1 MB", ""]),
        ]
        for command, index, expected in cases:
            with self.subTest(command=command, row=index):
                self.assertEqual(self.run_on_results(command)[index], expected)


def generate(script, out, *args):
    subprocess.run([sys.executable, os.path.join(GEN, script), "--seed", "7", "--out", out] + list(args),
                   check=True, capture_output=True)


def read(path):
    with open(path, "rb") as f:
        return f.read()


class GeneratorTest(unittest.TestCase):
    """Each generator: the same arguments give the same bytes, lines end in
    CR LF, and the records are the sample's with fresh keys."""

    CASES = [  # script, count option, a file it writes, key column, other fresh columns, sample file
        ("kwrc_gen.py", "--cases", "KWRC_2012.txt", 0, (), "kwrc/KWRC_2012.txt"),
        ("glfh_gen.py", "--lines", "GLFH_Patients.txt", 4, (), "glfh/GLFH_Patients.txt"),
        ("uprc_gen.py", "--lines", "UPRC 2012.txt", 0, (), "uprc/UPRC 2012.txt"),
        ("dswc_gen.py", "--admissions", "2011Admissions.txt", 0, (), "dswc/2011Admissions.txt"),
        ("sbr_gen.py", "--lines", "SBR_LA.txt", 0, (69, 71), "sbr/SBR_LA.txt"),  # band, colour marker
    ]

    def test_tab_files(self):
        for script, option, name, key, fresh_columns, sample in self.CASES:
            with self.subTest(script=script), tempfile.TemporaryDirectory() as a, \
                    tempfile.TemporaryDirectory() as b:
                generate(script, a, option, "300")
                generate(script, b, option, "300")
                data = read(os.path.join(a, name))
                self.assertEqual(data, read(os.path.join(b, name)))
                lines = data.split(b"\r\n")
                self.assertEqual(lines[-1], b"")
                self.assertNotIn(b"\n", b"".join(lines))
                sample_lines = read(os.path.join(REPO, "samples", sample)).split(b"\r\n")
                headers = 2 if script == "dswc_gen.py" else 1
                self.assertEqual(lines[:headers], sample_lines[:headers])
                body = lines[headers:-1]
                self.assertEqual(len(body), 300)
                # Without the fresh columns every line is a line of the sample.
                strip = lambda line: tuple(c for i, c in enumerate(line.split(b"\t"))
                                           if i != key and i not in fresh_columns)
                known = {strip(line) for line in sample_lines[headers:]}
                self.assertTrue(all(strip(line) in known for line in body))
                # Keys the sample does not hold are fresh: most, and none twice.
                key_of = lambda line: line.split(b"\t")[key] if line.count(b"\t") >= key else None
                sample_keys = {key_of(line) for line in sample_lines[headers:]}
                fresh = [key_of(line) for line in body if key_of(line) not in sample_keys]
                self.assertGreater(len(fresh), len(body) // 2)
                self.assertEqual(len(set(fresh)), len(fresh), "fresh keys repeat")

    def test_sbr_necropsy_names_generated_cases_and_keeps_its_stop_at_the_end(self):
        with tempfile.TemporaryDirectory() as out:
            generate("sbr_gen.py", out, "--lines", "200")
            cases = {line.split(b"\t")[0] for line in read(os.path.join(out, "SBR_LA.txt")).split(b"\r\n")[1:]}
            lines = read(os.path.join(out, "Necropsy.txt")).split(b"\r\n")[1:-1]
            short = [i for i, line in enumerate(lines) if line.count(b"\t") < 52]
            self.assertEqual(short, [len(lines) - 2])
            named = [line.split(b"\t")[5] for line in lines[:-2]]
            self.assertGreater(sum(case in cases for case in named), len(named) * 3 // 4)

    def test_csaq_ff_copies_keep_their_references(self):
        with tempfile.TemporaryDirectory() as out:
            generate("csaq_ff_gen.py", out, "--animals", "100")
            text = lambda name: read(os.path.join(out, name)).decode("latin-1")
            tags = set(re.findall(r"<Identity_x0020__x0020_Tag>([^<]*)<", text("Groups.xml")))
            husbandry = set(re.findall(r"<Identity_x0020__x0020_Tag>([^<]*)<", text("Husbandry.xml")))
            self.assertTrue(all(re.search(r" \d{5}$", tag) for tag in tags))
            lower = {t.lower() for t in tags}
            self.assertGreater(len([t for t in husbandry if t.lower() in lower]), len(husbandry) // 2)
            strandings = re.findall(r"<StrandingNumber>([^<]*)<", text("SeaTurtleRehabRecords.xml"))
            self.assertEqual(len(strandings), len(set(strandings)))
            turtles = re.findall(r"<Turtle>Loggerhead ([^<]*)<", text("LoggerHeadDailyLogs.xml"))
            self.assertTrue(any(s.endswith(t) for t in turtles for s in strandings))
            self.assertEqual(text("Habitats.xml"), read(os.path.join(REPO, "samples", "csaq_ff",
                                                                     "Habitats.xml")).decode("latin-1"))


if __name__ == "__main__":
    unittest.main()
