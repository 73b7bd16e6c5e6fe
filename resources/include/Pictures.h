// The program's pictures, compiled into the program: piece sheets, toolbar images, skins and icons.
//
// Start at FindPicture(). The pixels are drawn from resources/vector by resources/draw.sh and turned into C++ by the
// build. Everything here is constant and may be read from any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace quarnel {

/// One picture: `width` x `height` values 0xAARRGGBB, rows from the top, colours not multiplied by alpha. It lives as
/// long as the program. Pixels that are fully transparent are 0.
struct EmbeddedPicture {
    std::string_view name;
    int width;
    int height;
    const std::uint32_t* pixels;
};

/// The picture called `name` (its file name without ".png", the same letter case), or null where there is none.
const EmbeddedPicture* FindPicture(std::string_view name);

/// All pictures, ordered by name as bytes.
std::span<const EmbeddedPicture> AllPictures();

} // namespace quarnel
