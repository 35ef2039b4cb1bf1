// The main window's layout, see Layout.h.
#include "app/Layout.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <utility>

namespace pictorel {

Layout::Layout(const Image_Mods& document, LayoutControls controls, ZoomScroll& zoom)
    : document_(document), controls_(std::move(controls)), zoom_(zoom) {}

void Layout::Form_Resize(QSize outerSize) {
    Place(PixelsToTwips(outerSize.width()), PixelsToTwips(outerSize.height()));
}

void Layout::Place(float W, float H) {
    LayoutControls& c = controls_;
    const float TW = c.TabControl_Effects.Width();
    CarryOn(
        [&] { c.Resizer_Main.SetWidth(W); }, //
        [&] { c.Resizer_Main.SetHeight(H); }, [&] { c.TabControl_Effects.SetLeft(W - TW - 300); },
        [&] { c.TabControl_Effects.SetHeight(H - c.HistoryList.Height() - 1900); },
        [&] { c.HistoryList.SetLeft(W - c.HistoryList.Width() - 300); },
        [&] { c.HistoryList.SetTop(H - c.HistoryList.Height() - 650); },
        [&] { c.Resizer_Adjustments.SetHeight(c.TabControl_Effects.Height() - 1780); },
        [&] { c.Resizer_Filters.SetHeight(c.TabControl_Effects.Height() - 1780); },
        [&] { c.Resizer_Effects.SetHeight(c.TabControl_Effects.Height() - 1780); },
        [&] { c.Resizer_Resize.SetHeight(c.TabControl_Effects.Height() - 1850); },
        [&] { c.ScrollBar_ImageY(0).SetLeft(W - TW - 800); },
        [&] { c.ScrollBar_ImageY(0).SetHeight(H - 2380); },
        [&] { c.ScrollBar_ImageX(0).SetWidth(W - TW - 900); },
        [&] { c.ScrollBar_ImageX(0).SetTop(H - 1450); },                                             //
        [&] { c.ImageView(0).SetWidth(W - TW - 900); }, [&] { c.ImageView(0).SetHeight(H - 2400); }, //
        [&] { c.ProgressBarControl.SetWidth(W - TW - 1000); }, [&] { c.ProgressBarControl.SetTop(H - 1860); },
        [&] { c.GroupBox_Canves1.SetTop(H - c.GroupBox_Canves1.Height() - 650); },
        [&] { c.GroupBox_Canves1.SetWidth(W - TW - 500); },
        [&] { c.GroupBox_Canves2.SetLeft(c.GroupBox_Canves1.Width() - c.GroupBox_Canves2.Width() - 300); },
        [&] { c.lbl_ImageInfo.SetWidth(std::max(c.GroupBox_Canves2.Left(), 0.0F)); }, // up to the view tools
        [&] { RefitPicture(); },                                                      //
        [&] { c.Cmd_Recommend(0).SetLeft(W - 700); }, [&] { c.Cmd_Recommend(1).SetLeft(W - 1130); });
}

void Layout::RefitPicture() {
    if (ImageExceedsView(0)) {
        zoom_.Cmd_ZoomFit_Click(0);
    } else {
        // An offset that suited a larger picture could leave a small one out of sight.
        const Control& view = controls_.ImageView(0);
        zoom_.CentreAxes(document_.ImageWidth(0) <= TwipsToPixels(view.Width()),
                         document_.ImageHeight(0) <= TwipsToPixels(view.Height()));
        zoom_.Cmd_ActualSize_Click(0);
    }
}

bool Layout::ImageExceedsView(int viewIndex) const {
    std::int32_t viewSum = 0;
    CarryOn([&] {
        const Control& view = controls_.ImageView(viewIndex);
        const std::int32_t twipsPerPixel = RoundHalfEven(kTwipsPerPixel);
        viewSum = RoundHalfEven(view.Width()) / twipsPerPixel + RoundHalfEven(view.Height()) / twipsPerPixel;
    });
    const std::int32_t pictureSum = document_.ImageWidth(0) + document_.ImageHeight(0);
    return viewSum <= pictureSum;
}

} // namespace pictorel
