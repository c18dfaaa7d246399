"""Devices that come and go under a running agent."""

from frames import frame
from netns import cable, eventually


def learns(bench, device="eth1", port="Ethernet1"):
    wire = bench.wire(device)
    wire.send(frame(name="hello"))
    found = eventually(lambda: bench.agent.neighbours(port), 3)
    wire.close()
    return found


def test_a_device_that_returns_under_its_name_is_served_again(bench):
    bench.agent.configure(messageTxInterval=1)
    assert learns(bench)
    for _ in range(3):
        bench.near.ip("link", "del", "eth1")
        assert eventually(lambda: not bench.agent.neighbours("Ethernet1"), 2)
        cable(bench.near, "eth1", bench.far, "eth1")
        wire = bench.wire()
        assert wire.hear(5), "nothing is sent on the device that returned"
        assert eventually(lambda: learns(bench), 5)
    assert learns(bench, "eth2", "Ethernet2"), "the other port never noticed"


def test_a_device_that_is_down_at_the_start_is_served_when_it_comes_up(scene):
    near, far = scene.namespace("near"), scene.namespace("far")
    cable(near, "eth1", far, "eth1")
    near.ip("link", "set", "eth1", "down")
    agent = scene.agent(near, {"Ethernet1": "eth1"}).start()
    agent.configure(messageTxInterval=1)
    wire = scene.wire(far, "eth1")
    assert wire.hear(2.5) is None
    near.up("eth1")
    assert wire.hear(5)
    wire.send(frame(name="hello"))
    assert eventually(lambda: agent.neighbours("Ethernet1"), 3)


def test_a_changed_address_is_sent_as_source(bench):
    bench.agent.configure(messageTxInterval=1)
    wire = bench.wire("eth2")
    assert wire.hear(4)
    bench.near.ip("link", "set", "eth2", "address", "02:aa:aa:aa:aa:aa")
    assert eventually(lambda: (f := wire.hear(2)) and f[6:12] == b"\x02" + b"\xaa" * 5, 5)


# Without --port the devices are numbered in the order of their indices, and a restart, with
# other indices, does not move a name to another cable.
def test_port_names_stay_with_their_cables(scene):
    near, far = scene.namespace("near"), scene.namespace("far")
    for device in ("first", "second"):
        cable(near, device, far, device)
    agent = scene.agent(near, ["first", "second"]).start()
    agent.configure(messageTxInterval=1)

    def name_on(device):
        wire = scene.wire(far, device)
        heard = wire.hear(5)
        wire.close()
        return heard and heard[14 + 9 + 3:].split(b"\x06\x02")[0]

    assert (name_on("first"), name_on("second")) == (b"Ethernet1", b"Ethernet2")
    assert agent.stop() == 0
    again = scene.agent(near, ["second"], folder=agent.folder).start()
    again.configure(messageTxInterval=1)
    assert name_on("second") == b"Ethernet2"
