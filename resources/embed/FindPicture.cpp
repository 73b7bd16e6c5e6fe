#include "Pictures.h"

#include <algorithm>

namespace quarnel {

const EmbeddedPicture* FindPicture(std::string_view name) {
    const auto pictures = AllPictures();
    const auto found = std::ranges::lower_bound(pictures, name, {}, &EmbeddedPicture::name);
    return found != pictures.end() && found->name == name ? &*found : nullptr;
}

} // namespace quarnel
