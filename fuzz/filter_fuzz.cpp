// Fuzzes separable filters and the row and column pipelines.
#include "support/fuzz.h"

namespace {

using fuzz::Call, fuzz::Data;

template <class N, class F>
void specSize(F function, Data& data) {
    N bytes = 0;
    const DataTypeCode type = data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19);
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), type, data.between(-1, 5), &bytes), bytes);
}

template <class S, class N, class F>
void bufferSize(F function, Data& data) {
    N bytes = 0;
    const auto type = [&] { return data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19); };
    fuzz::checkQuery(function(fuzz::anySize<S>(data), fuzz::anySize<RoiSize>(data), type(), type(),
                              data.between(-1, 5), &bytes),
                     bytes);
}

RoiSize kernelSize(Data& data) {
    const int longest = data.oneIn(4) ? 40 : 7;
    return {data.between(1, longest), data.between(1, longest)};
}

template <class F>
void initInteger(F function, Data& data) {
    Call call(data);
    const RoiSize size = kernelSize(data);
    int32_t bytes = 0;
    okpiFilterSeparableGetSpecSize(size, DataType16s, 1, &bytes);
    const int16_t* const row = call.input<int16_t>(size.width);
    const int16_t* const column = call.input<int16_t>(size.height);
    const RoiSize given = call.sizeOr(size);
    call(function, row, column, given, data.any<int32_t>(), data.any<int32_t>(),
         data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19), data.between(-1, 5),
         static_cast<void*>(call.area(bytes)));
}

template <class F>
void initFloat(F function, Data& data) {
    Call call(data);
    const RoiSize size = kernelSize(data);
    int32_t bytes = 0;
    okpiFilterSeparableGetSpecSize(size, DataType32f, 1, &bytes);
    const float* const row = call.input<float>(size.width);
    const float* const column = call.input<float>(size.height);
    const RoiSize given = call.sizeOr(size);
    call(function, row, column, given, data.oneIn(3) ? data.any<int32_t>() : data.between(0, 19),
         data.between(-1, 5), static_cast<void*>(call.area(bytes)));
}

fuzz::Margins reachOf(RoiSize kernel) {
    const int left = (kernel.width - 1) / 2, top = (kernel.height - 1) / 2;
    return {left, top, kernel.width - 1 - left, kernel.height - 1 - top};
}

// A value by itself for one channel, by address for several; the address may be null where no constant border
// asks for it.
template <class T, int channels>
auto borderValue(Call& call) {
    if constexpr (channels == 1) {
        return call.data().any<T>();
    } else {
        return call.optionalInput<T>(channels);
    }
}

template <class T, class D, int channels, DataTypeCode type, class F>
void separable(F function, Data& data) {
    Call call(data);
    const RoiSize kernel = kernelSize(data);
    const BorderKind border = fuzz::anyBorder(data);
    // What the source's type allows: integer kernels for 8u and 16s, float ones for 8u, 16u and 32f.
    const bool integer =
        type == DataType16s || (type == DataType8u && (data.oneIn(2) || !std::is_same_v<T, D>));
    const DataTypeCode kernelType = integer ? DataType16s : DataType32f;
    int32_t specBytes = 0, bufferBytes = 0;
    okpiFilterSeparableGetSpecSize(kernel, kernelType, channels, &specBytes);
    okpiFilterSeparableGetBufferSize(call.real(), kernel, type, kernelType, channels, &bufferBytes);
    fuzz::Block spec(data, specBytes), row(data, kernel.width * 4), column(data, kernel.height * 4);
    row.fill(data);
    column.fill(data);
    const auto numbers = [](const fuzz::Block& block, auto zero) {
        std::vector<decltype(zero)> values(block.size() / 4);
        for (size_t i = 0; i < values.size(); ++i)
            std::memcpy(&values[i], block.begin() + 4 * i, sizeof zero);
        return values;
    };
    okpStatus status = okpStatusOk;
    if (integer) {
        status =
            okpiFilterSeparableInit_16s(numbers(row, int16_t{}).data(), numbers(column, int16_t{}).data(),
                                        kernel, data.between(0, 1) ? 16 : 1 | data.any<int32_t>(),
                                        data.any<int32_t>(), type, channels, spec.begin());
    } else {
        status = okpiFilterSeparableInit_32f(numbers(row, 0.0F).data(), numbers(column, 0.0F).data(), kernel,
                                             type, channels, spec.begin());
    }
    if (status != okpStatusOk) fuzz::fail("a good spec was refused", status);
    call(function, call.source<T>(channels, fuzz::marginsOf(border, reachOf(kernel))),
         call.destination<D>(channels), call.size(), border, borderValue<T, channels>(call),
         static_cast<const void*>(spec.begin()), static_cast<void*>(call.area(bufferBytes)));
}

template <class F>
void pipelineSize(F function, Data& data) {
    int32_t bytes = 0;
    fuzz::checkQuery(function(fuzz::anySize<RoiSize>(data), data.any<int32_t>(), &bytes), bytes);
}

// Rows that lie anywhere.
template <class T>
std::vector<T*> scattered(Data& data, std::deque<fuzz::Block>& blocks, int count, int64_t elements) {
    std::vector<T*> rows;
    for (int y = 0; y < count; ++y) {
        fuzz::Block& block = blocks.emplace_back(data, elements * int64_t{sizeof(T)});
        block.fill(data);
        rows.push_back(reinterpret_cast<T*>(block.begin()));
    }
    return rows;
}

template <class T>
using Coefficient = std::conditional_t<std::is_floating_point_v<T>, float, int16_t>;

int32_t divisor(Data& data) {
    return data.oneIn(3) ? data.any<int32_t>() : data.between(1, 64);
}

template <class T, class D, int channels, auto query, class F>
void rows(F function, Data& data) {
    Call call(data, 70, 4);
    const int32_t length = kernelSize(data).width;
    const int32_t anchor = data.between(0, length - 1);
    const BorderKind border = fuzz::anyBorder(data);
    int32_t bytes = 0;
    query(call.real(), length, &bytes);
    const fuzz::Margins sides = fuzz::marginsOf(border, {anchor, 0, length - 1 - anchor, 0});

    std::deque<fuzz::Block> blocks;
    const auto dst = scattered<D>(data, blocks, call.real().height, int64_t{call.real().width} * channels);
    const auto src = call.source<T>(channels, sides);
    const int32_t told = data.oneIn(8) ? data.oneOf({-1, length, INT32_MIN, INT32_MAX}) : anchor;
    const Coefficient<T>* const kernel = call.input<Coefficient<T>>(length);
    const auto value = borderValue<T, channels>(call);
    if constexpr (std::is_floating_point_v<T>) {
        call(function, src, dst.data(), call.size(), kernel, length, told, border, value,
             static_cast<void*>(call.area(bytes)));
    } else {
        call(function, src, dst.data(), call.size(), kernel, length, told, border, value, divisor(data),
             static_cast<void*>(call.area(bytes)));
    }
}

template <class T, class D, int channels, auto query, class F>
void columns(F function, Data& data) {
    Call call(data, 70, 4);
    const int32_t length = kernelSize(data).height;
    int32_t bytes = 0;
    query(call.real(), length, &bytes);
    std::deque<fuzz::Block> blocks;
    const auto src = scattered<const T>(data, blocks, call.real().height + length - 1,
                                        int64_t{call.real().width} * channels);
    const auto dst = call.destination<D>(channels);
    const Coefficient<T>* const kernel = call.input<Coefficient<T>>(length);
    if constexpr (std::is_floating_point_v<T>) {
        call(function, src.data(), dst, call.size(), kernel, length, static_cast<void*>(call.area(bytes)));
    } else {
        call(function, src.data(), dst, call.size(), kernel, length, divisor(data),
             static_cast<void*>(call.area(bytes)));
    }
}

constexpr fuzz::Shape kShapes[] = {
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s8s_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s8s_C3R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s8u_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s8u_C3R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16s_C3R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16u_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_16u_C3R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_32f_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_32f_C3R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R),
    FUZZ((pipelineSize), okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R),
    FUZZ((columns<int16_t, int8_t, 1, okpiFilterColumnPipelineGetBufferSize_16s8s_C1R>),
         okpiFilterColumnPipeline_16s8s_C1R),
    FUZZ((columns<int16_t, int8_t, 3, okpiFilterColumnPipelineGetBufferSize_16s8s_C3R>),
         okpiFilterColumnPipeline_16s8s_C3R),
    FUZZ((columns<int16_t, uint8_t, 1, okpiFilterColumnPipelineGetBufferSize_16s8u_C1R>),
         okpiFilterColumnPipeline_16s8u_C1R),
    FUZZ((columns<int16_t, uint8_t, 3, okpiFilterColumnPipelineGetBufferSize_16s8u_C3R>),
         okpiFilterColumnPipeline_16s8u_C3R),
    FUZZ((columns<int16_t, int16_t, 1, okpiFilterColumnPipelineGetBufferSize_16s_C1R>),
         okpiFilterColumnPipeline_16s_C1R),
    FUZZ((columns<int16_t, int16_t, 3, okpiFilterColumnPipelineGetBufferSize_16s_C3R>),
         okpiFilterColumnPipeline_16s_C3R),
    FUZZ((columns<uint16_t, uint16_t, 1, okpiFilterColumnPipelineGetBufferSize_16u_C1R>),
         okpiFilterColumnPipeline_16u_C1R),
    FUZZ((columns<uint16_t, uint16_t, 3, okpiFilterColumnPipelineGetBufferSize_16u_C3R>),
         okpiFilterColumnPipeline_16u_C3R),
    FUZZ((columns<float, float, 1, okpiFilterColumnPipelineGetBufferSize_32f_C1R>),
         okpiFilterColumnPipeline_32f_C1R),
    FUZZ((columns<float, float, 3, okpiFilterColumnPipelineGetBufferSize_32f_C3R>),
         okpiFilterColumnPipeline_32f_C3R),
    FUZZ((columns<int16_t, int16_t, 1, okpiFilterColumnPipelineGetBufferSize_Low_16s_C1R>),
         okpiFilterColumnPipeline_Low_16s_C1R),
    FUZZ((columns<int16_t, int16_t, 3, okpiFilterColumnPipelineGetBufferSize_Low_16s_C3R>),
         okpiFilterColumnPipeline_Low_16s_C3R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_16s_C1R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_16s_C3R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_16u_C1R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_16u_C3R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_32f_C1R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_32f_C3R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R),
    FUZZ((pipelineSize), okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R),
    FUZZ((rows<int16_t, int16_t, 1, okpiFilterRowBorderPipelineGetBufferSize_16s_C1R>),
         okpiFilterRowBorderPipeline_16s_C1R),
    FUZZ((rows<int16_t, int16_t, 3, okpiFilterRowBorderPipelineGetBufferSize_16s_C3R>),
         okpiFilterRowBorderPipeline_16s_C3R),
    FUZZ((rows<uint16_t, uint16_t, 1, okpiFilterRowBorderPipelineGetBufferSize_16u_C1R>),
         okpiFilterRowBorderPipeline_16u_C1R),
    FUZZ((rows<uint16_t, uint16_t, 3, okpiFilterRowBorderPipelineGetBufferSize_16u_C3R>),
         okpiFilterRowBorderPipeline_16u_C3R),
    FUZZ((rows<float, float, 1, okpiFilterRowBorderPipelineGetBufferSize_32f_C1R>),
         okpiFilterRowBorderPipeline_32f_C1R),
    FUZZ((rows<float, float, 3, okpiFilterRowBorderPipelineGetBufferSize_32f_C3R>),
         okpiFilterRowBorderPipeline_32f_C3R),
    FUZZ((rows<uint8_t, int16_t, 1, okpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R>),
         okpiFilterRowBorderPipeline_8u16s_C1R),
    FUZZ((rows<uint8_t, int16_t, 3, okpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R>),
         okpiFilterRowBorderPipeline_8u16s_C3R),
    FUZZ((rows<int16_t, int16_t, 1, okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R>),
         okpiFilterRowBorderPipeline_Low_16s_C1R),
    FUZZ((rows<int16_t, int16_t, 3, okpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R>),
         okpiFilterRowBorderPipeline_Low_16s_C3R),
    FUZZ((bufferSize<RoiSize, int32_t>), okpiFilterSeparableGetBufferSize),
    FUZZ((bufferSize<RoiSizeL, int64_t>), okpiFilterSeparableGetBufferSize_L),
    FUZZ((specSize<int32_t>), okpiFilterSeparableGetSpecSize),
    FUZZ((specSize<int64_t>), okpiFilterSeparableGetSpecSize_L),
    FUZZ((initInteger), okpiFilterSeparableInit_16s),
    FUZZ((initInteger), okpiFilterSeparableInit_16s_L),
    FUZZ((initFloat), okpiFilterSeparableInit_32f),
    FUZZ((initFloat), okpiFilterSeparableInit_32f_L),
    FUZZ((separable<int16_t, int16_t, 1, DataType16s>), okpiFilterSeparable_16s_C1R),
    FUZZ((separable<int16_t, int16_t, 1, DataType16s>), okpiFilterSeparable_16s_C1R_L),
    FUZZ((separable<int16_t, int16_t, 3, DataType16s>), okpiFilterSeparable_16s_C3R),
    FUZZ((separable<int16_t, int16_t, 3, DataType16s>), okpiFilterSeparable_16s_C3R_L),
    FUZZ((separable<int16_t, int16_t, 4, DataType16s>), okpiFilterSeparable_16s_C4R),
    FUZZ((separable<int16_t, int16_t, 4, DataType16s>), okpiFilterSeparable_16s_C4R_L),
    FUZZ((separable<uint16_t, uint16_t, 1, DataType16u>), okpiFilterSeparable_16u_C1R),
    FUZZ((separable<uint16_t, uint16_t, 1, DataType16u>), okpiFilterSeparable_16u_C1R_L),
    FUZZ((separable<uint16_t, uint16_t, 3, DataType16u>), okpiFilterSeparable_16u_C3R),
    FUZZ((separable<uint16_t, uint16_t, 3, DataType16u>), okpiFilterSeparable_16u_C3R_L),
    FUZZ((separable<uint16_t, uint16_t, 4, DataType16u>), okpiFilterSeparable_16u_C4R),
    FUZZ((separable<uint16_t, uint16_t, 4, DataType16u>), okpiFilterSeparable_16u_C4R_L),
    FUZZ((separable<float, float, 1, DataType32f>), okpiFilterSeparable_32f_C1R),
    FUZZ((separable<float, float, 1, DataType32f>), okpiFilterSeparable_32f_C1R_L),
    FUZZ((separable<float, float, 3, DataType32f>), okpiFilterSeparable_32f_C3R),
    FUZZ((separable<float, float, 3, DataType32f>), okpiFilterSeparable_32f_C3R_L),
    FUZZ((separable<float, float, 4, DataType32f>), okpiFilterSeparable_32f_C4R),
    FUZZ((separable<float, float, 4, DataType32f>), okpiFilterSeparable_32f_C4R_L),
    FUZZ((separable<uint8_t, int16_t, 1, DataType8u>), okpiFilterSeparable_8u16s_C1R),
    FUZZ((separable<uint8_t, int16_t, 1, DataType8u>), okpiFilterSeparable_8u16s_C1R_L),
    FUZZ((separable<uint8_t, int16_t, 3, DataType8u>), okpiFilterSeparable_8u16s_C3R),
    FUZZ((separable<uint8_t, int16_t, 3, DataType8u>), okpiFilterSeparable_8u16s_C3R_L),
    FUZZ((separable<uint8_t, int16_t, 4, DataType8u>), okpiFilterSeparable_8u16s_C4R),
    FUZZ((separable<uint8_t, int16_t, 4, DataType8u>), okpiFilterSeparable_8u16s_C4R_L),
    FUZZ((separable<uint8_t, uint8_t, 1, DataType8u>), okpiFilterSeparable_8u_C1R),
    FUZZ((separable<uint8_t, uint8_t, 1, DataType8u>), okpiFilterSeparable_8u_C1R_L),
    FUZZ((separable<uint8_t, uint8_t, 3, DataType8u>), okpiFilterSeparable_8u_C3R),
    FUZZ((separable<uint8_t, uint8_t, 3, DataType8u>), okpiFilterSeparable_8u_C3R_L),
    FUZZ((separable<uint8_t, uint8_t, 4, DataType8u>), okpiFilterSeparable_8u_C4R),
    FUZZ((separable<uint8_t, uint8_t, 4, DataType8u>), okpiFilterSeparable_8u_C4R_L),
};

}  // namespace

FUZZ_FAMILY(kShapes)
