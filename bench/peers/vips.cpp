// libvips: vips_resize with its Lanczos-3 kernel and no box filter before it.
#include "PeerMain.h"

#include <vips/vips.h>

int main(int, char* words[]) {
    VIPS_INIT(words[0]);
    vips_concurrency_set(2);
    vips_cache_set_max(0);
    return RunPeer("libvips", words, [](Job& job) {
        VipsImage* in = vips_image_new_from_memory(job.source.data(), job.source.size(), job.fromWidth,
                                                   job.fromHeight, 4, VIPS_FORMAT_UCHAR);
        VipsImage* out = nullptr;
        vips_resize(in, &out, static_cast<double>(job.width) / job.fromWidth, "vscale",
                    static_cast<double>(job.height) / job.fromHeight, "kernel", VIPS_KERNEL_LANCZOS3, "gap",
                    0.0, nullptr);
        VipsImage* target = vips_image_new_from_memory(job.result.data(), job.result.size(), job.width,
                                                       job.height, 4, VIPS_FORMAT_UCHAR);
        vips_image_write(out, target);
        g_object_unref(target);
        g_object_unref(out);
        g_object_unref(in);
    });
}
