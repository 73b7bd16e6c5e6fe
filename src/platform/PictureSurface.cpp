#include "platform/PictureSurface.h"

#include "Pictures.h"

#include <algorithm>

namespace quarnel {

Surface PictureSurface(std::string_view name) {
    const EmbeddedPicture* picture = FindPicture(name);
    if (picture == nullptr) return {};
    Surface surface(picture->width, picture->height);
    std::copy_n(picture->pixels, static_cast<std::ptrdiff_t>(picture->width) * picture->height, surface.Pixels());
    return surface;
}

PictureRef PictureNamed(std::string_view name) {
    return MakePicture(PictureSurface(name));
}

} // namespace quarnel
