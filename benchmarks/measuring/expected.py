# SPDX-License-Identifier: MIT
"""What a frame may cost: the file that the test holds the library to."""
import os

from measuring.standin import FRAME_CASES, PACED

TOLERANCE = 0.05
# Of the library's instructions for a frame, what the session layer may take with them.
MOST_TIMES_LIBRARY = 3
HEAD = """# What a frame costs the program library-loop on the stand-in for libv4l2, with g++ 12 on Debian 12.
# benchmarks/run --refresh writes this file; benchmarks/run --check and the test of that name hold the
# library to it: instructions within 5 %, everything else exactly.
#
# {:<16} instructions allocations copies system-calls
"""


def path_in(source):
    return os.path.join(source, "benchmarks/expected-frame-cost")


def measured(standin):
    command = standin.contestants()["library"]
    for case, given in FRAME_CASES.items():
        yield case, [standin.per_frame(standin.instructions, command, **given),
                     *standin.allocations_and_copies(command, **given),
                     standin.per_frame(standin.system_calls, command, **given)]


def expected(source):
    with open(path_in(source), encoding="utf-8") as file:
        rows = [line.rsplit(None, 4) for line in file if line.strip() and not line.startswith("#")]
    return {row[0].strip(): [float(number) for number in row[1:]] for row in rows}


def line_of(case, numbers):
    instructions, allocations, copies, calls = numbers
    return f"  {case:<16} {instructions:>12g} {allocations:>11g} {copies:>6g} {calls:>12g}"


def refresh(source, standin):
    with open(path_in(source), "w", encoding="utf-8") as file:
        file.write(HEAD.format("case"))
        for case, numbers in measured(standin):
            file.write(line_of(case, numbers) + "\n")
            print(line_of(case, numbers))


def session_is_thin(standin):
    """Whether a lease of the session layer costs little more than the library's frame in it."""
    library, session = (standin.per_frame(standin.instructions, standin.paced()[name], **PACED)
                        for name in ("library", "session"))
    allocations, copies = standin.allocations_and_copies(standin.paced()["session"], **PACED)
    print(f"a paced frame: library {library:g}, session {session:g} instructions, "
          f"{allocations:g} allocations, {copies:g} copies")
    return (session <= MOST_TIMES_LIBRARY * (1 + TOLERANCE) * library
            and allocations == 0 and copies == 0)


def check(source, standin):
    """True when everything is as the file says; tells of what is not."""
    wanted, alike = expected(source), True
    if set(wanted) != set(FRAME_CASES):
        print(f"{path_in(source)} does not have the cases that are measured")
        return False
    for case, numbers in measured(standin):
        near = abs(numbers[0] - wanted[case][0]) <= TOLERANCE * wanted[case][0]
        if not near or numbers[1:] != wanted[case][1:]:
            alike = False
            print(f"measured {line_of(case, numbers)}\nexpected {line_of(case, wanted[case])}")
    print("a frame costs what it should" if alike else
          "If that is meant: benchmarks/run --refresh")
    if not session_is_thin(standin):
        alike = False
        print(f"The session layer may take {MOST_TIMES_LIBRARY} times the library's instructions, no "
              "memory and no copy")
    return alike
