"""Dilation and blur of an 8-bit mask by OpenCV, as its wheel has it, with IPP on x86."""

import cv2
import numpy

from protocol import serve


def prepare(job):
    cv2.setNumThreads(1)
    radius = job["radius"]
    mask = numpy.fromfile(job["mask"], numpy.uint8).reshape(job["height"], job["width"])

    def padded():
        return cv2.copyMakeBorder(mask, radius, radius, radius, radius, cv2.BORDER_CONSTANT, value=0)

    side = 2 * radius + 1
    if job["operation"] == "dilate":
        ellipse = cv2.getStructuringElement(cv2.MORPH_ELLIPSE, (side, side))
        return (lambda: cv2.dilate(padded(), ellipse)), ""
    if job["operation"] == "sepFilter2D":
        taps = numpy.array(job["taps"], numpy.float32)
        return (
            lambda: cv2.sepFilter2D(padded(), cv2.CV_8U, taps, taps, borderType=cv2.BORDER_CONSTANT)
        ), ""
    deviation = job["deviation"]
    return (
        lambda: cv2.GaussianBlur(
            padded(), (side, side), deviation, sigmaY=deviation, borderType=cv2.BORDER_CONSTANT
        )
    ), ""


has_ipp = "Intel IPP" in cv2.getBuildInformation()
serve(f"OpenCV {cv2.__version__}" + (" with IPP" if has_ipp else ""), prepare)
