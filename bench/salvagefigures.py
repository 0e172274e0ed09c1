#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Salvage figures: how many pages 'lxdoc salvage' brings back from cut and
byte-flipped archives.

    bench/salvagefigures.py BINDIR [--cuts N] [--flips N]

BINDIR holds lxdoc, ziplib.so and lxdoc-crashhost (a build's bin folder).
Two lessons are measured: the demo lesson and a 60-page lesson written by
lxdoc-crashhost. Each is cut at N offsets spread over its length, and
separately has one byte flipped inside an entry's data at N places. A page
counts as expected when its page file's entry lies wholly before the cut (or
does not hold the flipped byte); it counts as recovered when the salvaged
lesson lists it. Prints a Markdown table.
"""
import argparse
import os
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import zipfile


def entry_spans(path):
    """(name, first byte, end) of every entry, local header to data end."""
    blob = open(path, 'rb').read()
    spans = []
    with zipfile.ZipFile(path) as archive:
        for info in archive.infolist():
            start = info.header_offset
            name_len, extra_len = struct.unpack('<HH', blob[start + 26:start + 30])
            data = start + 30 + name_len + extra_len
            end = data + info.compress_size
            if info.flag_bits & 0x08:
                end += 16 if blob[end:end + 4] == b'PK\x07\x08' else 12
            spans.append((info.filename, start, data, end))
    return spans


def page_spans(spans):
    return {name: (start, data, end) for name, start, data, end in spans
            if name.startswith('page') and name.endswith('.svg')}


def listed_pages(path):
    try:
        with zipfile.ZipFile(path) as archive:
            manifest = archive.read('manifest.xml').decode('utf-8')
    except (OSError, KeyError, zipfile.BadZipFile):
        return set()
    import xml.etree.ElementTree as tree
    root = tree.fromstring(manifest)
    for resource in root.findall('resource'):
        if resource.get('identifier') == 'pages':
            return {f.get('href') for f in resource.findall('file')}
    return set()


def snapshot(folder):
    return {os.path.join(d, f) for d, _, files in os.walk(folder) for f in files}


class Measure:
    def __init__(self, bindir, work):
        self.bindir, self.work = bindir, work
        self.rows = []

    def salvage(self, blob, expected):
        broken = os.path.join(self.work, 'broken.lzn')
        output = os.path.join(self.work, 'out.lzn')
        open(broken, 'wb').write(blob)
        if os.path.exists(output):
            os.remove(output)
        before = snapshot(self.work) | snapshot(os.path.join(self.bindir, 'Temp'))
        run = subprocess.run([os.path.join(self.bindir, 'lxdoc'), 'salvage', broken, output],
                             capture_output=True, timeout=120)
        after = snapshot(self.work) | snapshot(os.path.join(self.bindir, 'Temp'))
        stray = after - before - {output}
        crashed = run.returncode not in (0, 1, 3)
        recovered = listed_pages(output) if run.returncode != 1 else set()
        return len(expected & recovered), crashed, len(stray)

    def lesson(self, label, path, cuts, flips, seed):
        blob = open(path, 'rb').read()
        spans = entry_spans(path)
        pages = page_spans(spans)
        rng = random.Random(seed)
        offsets = [max(1, (i + 1) * len(blob) // (cuts + 1) + rng.randint(-20, 20)) for i in range(cuts)]
        self.row(label, len(blob), len(pages), 'cut', [
            (blob[:cut], {n for n, (_, _, end) in pages.items() if end <= cut}) for cut in offsets])
        places = []
        for _ in range(flips):
            name, start, data, end = rng.choice([s for s in spans if s[3] > s[2]])
            places.append(rng.randrange(data, end))
        cases = []
        for place in places:
            damaged = bytearray(blob)
            damaged[place] ^= 0xFF
            cases.append((bytes(damaged), {n for n, (start, _, end) in pages.items() if not start <= place < end}))
        self.row(label, len(blob), len(pages), 'byte flipped in an entry', cases)

    def row(self, label, size, pages, damage, cases):
        expected = recovered = crashes = stray = 0
        for blob, wanted in cases:
            got, crashed, strays = self.salvage(blob, wanted)
            expected += len(wanted)
            recovered += got
            crashes += crashed
            stray += strays
        share = 100.0 * recovered / expected if expected else 100.0
        self.rows.append((label, size, pages, damage, len(cases), expected, recovered, share, crashes, stray))

    def table(self):
        lines = ['| lesson | bytes | pages | damage | runs | pages expected | pages recovered | share | crashes | stray files |',
                 '|---|---|---|---|---|---|---|---|---|---|']
        for label, size, pages, damage, runs, expected, recovered, share, crashes, stray in self.rows:
            lines.append(f'| {label} | {size} | {pages} | {damage} | {runs} | {expected} | {recovered} '
                         f'| {share:.1f} % | {crashes} | {stray} |')
        return '\n'.join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('bindir')
    parser.add_argument('--cuts', type=int, default=120)
    parser.add_argument('--flips', type=int, default=60)
    args = parser.parse_args()
    bindir = os.path.abspath(args.bindir)
    work = tempfile.mkdtemp(prefix='salvagefigures-')
    try:
        demo = os.path.join(work, 'demo.lzn')
        subprocess.run([os.path.join(bindir, 'lxdoc'), 'demo', demo], check=True, capture_output=True)
        long_lesson = os.path.join(work, 'long.lzn')
        subprocess.run([os.path.join(bindir, 'lxdoc-crashhost'), 'salvagefigures', '60', long_lesson],
                       check=True, capture_output=True, env=dict(os.environ, QT_QPA_PLATFORM='offscreen'))
        for name in os.listdir(work):
            if name != 'demo.lzn' and name != 'long.lzn':
                path = os.path.join(work, name)
                shutil.rmtree(path) if os.path.isdir(path) else os.remove(path)
        measure = Measure(bindir, work)
        measure.lesson('demo', demo, args.cuts, args.flips, 1)
        measure.lesson('60 pages', long_lesson, args.cuts, args.flips, 2)
        print(measure.table())
    finally:
        shutil.rmtree(work)
    return 0


if __name__ == '__main__':
    sys.exit(main())
