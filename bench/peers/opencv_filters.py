"""Dilation and blur of an 8-bit mask by OpenCV, as its wheel has it, with IPP on x86."""

import cv2
import numpy

from protocol import serve


def prepare(job):
    cv2.setNumThreads(1)
    radius = job["radius"]
    operation = job["operation"]
    mask = numpy.fromfile(job["mask"], numpy.uint8).reshape(job["height"], job["width"])
    side = 2 * radius + 1
    # Written again and again: new ones would be new pages each time.
    padded = numpy.empty((job["height"] + 2 * radius, job["width"] + 2 * radius), numpy.uint8)
    out = numpy.empty_like(padded)
    border = cv2.BORDER_CONSTANT
    ellipse = cv2.getStructuringElement(cv2.MORPH_ELLIPSE, (side, side))
    taps = numpy.array(job.get("taps", []), numpy.float32)
    deviation = job.get("deviation", 0)

    def run():
        cv2.copyMakeBorder(mask, radius, radius, radius, radius, border, padded, 0)
        if operation == "dilate":
            cv2.dilate(padded, ellipse, out)
        elif operation == "sepFilter2D":
            cv2.sepFilter2D(padded, cv2.CV_8U, taps, taps, out, borderType=border)
        else:
            cv2.GaussianBlur(padded, (side, side), deviation, out, deviation, border)

    return run, operation


has_ipp = "Intel IPP" in cv2.getBuildInformation()
serve(f"OpenCV {cv2.__version__}" + (" with IPP" if has_ipp else ""), prepare)
