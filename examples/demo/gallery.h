// SPDX-License-Identifier: Apache-2.0
// The gallery: a section per family, in it shots, each of them calls of the library with pictures before and after.
//
// A new entry is a block like this in the file of its folder (arith.cpp, move.cpp, ...):
//
//     Shot shot = gallery.shot("Brighter", "Every channel plus 60.", src.size);
//     GIVEN(shot, const Zet8u value[3] = {60, 60, 60});
//     shot.run(CALL(zetiAddC_8u_C3RSfs(src.p, src.step, value, dst.p, dst.step, src.size, 0)));
//     shot.show({{"src", picture(src)}}, {{"dst", picture(dst)}});
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <tuple>

#include "image.h"

namespace demo {

// A call as text and as something to run; a declaration that the text of the calls needs.
#define CALL(...) #__VA_ARGS__, [&] { return __VA_ARGS__; }
#define GIVEN(shot, ...)                                                                                                                   \
    __VA_ARGS__;                                                                                                                           \
    (shot).given(#__VA_ARGS__)

struct Call {
    std::string text;
    std::string status; // empty where the function has none
    int times = 1;      // calls in a row that read the same
    double seconds = 0; // one call
};

struct Figure {
    std::string caption;
    std::string file;
    ZetiSize size;
    bool transparent;
};

struct Item {
    std::string title, note;
    ZetiSize region;
    std::vector<std::string> declarations;
    std::vector<Call> calls;
    std::vector<Figure> before, after;
};

struct Section {
    std::string operation, brief;
    std::deque<Item> items; // a shot keeps a reference to its own
};

struct Captioned {
    std::string caption;
    Picture picture;
};

class Gallery;

class Shot {
public:
    Shot(Gallery &gallery, Item &item) : gallery_(gallery), item_(item) {}

    void given(const std::string &declaration) { item_.declarations.push_back(declaration + ";"); }

    // Runs a call now; show() runs it again, many times, to measure it. A warning is a result, an error ends the demo.
    template <class Function> void run(const std::string &text, Function function) {
        if constexpr (std::is_void_v<decltype(function())>) {
            function();
            add(text, "", function);
        } else {
            add(text, checked(text, function()), [function] { (void)function(); });
        }
    }

    // Takes the pictures as they are, then measures. Last, as a call that is repeated may spoil its images.
    void show(const std::vector<Captioned> &before, const std::vector<Captioned> &after);

private:
    static std::string checked(const std::string &text, ZetStatus status);
    void add(const std::string &text, const std::string &status, std::function<void()> again);

    Gallery &gallery_;
    Item &item_;
    std::vector<std::function<void()>> again_;
};

class Gallery {
public:
    explicit Gallery(std::string folder);

    // Starts the section of a family; the shots that follow are its own.
    void family(const std::string &operation, const std::string &brief) { sections_.push_back({operation, brief, {}}); }
    // `region` is what one call works on: it gives the pixels per second.
    Shot shot(const std::string &title, const std::string &note, ZetiSize region);

    Figure figure(const Captioned &captioned); // writes the picture, once if it comes again
    std::string write_page() const;            // gives the name of the page
    std::string summary() const;

private:
    std::string folder_;
    std::vector<Section> sections_;
    std::map<std::tuple<int, int, std::vector<std::uint8_t>>, std::string> files_; // by width, channels, samples
};

// The page, from the sections alone.
std::string page_of(const std::vector<Section> &sections);

// The photographs of the command line, or those that the project carries; each in colour and in grey. Beyond the last
// the first comes again.
class Photos {
public:
    explicit Photos(const std::vector<std::string> &files);
    const Colour &colour(std::size_t i) const { return colour_[i % colour_.size()]; }
    const Grey &grey(std::size_t i) const { return grey_[i % grey_.size()]; }

private:
    std::vector<Colour> colour_;
    std::vector<Grey> grey_;
};

// What two images have in common from their first pixels on.
template <class A, class B> ZetiSize common(const A &a, const B &b) {
    return {a.size.width < b.size.width ? a.size.width : b.size.width, a.size.height < b.size.height ? a.size.height : b.size.height};
}

// The entries of each folder.
void show_core(Gallery &gallery, const Photos &photos);
void show_arith(Gallery &gallery, const Photos &photos);
void show_alpha(Gallery &gallery, const Photos &photos);
void show_unary(Gallery &gallery, const Photos &photos);
void show_ln_exp(Gallery &gallery, const Photos &photos);
void show_logic(Gallery &gallery, const Photos &photos);
void show_move(Gallery &gallery, const Photos &photos);
void show_convert_and_scale(Gallery &gallery, const Photos &photos);
void show_tables(Gallery &gallery, const Photos &photos);
void show_stats(Gallery &gallery, const Photos &photos);
void show_rearrange(Gallery &gallery, const Photos &photos);

} // namespace demo
