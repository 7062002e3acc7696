// Dilation and erosion of 16-bit images: maximum and minimum over the pixels under a mask (J. Serra, "Image
// Analysis and Mathematical Morphology", 1982). The work is in engine.h.
#include "morph/dilate_erode.h"

using namespace okpcv;
using namespace okpcv::morph;

OKPCV_MORPH_BORDER(okpiDilateBorder_16u_C1R, Maximum, uint16_t, 1, uint16_t borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiDilateBorder_16s_C1R, Maximum, int16_t, 1, int16_t borderValue, &borderValue)
OKPCV_MORPH_L(okpiDilate_16u_C1R_L, Maximum, uint16_t, 1)
OKPCV_MORPH_L(okpiDilate_16s_C1R_L, Maximum, int16_t, 1)

OKPCV_MORPH_BORDER(okpiErodeBorder_16u_C1R, Minimum, uint16_t, 1, uint16_t borderValue, &borderValue)
OKPCV_MORPH_BORDER(okpiErodeBorder_16s_C1R, Minimum, int16_t, 1, int16_t borderValue, &borderValue)
OKPCV_MORPH_L(okpiErode_16u_C1R_L, Minimum, uint16_t, 1)
OKPCV_MORPH_L(okpiErode_16s_C1R_L, Minimum, int16_t, 1)
