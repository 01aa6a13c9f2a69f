# SPDX-License-Identifier: MIT
"""The same capture through OpenCV: opencv-loop.py MARKS [--announce] NODE FRAMES

MARKS is the library that has the mark. A start takes so many instructions that no frame would show
without it.
"""
import ctypes
import os
import sys

import cv2

mark = ctypes.CDLL(sys.argv[1]).benchmarkMarkPassage
announced = sys.argv[2] == "--announce"
node, frames = sys.argv[-2:]
camera = cv2.VideoCapture(node, cv2.CAP_V4L2)
camera.set(cv2.CAP_PROP_FRAME_WIDTH, 640)
camera.set(cv2.CAP_PROP_FRAME_HEIGHT, 480)
camera.set(cv2.CAP_PROP_CONVERT_RGB, 0)
mark()
for number in range(int(frames)):
    if not camera.grab():
        sys.exit("opencv-loop.py: no frame")
    if announced and number == 0:
        os.write(1, b"\n")
mark()
camera.release()
