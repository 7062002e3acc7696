// What a family needs to add its panels: the photograph, the page, and calls that are checked and timed.
#pragma once

#include "image.h"
#include "page.h"

#include <functional>

struct Gallery {
    Image8 color;  // the photograph, RGB
    Image8 gray;   // and its gray levels
    Image8 coins;  // coins on a dark ground, gray, for operations on objects that can be counted
    Page page;
};

void addArithPanels(Gallery& gallery);
void addDistancePanels(Gallery& gallery);
void addFeaturePanels(Gallery& gallery);
void addFilterPanels(Gallery& gallery);
void addGeometryPanels(Gallery& gallery);
void addPyramidPanels(Gallery& gallery);
void addSegmentPanels(Gallery& gallery);
void addIntegralPanels(Gallery& gallery);
void addStatsPanels(Gallery& gallery);
void addMorphPanels(Gallery& gallery);

// Throws std::runtime_error when the status is an error. Warnings pass.
void checkStatus(const char* function, okpStatus status);

// Runs the work, which is a call of the function, several times; the median is its time.
Call timedCall(const char* function, const std::string& parameters, const std::function<void()>& work);

// Calls a function of the library and gives up when it returns an error.
#define OKP(function, ...) checkStatus(#function, function(__VA_ARGS__))

// The same several times over: the Call, with its time, that a panel shows. A call that changes its input
// must not be given one that is used later.
#define OKP_TIMED(parameters, function, ...) \
    timedCall(#function, parameters, [&] { OKP(function, __VA_ARGS__); })
