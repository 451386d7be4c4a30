#!/usr/bin/env python3
"""Puts one small fault at a time into a copy of the sources and names those that no test notices.

Each worker builds, without optimisation, and tests a copy of its own; the checkout stays as it is.
A fault that does not compile gives its place to the next. A test that fails is run once more, and
counts if it fails again. The same seed draws the same faults.
"""
import argparse
import collections
import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import threading
from concurrent.futures import ThreadPoolExecutor

HERE = pathlib.Path(__file__).resolve().parent.parent
WHOLE_RUNS = r'^(Run|Audit)\.'  # they come last: what a cheaper test notices is settled before
# Where a fault can be: a group of these in code whose texts are blanked out.
PLACES = {'comparison': r' (==|!=|<=|>=|<|>) ',
          'logic': r' (&&|\|\|) |\b(true|false)\b',
          'constant': r'(?<![\w.])(?<!Print\()(\d+)U?(?![\w.])',
          'level': r'\b(?:Print|print_\w+)\((\d)\b',
          'text': r'"([^"]+)"',
          'statement': r'^\s+((?=\S)(?!(?:return|using|case)\b)[^{}]*[(=+-][^{}]*;|break;|continue;)$',
          'row': r'^\s+(\w*\{.*\},)$'}
OTHERS = {'==': ['!='], '!=': ['=='], '<': ['<=', '>'], '<=': ['<'], '>': ['>=', '<'],
          '>=': ['>'], '&&': ['||'], '||': ['&&'], 'true': ['false'], 'false': ['true']}
# What nobody can see: what only a compiler says, releases behind which nothing comes, and start values
# (behind a type) that the first use of the name, as an address or in a line of the same depth, overwrites.
RELEASE = re.compile(r'\b(\w+_destroy|close|closedir|va_end)\(|^\s+\w+\.clear\(')
START_VALUE = re.compile(r'(\s+)(?!return)[\w:]+[ *&]+(\w+)(?:\[\w*\])? = [^(]*;$')
TEXT = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'|//.*')


def blanked(line):
    """The line with its texts filled with tildes, without comments."""
    def fill(match):
        return '' if match[0][0] == '/' else match[0][0] + '~' * (len(match[0]) - 2) + match[0][-1]
    return '' if line.lstrip().startswith('#') else TEXT.sub(fill, line).rstrip()


def changed(kind, old, rng):
    """What stands in place of `old`; the same where nothing fits."""
    if kind == 'statement':
        return ';'
    if kind == 'text':  # a letter that belongs to no escape or placeholder
        letters = [match.start() for match in re.finditer(r'(?<![\\%\d*])[A-Za-z>:=]', old)]
        at = rng.choice(letters or [len(old)])
        return old[:at] + 'X' * bool(letters) + old[at + 1:]
    if kind in ('constant', 'level'):
        low, high = (1, 6) if kind == 'level' else (0, sys.maxsize)
        return str(rng.choice([n for n in (int(old) - 1, int(old) + 1) if low <= n <= high]))
    return rng.choice(OTHERS[old]) if old in OTHERS else old


def exchanged(row, follower):
    """Both rows in the other order, or the first alone where keys that differ leave that free."""
    keys = [re.match(r'\s+\{[^"]*"([^"]*)"', line) for line in (row, follower)]
    free = all(keys) and keys[0][1] not in keys[1][1] and keys[1][1] not in keys[0][1]
    return [row] if free else [follower, row]


def is_unseen(code, number, kind):
    """Whether a fault of this kind changes nothing that anyone could notice."""
    if (kind == 'statement' and RELEASE.search(code[number]) or
            kind == 'text' and 'static_assert' in code[number]):
        return True
    start = START_VALUE.match(code[number])
    if not start:
        return False
    first = next(line for line in code[number + 1:] + [start[2]] if re.search(rf'\b{start[2]}\b', line))
    return bool(re.search(rf'&{start[2]}\b|^{start[1]}{start[2]} = ', first))


def faults(rng):
    """All faults in a drawn order: path, number of the first line, kind, old and new lines."""
    drawn = []
    for path in sorted(HERE.glob('src/**/*.[ch]*')):
        lines = path.read_text().split('\n')
        code = [blanked(line) for line in lines]
        for number, line in enumerate(lines):
            for kind, match in ((kind, match) for kind, pattern in PLACES.items()
                                for match in re.finditer(pattern, code[number])):
                start, end = match.span(match.lastindex)
                new = [line[:start] + changed(kind, line[start:end], rng) + line[end:]]
                if kind == 'row' and re.match(PLACES[kind], code[number + 1]):
                    new = exchanged(line, lines[number + 1])
                old = lines[number:number + len(new)]
                is_end = kind == 'statement' and not re.search(r'(^|[;{}:])$', code[number - 1])
                if new != old and not is_end and not is_unseen(code, number, kind):
                    drawn.append((path.relative_to(HERE), number, kind, old, new))
    rng.shuffle(drawn)
    return iter(drawn)


def succeeds(top, *command):
    """Whether a command succeeds, with its temporary files below `top`."""
    def limit():  # no fault may fill the machine
        for what, most in (('AS', 4 << 30), ('FSIZE', 256 << 20), ('CPU', 40), ('CORE', 0)):
            resource.setrlimit(getattr(resource, 'RLIMIT_' + what), (most, most))
    environment = dict(os.environ, TMPDIR=str(top), GTEST_BREAK_ON_FAILURE='1')
    return subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, check=False,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          preexec_fn=limit).returncode == 0


def failing(top, *selection):
    """The names of the tests that fail, the first of them if they are many."""
    if succeeds(top, 'ctest', '--test-dir', top / 'build', '--stop-on-failure', '--timeout', '150',
                *selection):
        return []
    log = (top / 'build/Testing/Temporary/LastTestsFailed.log').read_text().split()
    return [line.split(':', 1)[1] for line in log]


def verdict(top):
    """What becomes of the copy below `top` as it stands, and by which test."""
    if not succeeds(top, 'cmake', '--build', top / 'build'):
        return 'not compiled', ''
    passed_over = ['packaging']
    for only, but in (('.', [WHOLE_RUNS]), (WHOLE_RUNS, [])):
        while names := failing(top, '-R', only, '-E', '|'.join(passed_over + but)):
            if again := failing(top, '--rerun-failed'):
                return 'caught', again[0]
            passed_over += ['^' + re.escape(name) + '$' for name in names]
    return 'missed', ''


def work(top, drawn, count, results, lock):
    """Takes faults until `count` have been tried, on a copy of the sources of its own."""
    top = pathlib.Path(tempfile.mkdtemp(dir=top))
    shutil.copytree(HERE, top / 'tree', ignore=shutil.ignore_patterns('.git', 'build*'))
    succeeds(top, 'cmake', '-S', top / 'tree', '-B', top / 'build', '-DCMAKE_BUILD_TYPE=None',
             '-DCMAKE_CXX_FLAGS=-O0', '-DCNATOOL_TESTS=REQUIRED')
    if verdict(top)[0] != 'missed':
        print('Without a fault the sources do not build or pass.', file=sys.stderr)
        return
    while results['caught'] + results['missed'] < count:
        with lock:
            path, number, kind, old, new = next(drawn)
        text = (top / 'tree' / path).read_text()
        lines = text.split('\n')
        lines[number:number + len(new)] = new
        (top / 'tree' / path).write_text('\n'.join(lines))
        result, test = verdict(top)
        (top / 'tree' / path).write_text(text)
        with lock:
            results[result] += 1
            if result != 'not compiled':
                print(f'{path}:{number + 1}: {kind}: {result} {test}', *('- ' + line for line in old),
                      *('+ ' + line for line in new), sep='\n', flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n', maxsplit=1)[0])
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--count', type=int, default=100, help='faults that compile')
    parser.add_argument('--workers', type=int, default=1)
    options = parser.parse_args()
    results, lock = collections.Counter(), threading.Lock()
    drawn = faults(random.Random(options.seed))
    with tempfile.TemporaryDirectory() as top, ThreadPoolExecutor(options.workers) as pool:
        list(pool.map(lambda _: work(top, drawn, options.count, results, lock),
                      range(options.workers)))
    print(f'seed {options.seed}:', ', '.join(f'{n} {result}' for result, n in results.items()))
    return 1 if results['missed'] or not results['caught'] else 0


if __name__ == '__main__':
    sys.exit(main())
