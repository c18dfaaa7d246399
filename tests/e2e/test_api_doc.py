"""The examples of docs/api.md, run as they stand against a fresh process."""

import pathlib
import re
import subprocess

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "api.md"
MARK = "--- end of example ---"


def examples():
    """Each command of the page's console blocks, with the answer that is shown below it."""
    found = []
    for block in re.findall(r"^```console\n(.*?)^```$", PAGE.read_text(), re.M | re.S):
        for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
            # A command goes on as long as a quote is open or the line ends with a backslash.
            lines = part.splitlines()
            end = 1
            while "\n".join(lines[:end]).count("'") % 2 or lines[end - 1].endswith("\\"):
                end += 1
            found.append(("\n".join(lines[:end]), "\n".join(lines[end:])))
    return found


def pattern(shown):
    return ".*".join(re.escape(piece) for piece in shown.split("..."))


def test_every_example_of_the_page_answers_as_shown(bench):
    all_of_them = examples()
    assert len(all_of_them) >= 15
    script = "".join(f"{command}\necho '{MARK}'\n" for command, _ in all_of_them)
    script = script.replace("/run/lldp-agentd/api.sock", str(bench.agent.socket))
    done = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=60)
    answers = done.stdout.replace(str(bench.agent.folder / "state"), "/var/lib/lldp-agentd")
    answers = answers.split(MARK)
    for (command, shown), answer in zip(all_of_them, answers, strict=False):
        assert re.fullmatch(pattern(shown), answer.strip(), re.S), (command, answer.strip())
    assert len(answers) == len(all_of_them) + 1
