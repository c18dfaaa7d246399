"""Pages of the documentation whose examples are run as they stand: their `console` blocks."""

import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
MARK = "--- end of example ---"


def examples(page):
    """Each command of the page's console blocks, with the answer that is shown below it."""
    found = []
    for block in re.findall(r"^```console\n(.*?)^```$", (ROOT / page).read_text(), re.M | re.S):
        for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
            # A command goes on as long as a quote is open or the line ends with a backslash.
            lines = part.splitlines()
            end = 1
            while "\n".join(lines[:end]).count("'") % 2 or lines[end - 1].endswith("\\"):
                end += 1
            found.append(("\n".join(lines[:end]), "\n".join(lines[end:])))
    return found


def run(commands):
    """The commands in one shell; what each writes, errors too."""
    script = "".join(f"\n{command}\necho '{MARK}'" for command in commands)
    done = subprocess.run(["bash", "-c", script], cwd=ROOT, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=60)
    answers = done.stdout.split(MARK + "\n")
    assert len(answers) == len(commands) + 1, done.stdout
    return answers[:-1]


def as_shown(shown, answer):
    """Whether the answer is the one that is shown, where `...` stands for anything."""
    pattern = ".*".join(re.escape(piece) for piece in shown.strip().split("..."))
    return re.fullmatch(pattern, answer.strip(), re.S) is not None
