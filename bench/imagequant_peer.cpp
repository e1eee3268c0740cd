#include "imagequant_peer.h"

#include <memory>

#ifdef ZLV_BENCH_IMAGEQUANT
#include <libimagequant.h>
#endif

namespace zlvbench {

#ifdef ZLV_BENCH_IMAGEQUANT

Work ImageQuantWork(const Shape& shape, u32 colors, bool isDithered)
{
    const auto rgba = std::make_shared<std::vector<u8>>(shape.Pixels() * 4, u8(255));
    return [=](const Buffers& buffers) {
        for (size_t i = 0; i < shape.Pixels(); ++i) {
            for (size_t c = 0; c < 3; ++c) (*rgba)[4 * i + c] = buffers.image[3 * i + c];
        }
        liq_attr* const attributes = liq_attr_create();
        liq_set_speed(attributes, 10);
        liq_set_max_colors(attributes, int(colors));
        liq_image* const image =
            liq_image_create_rgba(attributes, rgba->data(), int(shape.width), int(shape.height), 0);
        liq_result* result = nullptr;
        if (liq_image_quantize(image, attributes, &result) == LIQ_OK) {
            liq_set_dithering_level(result, isDithered ? 1.0f : 0.0f);
            liq_write_remapped_image(result, image, buffers.output, shape.Pixels());
            liq_result_destroy(result);
        }
        liq_image_destroy(image);
        liq_attr_destroy(attributes);
    };
}

#else

Work ImageQuantWork(const Shape&, u32, bool) { return {}; }

#endif

}  // namespace zlvbench
