# SPDX-License-Identifier: MIT
"""Measurements on the stand-in for libv4l2: on this machine, and the same at every run."""
import os
import re
import subprocess
import tempfile

# Two lengths of a run: the difference is the frames alone, without start, stop and lazy binding. With
# as many digits, which are read too; and every buffer has its turn as often as the others.
SHORT, LONG = 320, 960


class Standin:
    def __init__(self, build):
        self.folder = os.path.join(build, "benchmarks")
        self.counter = os.path.join(self.folder, "libbenchmark-calls.so")

    def contestants(self):
        """Names and command lines of those that the stand-in serves."""
        return {"bare loop": [os.path.join(self.folder, "bare-loop")],
                "library": [os.path.join(self.folder, "library-loop")]}

    def paced(self):
        """The same, and the session layer. It takes frames in a thread of its own, and would take many
        that nobody asks for from a camera that always has one."""
        return {**self.contestants(), "session": [os.path.join(self.folder, "session-loop")]}

    def complete(self, command, settings=None, environment=None):
        """Runs a command on the stand-in."""
        merged = {**os.environ, "LD_LIBRARY_PATH": os.path.join(self.folder, "standin"),
                  **{name: str(value) for name, value in (settings or {}).items()},
                  **(environment or {})}
        done = subprocess.run(command, env=merged, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: status {done.returncode}\n{done.stderr}")
        return done

    def run(self, command, settings=None, environment=None):
        """Its standard error."""
        return self.complete(command, settings, environment).stderr

    def output(self, command, settings=None):
        return self.complete(command, settings).stdout

    def instructions(self, command, settings=None):
        """All user-space instructions of a run, the dynamic linker's included."""
        report = self.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command],
                          settings)
        return int(re.search(r"Collected : (\d+)", report).group(1))

    def calls(self, command, settings=None):
        """Allocations and copies of a run."""
        with tempfile.NamedTemporaryFile() as file:
            self.run(command, settings, {"LD_PRELOAD": self.counter, "BENCHMARK_CALLS": file.name})
            return [int(number) for number in file.read().split()]

    def system_calls(self, command, settings=None):
        with tempfile.NamedTemporaryFile(mode="r", errors="replace") as file:
            self.run(["valgrind", "--tool=none", "--trace-syscalls=yes", f"--log-file={file.name}",
                      *command], settings)
            # A call that blocks has a second line, without a name.
            return sum(bool(re.match(r"SYSCALL\[[^]]*\]\( *\d+\) *[a-z_]", line)) for line in file)

    def per_frame(self, measure, command, settings=None, buffers=4):
        """What one more frame adds to a measure."""
        few, many = (measure([*command, "--buffers", str(buffers), "--frames", str(frames)], settings)
                     for frames in (SHORT, LONG))
        return (many - few) / (LONG - SHORT)

    def allocations_and_copies(self, command, settings=None, buffers=4):
        both = (self.per_frame(lambda line, given, which=which: self.calls(line, given)[which],
                               command, settings, buffers) for which in (0, 1))
        return tuple(both)


# The cases in which a frame has to cost the same, or as much more as a second try takes.
FRAME_CASES = {
    "as usual": {},
    "2 buffers": {"buffers": 2},
    "8 buffers": {"buffers": 8},
    "32 buffers": {"buffers": 32},
    "descriptor 1500": {"settings": {"STANDIN_DESCRIPTOR": 1500}},
    "half EAGAIN": {"settings": {"STANDIN_AGAIN": 1}},
}


# A camera as real ones are: between two frames there is time to give the first back.
PACED = {"settings": {"STANDIN_PACED": 1}}


def measure_frames(results, standin, rounds):
    contestants = standin.contestants()
    for case, given in FRAME_CASES.items():
        # select() takes no such descriptor: there is no loop by hand to compare with.
        served = {name: command for name, command in contestants.items()
                  if "descriptor" not in case or name != "bare loop"}
        counted = {name: [] for name in served}
        for _ in range(rounds):
            for name, command in served.items():
                counted[name].append(standin.per_frame(standin.instructions, command, **given))
        for name, values in counted.items():
            results.add("stand-in", f"a frame, {case}", name, "instructions", values)
    for name, command in standin.paced().items():
        results.add("stand-in", "a frame, paced", name, "instructions",
                    [standin.per_frame(standin.instructions, command, **PACED) for _ in range(rounds)])
        allocations, copies = standin.allocations_and_copies(command, **PACED)
        results.add("stand-in", "a frame, paced", name, "allocations", [allocations])
        results.add("stand-in", "a frame, paced", name, "copies", [copies])
        results.add("stand-in", "a frame, paced", name, "system calls",
                    [standin.per_frame(standin.system_calls, command, **PACED)])
    for case in ("as usual", "descriptor 1500"):
        for name, command in contestants.items():
            if name == "bare loop" and case != "as usual":
                continue
            allocations, copies = standin.allocations_and_copies(command, **FRAME_CASES[case])
            results.add("stand-in", f"a frame, {case}", name, "allocations", [allocations])
            results.add("stand-in", f"a frame, {case}", name, "copies", [copies])
            results.add("stand-in", f"a frame, {case}", name, "system calls",
                        [standin.per_frame(standin.system_calls, command, **FRAME_CASES[case])])


def measure_start(results, standin, rounds):
    counted = {name: ([], []) for name in standin.contestants()}
    for _ in range(rounds):
        for name, command in standin.contestants().items():
            start = standin.instructions([*command, "--start-only"])
            whole = standin.instructions([*command, "--frames", "1"])
            counted[name][0].append(start)
            counted[name][1].append(whole - start)
    for name, (starts, rests) in counted.items():
        results.add("stand-in", "start, to STREAMON", name, "instructions", starts)
        results.add("stand-in", "one frame and stop", name, "instructions", rests)


# A camera of 30 frames a second has none before its first interval is over.
FIRST_AFTER = {"STANDIN_FIRST_AFTER": 33}
FIRSTS = 21


def measure_first_frames(results, standin):
    """On this machine's processor, from the start of the program on."""
    measured = [os.path.join(standin.folder, "run-measured"), "--first-byte"]
    seconds = {name: [] for name in standin.contestants()}
    for _ in range(FIRSTS):
        for name, command in standin.contestants().items():
            answer = standin.output([*measured, *command, "--announce", "--frames", "1"], FIRST_AFTER)
            seconds[name].append(float(answer.split()[2]))
    for name, values in seconds.items():
        results.add("stand-in", "time to the first frame", name, "ms",
                    [1000 * value for value in values])


def measure_memory(results, standin, rounds):
    """With the real libv4l2 mapped as well: the stand-in only comes before it."""
    preload = os.path.join(standin.folder, "libbenchmark-standin-preload.so")
    for name, command in standin.contestants().items():
        reports = []
        for _ in range(rounds):
            text = subprocess.run([*command, "--report", "--frames", "10"], check=True, text=True,
                                  capture_output=True, env={**os.environ, "LD_PRELOAD": preload}).stdout
            reports.append([int(number) for number in text.split()])
        results.add("stand-in", "peak memory", name, "kB", [peak for peak, _ in reports])
        results.add("stand-in", "mapped files", name, "shared objects", [count for _, count in reports])


# What a camera may have much of, and how a run is told.
GROWTH = {
    "format": ((1, 10, 100, 200), lambda count: ([], {"STANDIN_FORMATS": count})),
    "interval": ((1, 10, 100, 1000), lambda count: ([], {"STANDIN_INTERVALS": count})),
    "control": ((1, 10, 100, 200), lambda count: ([], {"STANDIN_CONTROLS": count})),
    "buffer": ((2, 8, 32), lambda count: (["--buffers", str(count)], {})),
}


def measure_growth(results, standin):
    """What each one more of a kind adds to the start. Where rows of a kind differ, it is not linear."""
    for kind, (counts, told) in GROWTH.items():
        for name, command in standin.contestants().items():
            # The loop by hand lists nothing.
            if name == "bare loop" and kind != "buffer":
                continue
            starts = []
            for count in counts:
                arguments, settings = told(count)
                starts.append(standin.instructions([*command, "--start-only", *arguments], settings))
            for few, many, start, next_start in zip(counts, counts[1:], starts, starts[1:]):
                results.add("stand-in", f"start, each {kind} from {few} to {many}", name,
                            "instructions", [(next_start - start) / (many - few)])
