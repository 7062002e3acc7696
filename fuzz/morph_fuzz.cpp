// Fuzzes dilation and erosion.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

// A mask, mostly small.
struct Mask {
    explicit Mask(Data& data)
        : size{data.between(1, data.oneIn(4) ? 40 : 7), data.between(1, data.oneIn(4) ? 20 : 7)},
          elements(data, int64_t{size.width} * size.height) {
        elements.fill(data);
        if (data.oneIn(3)) std::memset(elements.begin(), 1, elements.size());
    }
    fuzz::Margins reach() const {
        const int left = (size.width - 1) / 2, top = (size.height - 1) / 2;
        return {left, top, size.width - 1 - left, size.height - 1 - top};
    }

    RoiSize size;
    fuzz::Block elements;
};

MorphSpec* asSpec(uint8_t* bytes) {
    return reinterpret_cast<MorphSpec*>(bytes);
}

template <class F>
void sizes(F function, Data& data) {
    int32_t spec = 0, buffer = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), fuzz::anySize<RoiSize>(data), &spec,
                              data.oneIn(9) ? nullptr : &buffer),
                     spec, buffer);
}

template <class F>
void specSizeLarge(F function, Data& data) {
    int64_t spec = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSizeL>(data), fuzz::anySize<RoiSizeL>(data), &spec), spec);
}

template <class F>
void bufferSizeLarge(F function, Data& data) {
    // The query only raises the number.
    const int64_t before = data.any<int64_t>();
    int64_t buffer = before;
    const DataTypeCode type = data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19);
    const okpStatus status = function(fuzz::anySize<RoiSizeL>(data), fuzz::anySize<RoiSizeL>(data), type,
                                      data.oneIn(3) ? data.any<int32_t>() : data.between(1, 4), &buffer);
    fuzz::checkQuery(status);
    if (buffer < before) fuzz::fail("a query lowered the size", status);
}

template <auto query, class F>
void init(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    int32_t specBytes = 0, bufferBytes = 0;
    query(call.real(), mask.size, &specBytes, &bufferBytes);
    const uint8_t* const elements = call.input<uint8_t>(static_cast<int64_t>(mask.elements.size()));
    call(function, call.size(), elements, mask.size, asSpec(call.area(specBytes)), call.area(bufferBytes));
}

template <auto query, class F>
void initLarge(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    const RoiSizeL maskSize{mask.size.width, mask.size.height};
    int64_t specBytes = 0;
    query({call.real().width, call.real().height}, maskSize, &specBytes);
    const uint8_t* const elements = call.input<uint8_t>(static_cast<int64_t>(mask.elements.size()));
    call(function, call.size(), elements, maskSize, asSpec(call.area(specBytes)));
}

template <class T, int channels, auto query, auto initialise, class F>
void filter(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    const BorderKind border = fuzz::anyBorder(data);
    int32_t specBytes = 0, bufferBytes = 0;
    query(call.real(), mask.size, &specBytes, &bufferBytes);
    fuzz::Block spec(data, specBytes), buffer(data, bufferBytes);
    initialise(call.real(), mask.elements.begin(), mask.size, asSpec(spec.begin()), buffer.begin());
    const auto value = [&] {
        if constexpr (channels == 1) {
            return data.any<T>();
        } else {
            return call.optionalInput<T>(channels);
        }
    }();
    call(function, call.source<T>(channels, fuzz::marginsOf(border, mask.reach())),
         call.destination<T>(channels), call.size(), border, value,
         static_cast<const MorphSpec*>(asSpec(spec.begin())), call.area(bufferBytes));
}

template <class T, int channels, DataTypeCode type, class F>
void filterLarge(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    const RoiSizeL size{call.real().width, call.real().height}, maskSize{mask.size.width, mask.size.height};
    const BorderKind border = fuzz::anyBorder(data);
    int64_t specBytes = 0, bufferBytes = 0;
    okpiDilateGetSpecSize_L(size, maskSize, &specBytes);
    okpiDilateGetBufferSize_L(size, maskSize, type, channels, &bufferBytes);
    fuzz::Block spec(data, specBytes);
    okpiDilateInit_L(size, mask.elements.begin(), maskSize, asSpec(spec.begin()));
    call(function, call.source<T>(channels, fuzz::marginsOf(border, mask.reach())),
         call.destination<T>(channels), call.size(), border, call.optionalInput<T>(channels),
         static_cast<const MorphSpec*>(asSpec(spec.begin())), call.area(bufferBytes));
}

// A bit-packed image: so many bytes that the pixels at the offset fit, and those beyond the region that a
// border takes from memory.
struct Packed {
    Packed(Call& call, fuzz::Margins margins)
        : offset(margins.left + call.data().between(0, 17)),
          step((offset + call.real().width + margins.right + 7) / 8 + call.data().between(0, 3)) {
        auto* const first = const_cast<uint8_t*>(
            call.input<uint8_t>(int64_t{step} * (margins.top + call.real().height + margins.bottom)));
        image = {first == nullptr ? nullptr : first + step * margins.top, {step}};
        if (call.data().oneIn(9)) toldOffset = call.data().oneOf({-1, INT32_MIN});
    }
    int32_t told() const { return toldOffset < 0 ? toldOffset : offset; }

    int32_t offset, step, toldOffset = 0;
    fuzz::Image<uint8_t> image{};
};

template <class Spec, class Value, class F>
void runPacked(F function, Call& call, const Mask& mask, const Spec& spec, Value value, int64_t bufferBytes,
               BorderKind border) {
    const Packed src(call, fuzz::marginsOf(border, mask.reach())), dst(call, {});
    call(function, static_cast<const uint8_t*>(src.image.data), src.image.step, src.told(), dst.image,
         dst.told(), call.size(), border, value, static_cast<const MorphSpec*>(asSpec(spec.begin())),
         call.area(bufferBytes));
}

template <class F>
void packed(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    int32_t specBytes = 0, bufferBytes = 0;
    okpiMorphologyBorderGetSize_1u_C1R(call.real(), mask.size, &specBytes, &bufferBytes);
    fuzz::Block spec(data, specBytes), buffer(data, bufferBytes);
    okpiMorphologyBorderInit_1u_C1R(call.real(), mask.elements.begin(), mask.size, asSpec(spec.begin()),
                                    buffer.begin());
    runPacked(function, call, mask, spec, data.any<uint8_t>(), bufferBytes, fuzz::anyBorder(data));
}

template <class F>
void packedLarge(F function, Data& data) {
    Call call(data);
    const Mask mask(data);
    const RoiSizeL size{call.real().width, call.real().height}, maskSize{mask.size.width, mask.size.height};
    int64_t specBytes = 0, bufferBytes = 0;
    okpiErodeGetSpecSize_L(size, maskSize, &specBytes);
    okpiErodeGetBufferSize_L(size, maskSize, DataType1u, 1, &bufferBytes);
    fuzz::Block spec(data, specBytes);
    okpiErodeInit_L(size, mask.elements.begin(), maskSize, asSpec(spec.begin()));
    runPacked(function, call, mask, spec, call.optionalInput<uint8_t>(), bufferBytes, fuzz::anyBorder(data));
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((filter<int16_t, 1, okpiMorphologyBorderGetSize_16s_C1R, okpiMorphologyBorderInit_16s_C1R>),
         okpiDilateBorder_16s_C1R),
    FUZZ((filter<uint16_t, 1, okpiMorphologyBorderGetSize_16u_C1R, okpiMorphologyBorderInit_16u_C1R>),
         okpiDilateBorder_16u_C1R),
    FUZZ((packed), okpiDilateBorder_1u_C1R),
    FUZZ((filter<float, 1, okpiMorphologyBorderGetSize_32f_C1R, okpiMorphologyBorderInit_32f_C1R>),
         okpiDilateBorder_32f_C1R),
    FUZZ((filter<float, 3, okpiMorphologyBorderGetSize_32f_C3R, okpiMorphologyBorderInit_32f_C3R>),
         okpiDilateBorder_32f_C3R),
    FUZZ((filter<float, 4, okpiMorphologyBorderGetSize_32f_C4R, okpiMorphologyBorderInit_32f_C4R>),
         okpiDilateBorder_32f_C4R),
    FUZZ((filter<uint8_t, 1, okpiMorphologyBorderGetSize_8u_C1R, okpiMorphologyBorderInit_8u_C1R>),
         okpiDilateBorder_8u_C1R),
    FUZZ((filter<uint8_t, 3, okpiMorphologyBorderGetSize_8u_C3R, okpiMorphologyBorderInit_8u_C3R>),
         okpiDilateBorder_8u_C3R),
    FUZZ((filter<uint8_t, 4, okpiMorphologyBorderGetSize_8u_C4R, okpiMorphologyBorderInit_8u_C4R>),
         okpiDilateBorder_8u_C4R),
    FUZZ((bufferSizeLarge), okpiDilateGetBufferSize_L),
    FUZZ((specSizeLarge), okpiDilateGetSpecSize_L),
    FUZZ((initLarge<okpiDilateGetSpecSize_L>), okpiDilateInit_L),
    FUZZ((filterLarge<int16_t, 1, DataType16s>), okpiDilate_16s_C1R_L),
    FUZZ((filterLarge<uint16_t, 1, DataType16u>), okpiDilate_16u_C1R_L),
    FUZZ((packedLarge), okpiDilate_1u_C1R_L),
    FUZZ((filterLarge<float, 1, DataType32f>), okpiDilate_32f_C1R_L),
    FUZZ((filterLarge<float, 3, DataType32f>), okpiDilate_32f_C3R_L),
    FUZZ((filterLarge<float, 4, DataType32f>), okpiDilate_32f_C4R_L),
    FUZZ((filterLarge<uint8_t, 1, DataType8u>), okpiDilate_8u_C1R_L),
    FUZZ((filterLarge<uint8_t, 3, DataType8u>), okpiDilate_8u_C3R_L),
    FUZZ((filterLarge<uint8_t, 4, DataType8u>), okpiDilate_8u_C4R_L),
    FUZZ((filter<int16_t, 1, okpiMorphologyBorderGetSize_16s_C1R, okpiMorphologyBorderInit_16s_C1R>),
         okpiErodeBorder_16s_C1R),
    FUZZ((filter<uint16_t, 1, okpiMorphologyBorderGetSize_16u_C1R, okpiMorphologyBorderInit_16u_C1R>),
         okpiErodeBorder_16u_C1R),
    FUZZ((packed), okpiErodeBorder_1u_C1R),
    FUZZ((filter<float, 1, okpiMorphologyBorderGetSize_32f_C1R, okpiMorphologyBorderInit_32f_C1R>),
         okpiErodeBorder_32f_C1R),
    FUZZ((filter<float, 3, okpiMorphologyBorderGetSize_32f_C3R, okpiMorphologyBorderInit_32f_C3R>),
         okpiErodeBorder_32f_C3R),
    FUZZ((filter<float, 4, okpiMorphologyBorderGetSize_32f_C4R, okpiMorphologyBorderInit_32f_C4R>),
         okpiErodeBorder_32f_C4R),
    FUZZ((filter<uint8_t, 1, okpiMorphologyBorderGetSize_8u_C1R, okpiMorphologyBorderInit_8u_C1R>),
         okpiErodeBorder_8u_C1R),
    FUZZ((filter<uint8_t, 3, okpiMorphologyBorderGetSize_8u_C3R, okpiMorphologyBorderInit_8u_C3R>),
         okpiErodeBorder_8u_C3R),
    FUZZ((filter<uint8_t, 4, okpiMorphologyBorderGetSize_8u_C4R, okpiMorphologyBorderInit_8u_C4R>),
         okpiErodeBorder_8u_C4R),
    FUZZ((bufferSizeLarge), okpiErodeGetBufferSize_L),
    FUZZ((specSizeLarge), okpiErodeGetSpecSize_L),
    FUZZ((initLarge<okpiErodeGetSpecSize_L>), okpiErodeInit_L),
    FUZZ((filterLarge<int16_t, 1, DataType16s>), okpiErode_16s_C1R_L),
    FUZZ((filterLarge<uint16_t, 1, DataType16u>), okpiErode_16u_C1R_L),
    FUZZ((packedLarge), okpiErode_1u_C1R_L),
    FUZZ((filterLarge<float, 1, DataType32f>), okpiErode_32f_C1R_L),
    FUZZ((filterLarge<float, 3, DataType32f>), okpiErode_32f_C3R_L),
    FUZZ((filterLarge<float, 4, DataType32f>), okpiErode_32f_C4R_L),
    FUZZ((filterLarge<uint8_t, 1, DataType8u>), okpiErode_8u_C1R_L),
    FUZZ((filterLarge<uint8_t, 3, DataType8u>), okpiErode_8u_C3R_L),
    FUZZ((filterLarge<uint8_t, 4, DataType8u>), okpiErode_8u_C4R_L),
    FUZZ((sizes), okpiMorphologyBorderGetSize_16s_C1R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_16u_C1R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_1u_C1R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_32f_C1R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_32f_C3R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_32f_C4R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_8u_C1R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_8u_C3R),
    FUZZ((sizes), okpiMorphologyBorderGetSize_8u_C4R),
    FUZZ((init<okpiMorphologyBorderGetSize_16s_C1R>), okpiMorphologyBorderInit_16s_C1R),
    FUZZ((init<okpiMorphologyBorderGetSize_16u_C1R>), okpiMorphologyBorderInit_16u_C1R),
    FUZZ((init<okpiMorphologyBorderGetSize_1u_C1R>), okpiMorphologyBorderInit_1u_C1R),
    FUZZ((init<okpiMorphologyBorderGetSize_32f_C1R>), okpiMorphologyBorderInit_32f_C1R),
    FUZZ((init<okpiMorphologyBorderGetSize_32f_C3R>), okpiMorphologyBorderInit_32f_C3R),
    FUZZ((init<okpiMorphologyBorderGetSize_32f_C4R>), okpiMorphologyBorderInit_32f_C4R),
    FUZZ((init<okpiMorphologyBorderGetSize_8u_C1R>), okpiMorphologyBorderInit_8u_C1R),
    FUZZ((init<okpiMorphologyBorderGetSize_8u_C3R>), okpiMorphologyBorderInit_8u_C3R),
    FUZZ((init<okpiMorphologyBorderGetSize_8u_C4R>), okpiMorphologyBorderInit_8u_C4R),
};

}  // namespace

FUZZ_FAMILY(kShapes)
