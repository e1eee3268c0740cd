// Effects made for tests of the command: one of each shape of call. Described in shapes.toml.
#ifndef ZLV_TESTS_SHAPES_H
#define ZLV_TESTS_SHAPES_H

#include <cstdint>

uint32_t ZLV40_TestLighten(uint8_t* buffer, uint32_t width, uint32_t height, uint32_t rowStride, int32_t amount,
                           uint32_t channelMask);
uint32_t ZLV40_TestMirror(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t bytesPerPixel,
                          uint32_t srcRowStride, uint32_t dstRowStride, uint8_t axis, uint32_t firstRow);
uint32_t ZLV40_TestPaint(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                         uint8_t* destination, uint32_t destinationStride, uint32_t color, double strength,
                         uint8_t flags, const uint8_t* curve);
uint32_t ZLV40_TestSlow(uint8_t* buffer, uint32_t pause);
uint32_t ZLV40_TestRefuse(uint8_t* buffer);

#endif
