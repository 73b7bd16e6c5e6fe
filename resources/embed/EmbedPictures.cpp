// Build tool: turns PNG files into one C++ file that holds their pixels.
//
//   EmbedPictures OUTPUT.cpp PICTURE.png...
//
// Names are the file names without folder and ending. Ends with status 1 and a line on the error output when a file
// cannot be read or written, or when two files have one name.
#include <png.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Picture {
    std::string name;
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint32_t> pixels; // 0xAARRGGBB, rows from the top
};

Picture ReadPng(const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file.string().c_str()) == 0) {
        throw std::runtime_error(file.string() + ": " + image.message);
    }
    image.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) == 0) {
        throw std::runtime_error(file.string() + ": " + image.message);
    }

    Picture picture{file.stem().string(), image.width, image.height, {}};
    picture.pixels.reserve(bytes.size() / 4);
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const std::uint32_t red = bytes[i];
        const std::uint32_t green = bytes[i + 1];
        const std::uint32_t blue = bytes[i + 2];
        const std::uint32_t alpha = bytes[i + 3];
        picture.pixels.push_back(alpha == 0 ? 0 : alpha << 24 | red << 16 | green << 8 | blue);
    }
    return picture;
}

/// All pixels stand in one array, because compilers read one long list of numbers faster than many short ones.
std::string CppText(const std::vector<Picture>& pictures) {
    std::string text =
        "// Written by EmbedPictures; changes are lost with the next build.\n"
        "#include \"Pictures.h\"\n\nnamespace quarnel {\nnamespace {\n\nconst std::uint32_t Pixels[] = {";
    std::size_t count = 0;
    for (const Picture& picture : pictures) {
        for (const std::uint32_t pixel : picture.pixels) {
            text += count++ % 16 == 0 ? "\n" : "";
            text += std::to_string(pixel);
            text += "u,";
        }
    }
    text += "\n};\n\nconst EmbeddedPicture Table[] = {\n";
    std::size_t offset = 0;
    for (const Picture& picture : pictures) {
        text += "    {\"" + picture.name + "\", " + std::to_string(picture.width) + ", " +
                std::to_string(picture.height) + ", Pixels + " + std::to_string(offset) + "},\n";
        offset += picture.pixels.size();
    }
    text += "};\n\n} // namespace\n\nstd::span<const EmbeddedPicture> AllPictures() { return Table; }\n\n"
            "} // namespace quarnel\n";
    return text;
}

void EmbedPictures(const std::filesystem::path& output, const std::vector<std::filesystem::path>& files) {
    std::vector<Picture> pictures;
    for (const auto& file : files) {
        pictures.push_back(ReadPng(file));
    }
    std::ranges::sort(pictures, {}, &Picture::name);
    const auto twin = std::ranges::adjacent_find(pictures, {}, &Picture::name);
    if (twin != pictures.end()) {
        throw std::runtime_error("two pictures are called " + twin->name);
    }

    std::ofstream stream(output, std::ios::binary | std::ios::trunc);
    stream << CppText(pictures);
    stream.close();
    if (!stream) {
        throw std::runtime_error(output.string() + " cannot be written");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("EmbedPictures OUTPUT.cpp PICTURE.png...\n", stderr);
        return 1;
    }
    try {
        EmbedPictures(argv[1], {argv + 2, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "EmbedPictures: %s\n", error.what());
        return 1;
    }
    return 0;
}
