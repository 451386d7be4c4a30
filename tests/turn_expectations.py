#!/usr/bin/env python3
"""Turns each expectation of the tables into its opposite, one at a time, and sees that its case fails.

A number is raised by one, a text gets a word in front, and what an output must lack is the empty
text, which is in all. What a case is given stays as it is. Printed are how many failed of each
table, and each that did not.
"""
import argparse
import collections
import os
import pathlib
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

CASES = pathlib.Path(__file__).resolve().parent / 'cases'
# What a case is given; all other keys are expectations.
GIVEN = set('''run needs setup then options by words allowed text base switches level stream table names
pattern group references reader output ports controllers'''.split())


def turned(key, value):
    """The key, with a value that holds where `value` does not."""
    if key == 'lacks':
        return key, '\\e'
    return key, str(int(value) + 1) if value.isdigit() else ('turned ' + value).rstrip()


def in_row(line, columns):
    """The row with each of its expectations turned, one at a time."""
    cells = line[1:].split(line[0])
    for i, cell in enumerate(cells):
        if columns[i] not in GIVEN and cell.strip():
            yield line[0] + line[0].join(cells[:i] + [turned('', cell.strip())[1]] + cells[i + 1:])


def in_key_line(line):
    """The same of a line "key: value"; a number for a key is a status."""
    key, value = line.split(':', 1)
    if key.isdigit():
        yield turned('', key)[1] + ':' + value
    elif key not in GIVEN:
        yield ': '.join(turned(key, value.strip()))


def turns(path):
    """Each turned line of a table: its number, that of its case, and the line."""
    columns, case = None, None
    for number, line in enumerate(path.read_text().split('\n'), 1):
        if line[:1] in ('|', '~'):
            cells = [cell.strip() for cell in line[1:].split(line[0])]
            is_head = columns is None or cells[0] == columns[0]
            columns = cells if is_head else columns
            yield from ((number, number, new) for new in ([] if is_head else in_row(line, columns)))
        elif re.match('[a-z0-9_]+:', line):
            case = case or number
            yield from ((number, case, new) for new in in_key_line(line))
        elif not line:
            case = None


def outcome(tests, path, number, case, line):
    """What becomes of the case with this line in place of the one of that number."""
    with tempfile.TemporaryDirectory() as folder:
        for each in CASES.iterdir():
            os.symlink(each, pathlib.Path(folder, each.name))
        lines = path.read_text().split('\n')
        lines[number - 1] = line
        pathlib.Path(folder, path.name).unlink()
        pathlib.Path(folder, path.name).write_text('\n'.join(lines))
        done = subprocess.run([tests, f'--gtest_filter=*.{path.stem}/{case}'], check=False,
                              env=dict(os.environ, CNATOOL_CASES=folder), stdin=subprocess.DEVNULL,
                              capture_output=True, encoding='utf-8', errors='replace')
    if re.search(r'Running 0 tests|^\w+\.txt:\d+: ', done.stdout, re.M):
        return 'malformed'
    if 'SKIPPED' in done.stdout:
        return 'skipped'
    return 'failed' if done.returncode else 'PASSED'


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n', maxsplit=1)[0])
    parser.add_argument('build', type=pathlib.Path, help='where the tests are built')
    parser.add_argument('tables', nargs='*', help='such as runs.txt; all without it')
    parser.add_argument('--workers', type=int, default=2)
    options = parser.parse_args()
    tests = options.build.resolve() / 'tests/cnatool_tests'
    bad = False
    for path in sorted(CASES / name for name in options.tables or os.listdir(CASES)):
        with ThreadPoolExecutor(options.workers) as pool:
            all_turns = list(turns(path))
            outcomes = list(pool.map(lambda turn: outcome(tests, path, *turn), all_turns))
        for (number, _, line), result in zip(all_turns, outcomes):
            if result in ('PASSED', 'malformed'):
                bad = True
                print(f'{path.name}:{number}: {result}: {line}')
        counts = collections.Counter(outcomes)
        print(f'{path.name:20}', ', '.join(f'{n} {what}' for what, n in sorted(counts.items())), flush=True)
    return 1 if bad else 0


if __name__ == '__main__':
    sys.exit(main())
