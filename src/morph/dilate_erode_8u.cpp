// Dilation and erosion of 8-bit images: maximum and minimum over the pixels under a mask (J. Serra, "Image
// Analysis and Mathematical Morphology", 1982). The work is in engine.h.
#include "morph/dilate_erode.h"

using namespace okpcv;
using namespace okpcv::morph;

OKPCV_MORPH_BORDER(okpiDilateBorder_8u_C1R, Maximum, uint8_t, 1, uint8_t borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiDilateBorder_8u_C3R, Maximum, uint8_t, 3, const uint8_t* borderValue, borderValue)
OKPCV_MORPH_BORDER(okpiDilateBorder_8u_C4R, Maximum, uint8_t, 4, const uint8_t* borderValue, borderValue)
OKPCV_MORPH_L(okpiDilate_8u_C1R_L, Maximum, uint8_t, 1)
OKPCV_MORPH_L(okpiDilate_8u_C3R_L, Maximum, uint8_t, 3)
OKPCV_MORPH_L(okpiDilate_8u_C4R_L, Maximum, uint8_t, 4)

OKPCV_MORPH_BORDER(okpiErodeBorder_8u_C1R, Minimum, uint8_t, 1, uint8_t borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiErodeBorder_8u_C3R, Minimum, uint8_t, 3, const uint8_t* borderValue, borderValue)
OKPCV_MORPH_BORDER(okpiErodeBorder_8u_C4R, Minimum, uint8_t, 4, const uint8_t* borderValue, borderValue)
OKPCV_MORPH_L(okpiErode_8u_C1R_L, Minimum, uint8_t, 1)
OKPCV_MORPH_L(okpiErode_8u_C3R_L, Minimum, uint8_t, 3)
OKPCV_MORPH_L(okpiErode_8u_C4R_L, Minimum, uint8_t, 4)
