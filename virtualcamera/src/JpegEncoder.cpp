// SPDX-License-Identifier: MIT
#include "JpegEncoder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

namespace VirtualCamera
{

namespace
{

void configure(jpeg_compress_struct& compressor, std::uint32_t width, std::uint32_t height)
{
    compressor.image_width = width;
    compressor.image_height = height;
    compressor.input_components = 3;
    compressor.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&compressor);
    jpeg_set_quality(&compressor, 75, TRUE);
    compressor.raw_data_in = TRUE;
    compressor.dct_method = JDCT_IFAST;
    for (int component = 0; component < 3; ++component) {
        compressor.comp_info[component].h_samp_factor = component == 0 ? 2 : 1;
        compressor.comp_info[component].v_samp_factor = component == 0 ? 2 : 1;
    }
}

} // namespace

std::size_t JpegEncoder::encode(unsigned char* planes, unsigned char* target,
                                std::size_t capacity) const
{
    jpeg_error_mgr errors{};
    jpeg_compress_struct compressor{};
    compressor.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compressor);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compressor, &bytes, &size);
    configure(compressor, m_width, m_height);
    jpeg_start_compress(&compressor, TRUE);

    std::size_t const line = paddedTo(m_width);
    std::size_t const lumaSize = line * paddedTo(m_height);
    unsigned char* const chroma = planes + lumaSize;
    while (compressor.next_scanline < compressor.image_height) {
        JSAMPROW luma[16];
        JSAMPROW blue[8];
        JSAMPROW red[8];
        std::size_t const top = compressor.next_scanline;
        for (std::size_t row = 0; row < 16; ++row) {
            luma[row] = planes + (top + row) * line;
        }
        for (std::size_t row = 0; row < 8; ++row) {
            blue[row] = chroma + (top / 2 + row) * (line / 2);
            red[row] = blue[row] + lumaSize / 4;
        }
        JSAMPARRAY rows[3] = {luma, blue, red};
        jpeg_write_raw_data(&compressor, rows, 16);
    }
    jpeg_finish_compress(&compressor);
    jpeg_destroy_compress(&compressor);

    std::size_t const used = std::min<std::size_t>(size, capacity);
    std::memcpy(target, bytes, used);
    std::free(bytes);
    return used;
}

} // namespace VirtualCamera
