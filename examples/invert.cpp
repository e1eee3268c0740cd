// Inverts an RGBA gradient and leaves its alpha alone: a complete program in C++. Errors become exceptions here, on the
// caller's side; the library itself throws none.
//
//     c++ -std=c++17 invert.cpp -lzlv40 -o invert
#include <zlv40.h>

#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t kChannels = 4;

struct Image {
    std::uint32_t width, height;
    std::vector<std::uint8_t> samples;

    Image(std::uint32_t w, std::uint32_t h) : width(w), height(h), samples(std::size_t{w} * h * kChannels) {}
    std::uint32_t Stride() const { return width * kChannels; }
    std::uint8_t* Pixel(std::uint32_t x, std::uint32_t y) { return &samples[(std::size_t{y} * width + x) * kChannels]; }
};

// A callback for the life of an object. It belongs to the thread that made it.
class Callback {
public:
    explicit Callback(ZLVProgressCallback callback) { ZLV40_SetCallback(callback, 0); }
    ~Callback() { ZLV40_SetCallback(nullptr, 0); }
    Callback(const Callback&) = delete;
    Callback& operator=(const Callback&) = delete;
};

void Require(std::uint32_t result)
{
    if (result == 0) throw std::runtime_error("the library gives error " + std::to_string(ZLV40_GetLastError()));
}

Image MakeGradient(std::uint32_t width, std::uint32_t height)
{
    Image image(width, height);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            std::uint8_t* pixel = image.Pixel(x, y);
            pixel[0] = static_cast<std::uint8_t>(x);
            pixel[1] = static_cast<std::uint8_t>(y);
            pixel[2] = 128;
            pixel[3] = static_cast<std::uint8_t>(x ^ y);
        }
    return image;
}

}  // namespace

int main()
{
    try {
        Image image = MakeGradient(200, 100);
        const Callback progress([](std::uint32_t current, std::uint32_t total, std::uint64_t) -> std::uint32_t {
            std::cout << current + 1 << " of " << total << "\n";
            return 1;
        });
        Require(ZLV40_InvertImage(image.samples.data(), image.width, image.height, kChannels, image.Stride(),
                                  ZLV40_PROTECT_ALPHA));
        const std::uint8_t* pixel = image.Pixel(70, 30);
        std::cout << "pixel (70, 30): " << +pixel[0] << " " << +pixel[1] << " " << +pixel[2] << ", alpha " << +pixel[3]
                  << "\n";
        const bool isRight = pixel[0] == 185 && pixel[1] == 225 && pixel[2] == 127 && pixel[3] == (70 ^ 30);
        return isRight ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
