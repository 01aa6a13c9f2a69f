# SPDX-License-Identifier: MIT
"""Measurements on the virtual camera's simulated machine: lists, and the serial link."""
import os
import subprocess

OPENING_PAUSE = 0.050
PAUSES_OF_A_CONTROL = 2 * 0.050


def timed(build, models, *arguments):
    command = [os.path.join(build, "virtualcamera", "with-virtual-camera")]
    for model in models:
        command += ["--model", model]
    command += [os.path.join(build, "benchmarks", "list-cameras-timed"), *arguments]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: status {done.returncode}\n{done.stderr}")
    return [float(number) for number in done.stdout.split()]


def measure_listing(results, build, rounds):
    counts = (1, 8, 32)
    seconds = {count: [] for count in counts}
    for _ in range(rounds):
        for count in counts:
            found, duration = timed(build, ["webcam"] * count)
            if found != count:
                raise RuntimeError(f"{count} cameras were there, {found:.0f} are in the list")
            seconds[count].append(duration)
    for count in counts:
        results.add("simulated machine", f"a list, cameras: {count}", "library", "ms",
                    [1000 * one for one in seconds[count]])
        results.add("simulated machine", f"a list, cameras: {count}", "library, x one camera", "times",
                    [one / single for one, single in zip(seconds[count], seconds[1])])


def measure_serial(results, build, rounds):
    above = []
    for _ in range(rounds):
        _, _, seconds, controls = timed(build, ["serial"], "--open")
        prescribed = OPENING_PAUSE + PAUSES_OF_A_CONTROL * controls
        above.append(100 * (seconds - prescribed) / prescribed)
    results.add("simulated machine", "serial camera, opening above its pauses", "library", "%", above)
