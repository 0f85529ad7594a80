// SPDX-License-Identifier: Apache-2.0
// zeti_demo [--out FOLDER] [image ...]: what the library does to photographs, as a page to look at.
#include <cstdio>
#include <cstring>
#include <exception>

#include "gallery.h"

namespace {

constexpr const char *usage = "zeti_demo [--out FOLDER] [image ...]\n"
                              "Runs every family of the library on the images (PNG or JPEG; without any, on photographs of its own)\n"
                              "and writes FOLDER/index.html with the results; FOLDER is build/demo if not given.\n";

int run(const std::vector<std::string> &files, const std::string &folder) {
    const demo::Photos photos(files);
    demo::Gallery gallery(folder);
    demo::show_core(gallery, photos);
    demo::show_arith(gallery, photos);
    demo::show_alpha(gallery, photos);
    demo::show_unary(gallery, photos);
    demo::show_ln_exp(gallery, photos);
    demo::show_logic(gallery, photos);
    demo::show_move(gallery, photos);
    demo::show_convert_and_scale(gallery, photos);
    demo::show_tables(gallery, photos);
    demo::show_stats(gallery, photos);
    demo::show_rearrange(gallery, photos);
    const std::string page = gallery.write_page();
    std::printf("%s: %s\n", page.c_str(), gallery.summary().c_str());
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        std::string folder = "build/demo";
        std::vector<std::string> files;
        for (int i = 1; i < argc; ++i) {
            const std::string word = argv[i];
            if (word == "--help") return std::fputs(usage, stdout) < 0;
            if (word == "--out" && i + 1 < argc) folder = argv[++i];
            else if (word.starts_with("--")) throw std::runtime_error(word + ": unknown option\n" + usage);
            else files.push_back(word);
        }
        if (files.empty())
            for (const char *name : {"coffee.png", "astronaut.png", "camera.png", "rocket.jpg"})
                files.push_back(std::string(ZETI_DEMO_IMAGES "/") + name);
        return run(files, folder);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "zeti_demo: %s\n", error.what());
        return 1;
    }
}
