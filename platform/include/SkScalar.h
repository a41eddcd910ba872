// The floating-point type of all coordinates.
#pragma once

typedef float SkScalar;
