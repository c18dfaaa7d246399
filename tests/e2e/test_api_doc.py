"""The examples of docs/api.md, run as they stand against a fresh process."""

from console import as_shown, examples, run


def test_every_example_of_the_page_answers_as_shown(bench):
    all_of_them = examples("docs/api.md")
    assert len(all_of_them) >= 15
    commands = [command.replace("/run/lldp-agentd/api.sock", str(bench.agent.socket))
                for command, _ in all_of_them]
    for (command, shown), answer in zip(all_of_them, run(commands), strict=True):
        answer = answer.replace(str(bench.agent.folder / "state"), "/var/lib/lldp-agentd")
        assert as_shown(shown, answer), (command, answer)
