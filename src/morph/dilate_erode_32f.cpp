// Dilation and erosion of float images: maximum and minimum over the pixels under a mask (J. Serra, "Image
// Analysis and Mathematical Morphology", 1982). The work is in engine.h.
#include "morph/dilate_erode.h"

using namespace okpcv;
using namespace okpcv::morph;

OKPCV_MORPH_BORDER(okpiDilateBorder_32f_C1R, Maximum, float, 1, float borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiDilateBorder_32f_C3R, Maximum, float, 3, const float* borderValue, borderValue)
OKPCV_MORPH_BORDER(okpiDilateBorder_32f_C4R, Maximum, float, 4, const float* borderValue, borderValue)
OKPCV_MORPH_L(okpiDilate_32f_C1R_L, Maximum, float, 1)
OKPCV_MORPH_L(okpiDilate_32f_C3R_L, Maximum, float, 3)
OKPCV_MORPH_L(okpiDilate_32f_C4R_L, Maximum, float, 4)

OKPCV_MORPH_BORDER(okpiErodeBorder_32f_C1R, Minimum, float, 1, float borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiErodeBorder_32f_C3R, Minimum, float, 3, const float* borderValue, borderValue)
OKPCV_MORPH_BORDER(okpiErodeBorder_32f_C4R, Minimum, float, 4, const float* borderValue, borderValue)
OKPCV_MORPH_L(okpiErode_32f_C1R_L, Minimum, float, 1)
OKPCV_MORPH_L(okpiErode_32f_C3R_L, Minimum, float, 3)
OKPCV_MORPH_L(okpiErode_32f_C4R_L, Minimum, float, 4)
