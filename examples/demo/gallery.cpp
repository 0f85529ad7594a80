// SPDX-License-Identifier: Apache-2.0
#include "gallery.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

namespace demo {

namespace {

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

// Seconds of one call: the median of rounds that are long enough for the clock.
double measure(const std::function<void()> &call) {
    constexpr std::size_t least_rounds = 5, most_rounds = 25;
    constexpr double least = 0.4e-3, enough = 20e-3; // seconds: of a round, of all
    const auto round = [&](long repeats) {
        const double start = now();
        for (long i = 0; i < repeats; ++i) call();
        return now() - start;
    };
    long repeats = 1;
    while (round(repeats) < least) repeats *= 2;
    std::vector<double> seconds;
    const double start = now();
    while (seconds.size() < least_rounds || (seconds.size() < most_rounds && now() - start < enough))
        seconds.push_back(round(repeats) / static_cast<double>(repeats));
    std::sort(seconds.begin(), seconds.end());
    return seconds[seconds.size() / 2];
}

} // namespace

std::string Shot::checked(const std::string &text, ZetStatus status) {
    if (status < zetStsNoErr) throw std::runtime_error(text + ": status " + std::to_string(status));
    return status == zetStsNoErr       ? "zetStsNoErr"
           : status == zetStsDivByZero ? "zetStsDivByZero"
           : status == zetStsLnZeroArg ? "zetStsLnZeroArg"
                                       : std::to_string(status);
}

void Shot::add(const std::string &text, const std::string &status, std::function<void()> again) {
    if (!item_.calls.empty() && item_.calls.back().text == text) {
        ++item_.calls.back().times;
        return;
    }
    item_.calls.push_back({text, status});
    again_.push_back(std::move(again));
}

void Shot::show(const std::vector<Captioned> &before, const std::vector<Captioned> &after) {
    for (const Captioned &c : before) item_.before.push_back(gallery_.figure(c));
    for (const Captioned &c : after) item_.after.push_back(gallery_.figure(c));
    for (std::size_t i = 0; i < again_.size(); ++i) item_.calls[i].seconds = measure(again_[i]);
}

Gallery::Gallery(std::string folder) : folder_(std::move(folder)) {
    std::error_code bad;
    std::filesystem::create_directories(folder_ + "/pictures", bad);
    if (bad) throw std::runtime_error(folder_ + ": " + bad.message());
}

Shot Gallery::shot(const std::string &title, const std::string &note, ZetiSize region) {
    std::deque<Item> &items = sections_.back().items;
    items.push_back({title, note, region, {}, {}, {}, {}});
    return {*this, items.back()};
}

Figure Gallery::figure(const Captioned &captioned) {
    const Picture &p = captioned.picture;
    const std::string fresh = "pictures/" + std::to_string(files_.size() + 1) + ".png";
    const auto [known, is_new] = files_.try_emplace({p.size.width, p.channels, p.samples}, fresh);
    if (is_new) write_png(folder_ + "/" + fresh, p);
    return {captioned.caption, known->second, p.size, p.channels == 4};
}

std::string Gallery::write_page() const {
    std::string name = folder_ + "/index.html";
    std::ofstream page(name);
    page << page_of(sections_);
    page.close();
    if (!page) throw std::runtime_error(name + ": cannot be written");
    return name;
}

std::string Gallery::summary() const {
    std::size_t shots = 0;
    for (const Section &s : sections_) shots += s.items.size();
    return std::to_string(sections_.size()) + " families, " + std::to_string(shots) + " shots, " + std::to_string(files_.size()) +
           " pictures";
}

Photos::Photos(const std::vector<std::string> &files) {
    for (const std::string &file : files) {
        const Picture read = read_picture(file);
        Grey grey(read.size);
        Colour colour(read.size);
        for (int y = 0; y < read.size.height; ++y)
            for (int x = 0; x < read.size.width; ++x) {
                const std::uint8_t *const s = &read.samples[(std::size_t(y) * read.size.width + x) * read.channels];
                const std::uint8_t r = s[0], g = read.channels == 3 ? s[1] : r, b = read.channels == 3 ? s[2] : r;
                grey.row(y)[x] = static_cast<Zet8u>((299 * r + 587 * g + 114 * b + 500) / 1000);
                colour.at(x, y)[0] = r, colour.at(x, y)[1] = g, colour.at(x, y)[2] = b;
            }
        grey_.push_back(std::move(grey));
        colour_.push_back(std::move(colour));
    }
}

} // namespace demo
