# SPDX-License-Identifier: MIT
"""What benchmarks/run is made of."""
