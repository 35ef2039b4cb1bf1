// What the HEIF sources share of libheif: its handles, kept safe. The library's own start-up, which would
// load plug-ins from folders that the environment names, is never called.
#pragma once

#include <libheif/heif.h>

#include <memory>

namespace pictorel::codecs {

struct FreeHeif {
    void operator()(heif_context* context) const noexcept { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const noexcept { heif_image_handle_release(handle); }
    void operator()(heif_image* image) const noexcept { heif_image_release(image); }
    void operator()(heif_decoding_options* options) const noexcept { heif_decoding_options_free(options); }
    void operator()(heif_color_profile_nclx* profile) const noexcept {
        heif_nclx_color_profile_free(profile);
    }
};
using HeifContext = std::unique_ptr<heif_context, FreeHeif>;
using HeifHandle = std::unique_ptr<heif_image_handle, FreeHeif>;
using HeifImage = std::unique_ptr<heif_image, FreeHeif>;
using HeifOptions = std::unique_ptr<heif_decoding_options, FreeHeif>;
using HeifNclx = std::unique_ptr<heif_color_profile_nclx, FreeHeif>;

} // namespace pictorel::codecs
