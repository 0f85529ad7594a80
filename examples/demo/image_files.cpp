// SPDX-License-Identifier: Apache-2.0
// Reading PNG and JPEG, writing PNG.
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

#include <jpeglib.h> // needs cstdio first

#include <jerror.h>
#include <png.h>

#include "image.h"

namespace demo {

namespace {

constexpr int least = 16, most = 16384; // pixels of a side, for the gallery's sake

[[noreturn]] void fail(const std::string &file, const std::string &why) { throw std::runtime_error(file + ": " + why); }

void check_size(const std::string &file, unsigned width, unsigned height) {
    if (width >= least && height >= least && width <= most && height <= most) return;
    fail(file, std::to_string(width) + " x " + std::to_string(height) + " pixels; a side must have " + std::to_string(least) + " to " +
                   std::to_string(most));
}

Picture blank(unsigned width, unsigned height, int channels) {
    return {
        {static_cast<int>(width), static_cast<int>(height)}, channels, std::vector<std::uint8_t>(std::size_t{width} * height * channels)};
}

Picture read_png(const std::string &file) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, file.c_str())) fail(file, std::string("damaged PNG: ") + png.message);
    const std::unique_ptr<png_image, void (*)(png_image *)> release(&png, png_image_free);
    check_size(file, png.width, png.height);
    const bool colour = (png.format & PNG_FORMAT_FLAG_COLOR) != 0;
    png.format = colour ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    Picture made = blank(png.width, png.height, colour ? 3 : 1);
    const png_color white = {255, 255, 255}; // behind what is transparent
    if (!png_image_finish_read(&png, &white, made.samples.data(), 0, nullptr)) fail(file, std::string("damaged PNG: ") + png.message);
    return made;
}

// The JPEG library reports errors through a function that must not return.
struct JpegErrors {
    jpeg_error_mgr manager; // first, so that a pointer to it is one to the whole
    std::jmp_buf away;
    char message[JMSG_LENGTH_MAX];
};

void jpeg_error(j_common_ptr info) {
    auto *const errors = reinterpret_cast<JpegErrors *>(info->err);
    info->err->format_message(info, errors->message);
    std::longjmp(errors->away, 1); // NOLINT: the library's own protocol
}

// A file that ends too early is no more than a warning to the library, with grey in place of what is missing.
void jpeg_message(j_common_ptr info, int level) {
    const int code = info->err->msg_code;
    if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER)) jpeg_error(info);
}

// No object with a destructor may live here: an error jumps out of it.
bool decode_jpeg(const std::string &file, std::FILE *stream, JpegErrors &errors, jpeg_decompress_struct &jpeg, Picture &made) {
    if (setjmp(errors.away) != 0) return false; // NOLINT: the library's own protocol
    jpeg_stdio_src(&jpeg, stream);
    jpeg_read_header(&jpeg, TRUE);
    check_size(file, jpeg.image_width, jpeg.image_height);
    const bool grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    if (!grey && jpeg.jpeg_color_space != JCS_YCbCr && jpeg.jpeg_color_space != JCS_RGB) fail(file, "neither grey nor RGB");
    jpeg.out_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&jpeg);
    made = blank(jpeg.output_width, jpeg.output_height, jpeg.output_components);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = made.samples.data() + std::size_t{jpeg.output_scanline} * jpeg.output_width * jpeg.output_components;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

Picture read_jpeg(const std::string &file, std::FILE *stream) {
    JpegErrors errors;
    jpeg_decompress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = jpeg_error;
    errors.manager.emit_message = jpeg_message;
    errors.message[0] = '\0';
    jpeg_create_decompress(&jpeg);
    const std::unique_ptr<jpeg_decompress_struct, void (*)(jpeg_decompress_struct *)> release(&jpeg, jpeg_destroy_decompress);
    Picture made;
    if (!decode_jpeg(file, stream, errors, jpeg, made)) fail(file, std::string("damaged JPEG: ") + errors.message);
    return made;
}

} // namespace

Picture read_picture(const std::string &file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> stream(std::fopen(file.c_str(), "rb"), std::fclose);
    if (!stream) fail(file, std::strerror(errno));
    unsigned char head[8] = {};
    const std::size_t got = std::fread(head, 1, sizeof head, stream.get());
    if (std::ferror(stream.get())) fail(file, std::strerror(errno));
    if (got == sizeof head && png_sig_cmp(head, 0, sizeof head) == 0) return read_png(file);
    if (got >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF) {
        std::rewind(stream.get());
        return read_jpeg(file, stream.get());
    }
    fail(file, "neither a PNG nor a JPEG file");
}

void write_png(const std::string &file, const Picture &picture) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(picture.size.width);
    png.height = static_cast<png_uint_32>(picture.size.height);
    png.format = picture.channels == 1 ? PNG_FORMAT_GRAY : picture.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
    if (!png_image_write_to_file(&png, file.c_str(), 0, picture.samples.data(), 0, nullptr)) fail(file, png.message);
}

} // namespace demo
