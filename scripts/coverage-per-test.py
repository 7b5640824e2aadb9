#!/usr/bin/env python3
"""Which tests cover something that no other test covers.

Runs every test of the coverage build (made by scripts/coverage.sh) alone,
with its counters in a private directory, and reads them with gcov. Prints,
for each test, the lines and branches of src/ that only it covers, and then
the tests whose coverage the others keep entirely (largest first, so that
dropping all of them together loses nothing).

Usage: scripts/coverage-per-test.py [jobs]      (after scripts/coverage.sh)
"""
import collections, json, os, re, shutil, subprocess, sys, tempfile
from concurrent.futures import ThreadPoolExecutor

root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
build = os.path.join(root, 'build-coverage')
jobs = int(sys.argv[1]) if len(sys.argv) > 1 else os.cpu_count()


def list_tests():
    found = subprocess.check_output(['find', build + '/src', build + '/tests', '-type', 'f',
                                     '-name', '*_test', '-perm', '-u+x'], text=True).split()
    for program in found:
        suite = None
        for line in subprocess.check_output([program, '--gtest_list_tests'], text=True).splitlines():
            if not line.startswith(' '):
                suite = line.split()[0] if line.split()[0].endswith('.') else None
            elif suite:
                yield program, suite + line.split()[0]


def covered(test):
    """The "file:line" and "file:line:branch" ids that one test reaches."""
    program, name = test
    counters = tempfile.mkdtemp(prefix='quillmake-cov.')
    env = dict(os.environ, GCOV_PREFIX=counters, GCOV_PREFIX_STRIP='0')
    run = subprocess.run([program, '--gtest_filter=' + name], env=env, cwd=counters, capture_output=True)
    data = []
    for directory, _, files in os.walk(counters):
        for f in files:
            if f.endswith('.gcda'):
                gcda = os.path.join(directory, f)
                os.symlink(gcda[len(counters):-5] + '.gcno', gcda[:-5] + '.gcno')
                data.append(gcda)
    ids = set()
    output = subprocess.run(['gcov', '-j', '-t', '-b'] + data, cwd=counters, capture_output=True, text=True).stdout
    for document in filter(lambda d: d.startswith('{'), output.splitlines()):
        for f in json.loads(document)['files']:
            path = os.path.relpath(os.path.normpath(os.path.join(build, f['file'])), root)
            if not path.startswith('src/') or re.search(r'_test(\.cpp|_\w+\.h)$', path):
                continue
            for line in f['lines']:
                if line['count']:
                    ids.add(f"{path}:{line['line_number']}")
                ids.update(f"{path}:{line['line_number']}:{i}" for i, b in enumerate(line['branches'])
                           if b['count'] and not b['throw'])
    shutil.rmtree(counters, ignore_errors=True)
    return ids, run.returncode


def sizes():
    """Each test's length in lines, from TEST to the next TEST."""
    result = {}
    for directory in ('src', 'tests'):
        for base, _, files in os.walk(os.path.join(root, directory)):
            for f in files:
                if not f.endswith('_test.cpp'):
                    continue
                lines = open(os.path.join(base, f)).read().split('\n')
                marks = [(i, m.group(1) + '.' + m.group(2)) for i, l in enumerate(lines)
                         for m in [re.match(r'\s*TEST(?:_F|_P)?\((\w+),\s*(\w+)\)', l)] if m]
                for k, (i, name) in enumerate(marks):
                    end = marks[k + 1][0] if k + 1 < len(marks) else len(lines)
                    result[name] = (f'{os.path.relpath(base, root)}/{f}:{i + 1}', end - i)
    return result


tests = list(list_tests())
with ThreadPoolExecutor(jobs) as pool:
    results = dict(zip((name for _, name in tests), pool.map(covered, tests)))
where = sizes()
count = collections.Counter(i for ids, _ in results.values() for i in ids)
print('# lines and branches that only one test covers')
for name, (ids, status) in sorted(results.items()):
    only = sorted(i for i in ids if count[i] == 1)
    print(f"{where.get(name, ('?', 0))[1]:>4} {name}{' (FAILED)' if status else ''}: {len(only)} {' '.join(only[:8])}")
print('# tests that can go together without losing anything')
for name in sorted(results, key=lambda n: -where.get(n, ('', 0))[1]):
    ids = results[name][0]
    if all(count[i] > 1 for i in ids):
        count.subtract(ids)
        print(f"{where.get(name, ('?', 0))[1]:>4} {where.get(name, ('?',))[0]} {name}")
