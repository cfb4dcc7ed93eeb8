#!/usr/bin/env python3
"""The parts of scripts/bench.sh that read text: the server's general log,
the program's summary on stderr, and the tables it prints.

    bench_tool.py capture GENERAL_LOG DATABASE SENT STREAM
        Writes the statements of the connection that selected DATABASE, in
        order and from its first statement on (the session setup and the
        SELECTs included), as the stream bench/replay.c reads. Prints the
        number of statements written; fails when the job's statements in the
        log are not the SENT the program counted (statements the program
        refused before sending are counted failed, not sent, and are not in
        the log either).
    bench_tool.py summary STDERR_FILE
        Prints "ROWS STATEMENTS FAILED" from the program's "== Summary of"
        block (rows: all rows inserted, updated and deleted).
    bench_tool.py table RESULTS_TSV
        Prints the job table of the runs recorded in RESULTS_TSV.
    bench_tool.py growth RESULTS_TSV
        Prints how wall time, own CPU time and peak memory grow from each
        size of a job to the next.
    bench_tool.py rtt RTT_TSV MS
        Prints the table of scripts/bench.sh --rtt MS: per job, the plain and
        the -atomic run's wall times directly and through the delaying proxy,
        and how much longer the atomic run took through it.

RESULTS_TSV has one line per measured run, written by scripts/bench.sh:
job, scale, input bytes, input size in words ("20000 cases"), user s, system s, wall s, max RSS kB,
and the program's summary (rows, statements, failed), then the replay's
statements, failed, user s, system s and wall s ("-" without a replay).
RTT_TSV has one line per job: job, rows, statements, then the wall seconds
of the plain and the atomic run directly, and of the two through the proxy.

Standard library only.
"""

import re
import sys

# An entry of the general log file: "YYMMDD HH:MM:SS" or nothing, tabs, the
# connection id, the command and, after a tab, its argument. Lines that do not
# start so continue the argument of the entry before (a statement holding
# line ends).
ENTRY = re.compile(rb"^(?:\d{6}\s+\d{1,2}:\d\d:\d\d)?\t+ *(\d+) (Connect|Query|Init DB|Quit|Prepare|Execute|"
                   rb"Close stmt|Reset stmt|Field List|Ping|Statistics|Change user|Set option|"
                   rb"Processlist|Refresh|Shutdown|Long Data|Fetch|Kill|Debug|Binlog Dump|Daemon)\t?(.*)$")


def read_entries(path):
    """The general log's entries as [connection id, command, argument bytes]."""
    entries = []
    with open(path, "rb") as f:
        for raw in f:
            line = raw[:-1] if raw.endswith(b"\n") else raw
            m = ENTRY.match(line)
            if m:
                entries.append([int(m.group(1)), m.group(2).decode(), m.group(3)])
            elif entries:
                entries[-1][2] += b"\n" + line
    return entries


# The connection's own setup, sent before the job's first statement and not
# counted among the job's statements.
SESSION_SETUP = (b"SET SESSION sql_mode=", b"SELECT @@GLOBAL.sql_mode")


def capture(log, database, sent, stream):
    entries = read_entries(log)
    # The program connects without a database and then selects it: that
    # tells its connection from the mariadb client's that switched the log.
    ids = {e[0] for e in entries if e[1] == "Init DB" and e[2] == database.encode()}
    if len(ids) != 1:
        sys.exit("bench_tool: expected one connection to %s in %s, found %d" % (database, log, len(ids)))
    (connection,) = ids
    count = job_statements = 0
    with open(stream, "wb") as out:
        for conn, command, argument in entries:
            if conn != connection or command not in ("Query", "Init DB"):
                continue
            kind = b"Q" if command == "Query" else b"D"
            out.write(kind + b" %d\n" % len(argument) + argument + b"\n")
            count += 1
            if kind == b"Q" and not argument.startswith(SESSION_SETUP):
                job_statements += 1
    if job_statements != int(sent):
        sys.exit("bench_tool: the general log holds %d of the job's statements, the program counted %s sent"
                 % (job_statements, sent))
    print(count)


def summary(path):
    with open(path, "rb") as f:
        text = f.read().decode("latin-1")
    at = text.rfind("== Summary of")
    if at < 0:
        sys.exit("bench_tool: no summary in %s" % path)
    block = text[at:]
    rows = sum(int(n) for n in re.findall(r"(\d+) (?:inserted|updated|deleted)", block))
    m = re.search(r"Statements: (\d+) sent, (\d+) failed", block)
    print(rows, m.group(1), m.group(2))


def read_results(path):
    runs = []
    with open(path) as f:
        for line in f:
            fields = line.rstrip("\n").split("\t")
            if len(fields) < 16:
                continue
            num = lambda s: None if s == "-" else float(s)
            runs.append({
                "job": fields[0], "scale": float(fields[1]), "bytes": int(fields[2]), "records": fields[3],
                "user": float(fields[4]), "sys": float(fields[5]), "wall": float(fields[6]),
                "rss": int(fields[7]), "rows": int(fields[8]), "statements": int(fields[9]),
                "failed": int(fields[10]), "r_statements": num(fields[11]), "r_failed": num(fields[12]),
                "r_user": num(fields[13]), "r_sys": num(fields[14]), "r_wall": num(fields[15])})
    return runs


def print_table(header, rows):
    widths = [max(len(str(r[i])) for r in [header] + rows) for i in range(len(header))]
    line = lambda r: "  ".join(str(c).rjust(w) if i else str(c).ljust(w) for i, (c, w) in enumerate(zip(r, widths)))
    print(line(header))
    print("  ".join("-" * w for w in widths))
    for r in rows:
        print(line(r))


def mb(n):
    return "%.1f MB" % (n / 1e6)


def quotient(form, numerator, denominator):
    """numerator / denominator in `form`, or "-" when the denominator is not
    above zero: a run too short for /usr/bin/time to measure (small scales)
    has a wall time of 0.00."""
    return form % (numerator / denominator) if denominator > 0 else "-"


def table(path):
    rows = []
    for run in read_results(path):
        cpu = run["user"] + run["sys"]
        row = [run["job"], "x%g" % run["scale"], run["records"], mb(run["bytes"]), run["rows"],
               "%d (%d failed)" % (run["statements"], run["failed"]), "%.1f" % run["wall"],
               quotient("%.0f", run["statements"], run["wall"]), quotient("%.1f%%", 100 * cpu, run["wall"]),
               mb(run["rss"] * 1024)]
        if run["r_wall"] is not None:
            rcpu = run["r_user"] + run["r_sys"]
            # The program waits for each answer before it goes on, so CPU it
            # spends beyond the replay's adds to its wall time one for one:
            # this estimate of the ratio holds when other load on the machine
            # makes the wall times of two runs differ by more than that.
            extra = cpu - rcpu
            row += ["%.1f" % run["r_wall"], quotient("%.1f%%", 100 * rcpu, run["r_wall"]),
                    quotient("%.3f", run["wall"], run["r_wall"]),
                    quotient("%+.1f", 1e6 * extra, run["statements"]),
                    quotient("%.3f", run["r_wall"] + extra, run["r_wall"])]
        else:
            row += ["-", "-", "-", "-", "-"]
        rows.append(row)
    print_table(["job", "scale", "generated", "input", "rows written", "statements sent", "wall s", "stmt/s", "own CPU",
                 "peak RSS", "replay s", "replay CPU", "ratio", "extra CPU us/stmt", "CPU ratio"], rows)


def growth(path):
    """Per job: each size's wall time, own CPU and peak memory, then the
    factors from one size to the next. Own CPU follows the program's work even
    when other processes share the machine; wall time also holds the server's."""
    by_job = {}
    for run in read_results(path):
        by_job.setdefault(run["job"], []).append(run)
    rows = []
    ratio = lambda b, a: quotient("%.2f", b, a)
    for job, runs in by_job.items():
        runs.sort(key=lambda r: r["scale"])
        row = [job]
        for run in runs:
            row.append("%.1f s, %.1f s, %s" % (run["wall"], run["user"] + run["sys"], mb(run["rss"] * 1024)))
        for a, b in zip(runs, runs[1:]):
            row.append("%s %s %s" % (ratio(b["wall"], a["wall"]), ratio(b["user"] + b["sys"], a["user"] + a["sys"]),
                                     ratio(b["rss"], a["rss"])))
        rows.append(row)
    sizes = max((len(by_job[r[0]]) for r in rows), default=0)
    rows = [r + [""] * (2 * sizes - len(r)) for r in rows]
    scales = sorted({run["scale"] for runs in by_job.values() for run in runs})
    header = (["job"] + ["x%g: wall, CPU, peak" % s for s in scales[:sizes]] +
              ["x%g/x%g: wall CPU peak" % (b, a) for a, b in zip(scales, scales[1:])][:sizes - 1])
    print_table(header, rows)


def rtt(path, ms):
    rows = []
    with open(path) as f:
        for line in f:
            fields = line.rstrip("\n").split("\t")
            if len(fields) < 7:
                continue
            walls = [float(w) for w in fields[3:7]]
            rows.append([fields[0], fields[1], fields[2]] + ["%.2f s" % w for w in walls] +
                        [quotient("%.1fx", walls[3], walls[1])])
    print_table(["job", "rows", "statements", "plain 0 ms", "atomic 0 ms", "plain %s ms" % ms, "atomic %s ms" % ms,
                 "atomic %s ms / atomic 0 ms" % ms], rows)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    command, args = sys.argv[1], sys.argv[2:]
    if command == "capture" and len(args) == 4:
        capture(*args)
    elif command == "summary" and len(args) == 1:
        summary(*args)
    elif command == "table" and len(args) == 1:
        table(*args)
    elif command == "growth" and len(args) == 1:
        growth(*args)
    elif command == "rtt" and len(args) == 2:
        rtt(*args)
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
