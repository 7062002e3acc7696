/**
 * @file okpcv.h
 * @brief The whole public interface of okpcv: the only header that an application includes.
 */
#ifndef OKPCV_H
#define OKPCV_H

#include "okpcv/types.h"

#include "okpcv/arith.h"
#include "okpcv/distance.h"
#include "okpcv/features.h"
#include "okpcv/filter.h"
#include "okpcv/geometry.h"
#include "okpcv/integral.h"
#include "okpcv/morph.h"
#include "okpcv/pyramid.h"
#include "okpcv/segment.h"
#include "okpcv/stats.h"
#include "okpcv/version.h"

#endif /* OKPCV_H */
