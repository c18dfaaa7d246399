"""The tour of the README: `./run`, and behind it every command with the output that is shown."""

import re

import pytest

from agent import BUILD, Lines
from console import ROOT, as_shown, examples, run


def without_times(text):
    """Ages, what is left of a time to live, and dates differ; so does the room that they take."""
    text = re.sub(r"\b\d+(?=/120\b| s\b)|\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "N", text)
    return re.sub(r" +", " ", text)


@pytest.mark.skipif(BUILD != ROOT / "build" / "release", reason="./run has a build of its own")
def test_the_tour_shows_what_it_says():
    (first, shown), *others = examples("README.md")
    assert first == "./run" and len(others) >= 15
    switches = Lines(ROOT / first, cwd=ROOT)
    try:
        told = []
        while not told or not told[-1].startswith("   switch-b"):
            told.append(switches.next(60))
        assert as_shown(without_times(shown), without_times("\n".join(told))), told
        for (command, shown), answer in zip(others, run([command for command, _ in others]),
                                            strict=True):
            assert as_shown(without_times(shown), without_times(answer)), (command, answer)
    finally:
        ended = switches.end()
    assert ended == 0 and not (ROOT / "build" / "tour").exists()
