"""Runs the cases of a test file several at a time: they wait for programs, each in a folder of its own.

Each worker is a process. With threads a program that one case writes would be busy while another case starts its own.
"""

import multiprocessing
import os
import sys
import time
import unittest


def cases_of(suite):
    for part in suite:
        if isinstance(part, unittest.TestSuite):
            yield from cases_of(part)
        else:
            yield part


def outcome_of(number):
    """(what was skipped, what was found), as sentences, of the case with this number."""
    result, began = unittest.TestResult(), time.monotonic()
    Runner.cases[number].run(result)
    case = f"{Runner.cases[number].id()} ({time.monotonic() - began:.1f} s)"
    skipped = [f"skipped: {case}: {reason}" for _, reason in result.skipped]
    found = [f"failed: {part.id()}\n{text}" for part, text in result.failures + result.errors]
    found += [f"failed: {case}: it should not have passed" for _ in result.unexpectedSuccesses]
    return skipped, found or ([] if result.wasSuccessful() else [f"failed: {case}"]), case


class Runner:
    """What unittest.main() takes for a runner, and for its result."""

    cases = []  # as the workers find them

    def __init__(self):
        self.passed = True

    def run(self, suite):
        Runner.cases = list(cases_of(suite))
        with multiprocessing.get_context("fork").Pool(os.cpu_count()) as pool:
            for skipped, found, case in pool.imap_unordered(outcome_of, range(len(Runner.cases)), chunksize=1):
                print(*(skipped + found or [f"passed: {case}"]), sep="\n", file=sys.stderr, flush=True)
                self.passed &= not found
        print(f"{len(Runner.cases)} cases: {'all passed' if self.passed else 'some failed'}", file=sys.stderr)
        return self

    def wasSuccessful(self):  # noqa: N802, the name is unittest's
        return self.passed


def main():
    unittest.main(module="__main__", testRunner=Runner())
