"""Sample records as templates for the load-test generators.

The generators of bench/gen/ (other than csaq_pks_gen.py, which builds its
records from scratch) draw every record from the records of the organisation's
sample under samples/ and give it fresh keys. The synthetic input therefore
has the sample's shapes (column counts, quoting, date styles, text lengths)
and its bad lines at the sample's rate, since the bad lines are drawn like
the others. Files are written latin1 with CR LF line ends, as the samples are.

Standard library only.
"""

import argparse
import os
import re

REPO = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
SAMPLES = os.path.join(REPO, "samples")


def sample_path(*parts):
    return os.path.join(SAMPLES, *parts)


def read_lines(path):
    """Lines of a sample text file without their line ends (latin1 text)."""
    with open(path, "rb") as f:
        text = f.read().decode("latin-1")
    lines = text.split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    return [line[:-1] if line.endswith("\r") else line for line in lines]


class LineWriter:
    """A text file written in CR LF lines, buffered."""

    def __init__(self, path):
        self.file = open(path, "wb")
        self.parts = []

    def line(self, text):
        self.parts.append(text)
        if len(self.parts) > 20000:
            self.flush()

    def flush(self):
        if self.parts:
            self.file.write(("\r\n".join(self.parts) + "\r\n").encode("latin-1"))
        self.parts = []

    def close(self):
        self.flush()
        self.file.close()


class XmlTable:
    """One exported XML table of a sample: the text before the first record,
    the records (each the whole <Table>...</Table> element, CR LF kept
    inside) and the text after the last one."""

    def __init__(self, path, table):
        with open(path, "rb") as f:
            text = f.read().decode("latin-1")
        pattern = re.compile(r"<%s>.*?</%s>\r\n" % (re.escape(table), re.escape(table)), re.S)
        matches = list(pattern.finditer(text))
        self.head = text[:matches[0].start()]
        self.tail = text[matches[-1].end():]
        self.records = [m.group(0) for m in matches]

    def write(self, path, records):
        with open(path, "wb") as f:
            f.write(self.head.encode("latin-1"))
            chunk = []
            for record in records:
                chunk.append(record)
                if len(chunk) > 20000:
                    f.write("".join(chunk).encode("latin-1"))
                    chunk = []
            f.write("".join(chunk).encode("latin-1"))
            f.write(self.tail.encode("latin-1"))


def element_text(record, name):
    """The text of the record's first <name> element, or None."""
    m = re.search(r"<%s>(.*?)</%s>" % (re.escape(name), re.escape(name)), record, re.S)
    return m.group(1) if m else None


def with_element_text(record, name, value):
    """The record with the text of its first <name> element replaced."""
    pattern = re.compile(r"(<%s>)(.*?)(</%s>)" % (re.escape(name), re.escape(name)), re.S)
    return pattern.sub(lambda m: m.group(1) + value + m.group(3), record, count=1)


def copy_file(source, out, name=None):
    with open(source, "rb") as f:
        data = f.read()
    with open(os.path.join(out, name or os.path.basename(source)), "wb") as f:
        f.write(data)


def scaled(count, sample_count, sample_total):
    """How many records of a side table go with `count` main records, at the
    sample's ratio of sample_count side records to sample_total main ones."""
    return max(1, round(count * sample_count / sample_total))


def parse_args(doc, counts):
    """The generators' common command line: one option per count (name,
    default, help), --seed and --out."""
    parser = argparse.ArgumentParser(description=doc.split("\n")[0])
    for name, default, text in counts:
        parser.add_argument("--" + name, type=int, default=default, help="%s (default %d)" % (text, default))
    parser.add_argument("--seed", type=int, default=1, help="random seed (default 1)")
    parser.add_argument("--out", required=True, help="output directory (created if missing)")
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    return args


def write_tab_file(sample, out_path, count, rng, rekey, header_lines=1):
    """Writes the sample's header lines and then `count` lines, each a random
    line of the sample cut at tabs and given to rekey(fields, n) with its
    number n from 1, which returns the fields to write. Returns the
    (template line number, fields written) of every line, for files that
    refer to these lines."""
    lines = read_lines(sample)
    templates = lines[header_lines:]
    writer = LineWriter(out_path)
    for header in lines[:header_lines]:
        writer.line(header)
    written = []
    for n in range(1, count + 1):
        which = rng.randrange(len(templates))
        fields = rekey(templates[which].split("\t"), n)
        writer.line("\t".join(fields))
        written.append((which, fields))
    writer.close()
    return written
