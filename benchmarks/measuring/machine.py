# SPDX-License-Identifier: MIT
"""Measurements on vivid in the virtual machine, whose emulator counts instructions."""
import os
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile

NODE = "/dev/video0"
# The one that Debian's packages install their modules for.
PYTHON = "/usr/bin/python3"
# At vivid's 25 frames a second: enough that a frame stands out of the noise, for both lengths.
SHORT, LONG = 25, 75
FEW, MORE = 10, 30
# Our own, which tell what they have mapped. Whether a frame is due at once or only after vivid's 40 ms
# is chance, so that their first frame is awaited several times a round.
OWN = ("bare loop", "loop with lists", "library", "session")
FIRSTS = 3


def has_opencv():
    return subprocess.run([PYTHON, "-c", "import cv2"], capture_output=True, check=False).returncode == 0


def contestants(source, build):
    """For each that is there, its command line for N frames, and for one that is announced."""
    folder = os.path.join(build, "benchmarks")
    found = {}
    for name, program in {"bare loop": "bare-loop", "library": "library-loop",
                          "session": "session-loop"}.items():
        path = os.path.join(folder, program)
        found[name] = (lambda frames, path=path: [path, "--frames", str(frames), NODE],
                       [path, "--announce", "--frames", "1", NODE])
    lists = [os.path.join(folder, "bare-loop"), "--lists"]
    found["loop with lists"] = (lambda frames: [*lists, "--frames", str(frames), NODE],
                                [*lists, "--announce", "--frames", "1", NODE])
    if shutil.which("v4l2-ctl"):
        line = ["v4l2-ctl", "-d", NODE, "--stream-mmap=4"]
        found["v4l2-ctl"] = (lambda frames: [*line, f"--stream-count={frames}"],
                             [*line, "--stream-count=1", "--stream-to=-"])
    if shutil.which("gst-launch-1.0"):
        found["GStreamer"] = (lambda frames: gstreamer(frames, "fakesink"), gstreamer(1, "fdsink"))
    if shutil.which("ffmpeg"):
        found["FFmpeg"] = (lambda frames: ffmpeg(frames, "null"), ffmpeg(1, "rawvideo"))
    if has_opencv():
        script = [PYTHON, os.path.join(source, "benchmarks/programs/opencv-loop.py"),
                  os.path.join(folder, "libbenchmark-marks.so")]
        found["OpenCV"] = (lambda frames: [*script, NODE, str(frames)],
                           [*script, "--announce", NODE, "1"])
    return found


def gstreamer(frames, sink):
    return ["gst-launch-1.0", "-q", "v4l2src", f"device={NODE}", f"num-buffers={frames}", "!",
            "video/x-raw,format=YUY2,width=640,height=480", "!", sink]


def ffmpeg(frames, kind):
    return ["ffmpeg", "-nostdin", "-loglevel", "error", "-f", "v4l2", "-input_format", "yuyv422",
            "-video_size", "640x480", "-i", NODE, "-frames:v", str(frames), "-c", "copy", "-f", kind,
            "-"]


class Script:
    """A shell script for the machine. Each command's line comes back under a label of its own."""

    def __init__(self, build):
        self.measured = os.path.join(build, "benchmarks/run-measured")
        self.counter = os.path.join(build, "benchmarks/libbenchmark-calls.so")
        # Nothing else is to run in the machine while a program's instructions are counted.
        self.lines = ["set -e", "udevadm settle", "udevadm control --exit",
                      f"v4l2-ctl -d {NODE} -v width=640,height=480,pixelformat=YUYV >/dev/null",
                      f"v4l2-ctl -d {NODE} -p 25 >/dev/null"]
        self.labels = []
        self.counts = []

    def add(self, label, line):
        self.labels.append(label)
        self.lines.append(f"{line} 2>>\"$RESULTS/errors\" || "
                          f"{{ echo {shlex.quote(str(label))} failed >&2; echo -1 -1 -1 -1; }}")

    def measure(self, label, command, first_byte=False):
        """Every such command adds a line to what the emulator counts."""
        self.counts.append(len(self.labels))
        option = " --first-byte" if first_byte else ""
        self.add(label, f"{self.measured}{option} {shlex.join(command)}")

    def count_calls(self, label, command):
        self.add(label, f"{{ env BENCHMARK_CALLS=/tmp/calls LD_PRELOAD={self.counter} "
                         f"{shlex.join(command)} >/dev/null && cat /tmp/calls; }}")

    def trace(self, label, command):
        """Counts system calls, and the shared objects that were opened, with the dynamic linker."""
        self.add(label, f"{{ strace -f -o /tmp/trace {shlex.join(command)} >/dev/null && "
                         "echo $(grep -cE '^[0-9]+ +[a-z_0-9]+\\(' /tmp/trace) "
                         "$(sed -nE 's/.*open(at)?\\(.*\"([^\"]*\\.so[.0-9]*)\".* = [0-9]+$/\\2/p' "
                         "/tmp/trace | sort -u | wc -l); }")

    def run(self, source, build, results_folder, rounds):
        """Returns for each label the numbers of its command, and those of the emulator."""
        counts = os.path.join(results_folder, "counts")
        job = os.path.join(results_folder, "job")
        with open(job, "w", encoding="utf-8") as file:
            file.write("\n".join([f"RESULTS={results_folder}", *self.lines]) + "\n")
        plugin = os.path.join(build, "benchmarks/libbenchmark-instructions.so")
        done = subprocess.run(
            [os.path.join(source, "tests/kernel/run-in-vm"), "--modules", "vivid n_devs=1",
             "--timeout", str(900 + 600 * rounds), "--out", results_folder, "--plugin", f"{plugin},counts={counts}",
             "--", "bash", job], stdout=subprocess.PIPE, text=True, check=False)
        lines = done.stdout.split("\n")[:-1]
        if done.returncode != 0 or len(lines) != len(self.labels):
            raise RuntimeError(f"the virtual machine ended with {done.returncode} after "
                               f"{len(lines)} of {len(self.labels)} measurements")
        with open(counts, encoding="utf-8") as file:
            counted = [[int(number) for number in line.split()] for line in file]
        answers = {label: [float(number) for number in line.split()]
                   for label, line in zip(self.labels, lines)}
        return answers, {self.labels[position]: numbers
                         for position, numbers in zip(self.counts, counted)}


def write_script(script, found, rounds):
    # Before anybody else: a program counts what is in the system's cache of the files that it maps.
    for number in range(rounds):
        for name in OWN:
            script.add(("report", name, number), shlex.join([*found[name][0](FEW), "--report"]))
    # The first time is another one: caches of the system and of the programs are empty.
    for name, (_, announced) in found.items():
        script.measure(("cold", name), announced, first_byte=True)
    for number in range(rounds):
        for name, (frames_of, announced) in found.items():
            for frames in (SHORT, LONG):
                script.measure(("run", name, frames, number), frames_of(frames))
        for attempt in range(FIRSTS):
            for name, (_, announced) in found.items():
                if attempt == 0 or name in OWN:
                    script.measure(("first", name, number, attempt), announced, first_byte=True)
    for name, (frames_of, _) in found.items():
        for frames in (FEW, MORE):
            script.count_calls(("calls", name, frames), frames_of(frames))
            if shutil.which("strace"):
                script.trace(("trace", name, frames), frames_of(frames))


def passed(answers, label):
    return label in answers and answers[label][0] >= 0 and (label[0] not in ("run", "first")
                                                            or answers[label][0] == 0)


def add_instructions(results, name, answers, counted, rounds):
    frames, starts, stops, wholes = [], [], [], []
    for number in range(rounds):
        few, many = (("run", name, length, number) for length in (SHORT, LONG))
        if not (passed(answers, few) and passed(answers, many)):
            frames.append(None)
            wholes.append(None)
            continue
        few, many = counted[few], counted[many]
        if len(few) == 3:
            # Marks in the program tell the frames apart; two lengths still leave lazy binding out.
            frames.append(((many[1] - many[0]) - (few[1] - few[0])) / (LONG - SHORT))
            if name in OWN:
                starts += [few[0], many[0]]
                stops += [few[2] - few[1], many[2] - many[1]]
        else:
            frames.append((many[-1] - few[-1]) / (LONG - SHORT))
        wholes.append(few[-1] - SHORT * frames[-1])
    results.add("vivid", "a frame", name, "instructions", frames)
    results.add("vivid", "start, to STREAMON", name, "instructions", starts)
    results.add("vivid", "stop", name, "instructions", stops)
    results.add("vivid", "start and stop", name, "instructions", wholes)


def add_first_frames(results, name, answers, rounds):
    medians = []
    for number in range(rounds):
        labels = [("first", name, number, attempt) for attempt in range(FIRSTS)]
        seconds = [answers[label][2] for label in labels if passed(answers, label)]
        medians.append(1000 * statistics.median(seconds) if seconds else None)
    results.add("vivid", "time to the first frame", name, "ms", medians)


def add_memory(results, name, answers, rounds):
    if name not in OWN:
        runs = [("run", name, SHORT, number) for number in range(rounds)]
        results.add("vivid", "peak memory", name, "kB",
                    [answers[label][3] if passed(answers, label) else None for label in runs])
        return
    labels = [("report", name, number) for number in range(rounds)]
    reports = [answers[label] if passed(answers, label) else (None, None) for label in labels]
    results.add("vivid", "peak memory", name, "kB", [report[0] for report in reports])
    results.add("vivid", "files mapped at the end", name, "shared objects",
                [report[1] for report in reports])


def add_calls(results, name, answers):
    few, many = (("calls", name, length) for length in (FEW, MORE))
    if passed(answers, few) and passed(answers, many):
        for position, unit in enumerate(("allocations", "copies")):
            results.add("vivid", "a frame", name, unit,
                        [(answers[many][position] - answers[few][position]) / (MORE - FEW)])
    few, many = (("trace", name, length) for length in (FEW, MORE))
    if passed(answers, few) and passed(answers, many):
        results.add("vivid", "a frame", name, "system calls",
                    [(answers[many][0] - answers[few][0]) / (MORE - FEW)])
        # The kernel maps the dynamic linker, which nobody opens.
        results.add("vivid", "files opened, plugins too", name, "shared objects",
                    [answers[many][1] + 1])


def measure_vivid(results, source, build, rounds):
    found = contestants(source, build)
    script = Script(build)
    write_script(script, found, rounds)
    with tempfile.TemporaryDirectory() as folder:
        answers, counted = script.run(source, build, folder, rounds)
    for label in answers:
        if not passed(answers, label):
            print(f"vivid: {label} failed", file=sys.stderr)
    for name in found:
        add_instructions(results, name, answers, counted, rounds)
    for name in found:
        add_first_frames(results, name, answers, rounds)
        add_memory(results, name, answers, rounds)
    for name in found:
        add_calls(results, name, answers)
